#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/terminate.h"

namespace kalmira {

// Takes the bytes of an input apart into lines. One of more than 64 KiB is dropped and told of once.
class InputLines {
 public:
  struct Handlers {
    std::function<void(const std::string&)> onLine;  // without its end
    std::function<void()> onLongLine;
  };
  void take(std::string_view bytes, const Handlers& handlers);
  // The input has ended: what is left is its last line.
  void end(const Handlers& handlers);

 private:
  std::string started_;
  bool skipping_ = false;  // the rest of a line that is too long
};

// Waits on one thread for everything a program without a screen reacts to. POSIX only.
class EventLoop {
 public:
  struct Handlers {
    InputLines::Handlers input;  // of standard input
    std::function<void()> onEndOfInput;
    std::function<void()> onTerminate;
  };

  // With `readInput`, standard input is read. There can be only one loop a program.
  explicit EventLoop(bool readInput) : read_input_(readInput) {}

  // Whether the machine has asked the program to end, and that has not been handled yet.
  bool terminateWanted() const { return signals_.wanted(); }
  struct Happened {
    bool input = false;
    bool signal = false;
  };
  // Waits at most `milliseconds` for something to happen.
  Happened wait(std::uint32_t milliseconds) const;
  // Calls the handlers of what happened, as wait said.
  void handle(const Happened& happened, const Handlers& handlers);

 private:
  void readLines(const Handlers& handlers);

  TerminateSignals signals_;
  bool read_input_;
  InputLines lines_;
};

}  // namespace kalmira
