#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/terminate.h"

namespace kalmira {

// Waits on one thread for everything a program without a screen reacts to. POSIX only.
class EventLoop {
 public:
  struct Handlers {
    std::function<void(const std::string&)> onLine;  // a line of standard input, without its end
    std::function<void()> onLongLine;                // one of more than 64 KiB was dropped
    std::function<void()> onEndOfInput;
    std::function<void()> onTerminate;
  };

  // With `readInput`, standard input is read. There can be only one loop a program.
  explicit EventLoop(bool readInput) : read_input_(readInput) {}

  // Whether the machine has asked the program to end, and that has not been handled yet.
  bool terminateWanted() const { return signals_.wanted(); }
  // Waits at most `milliseconds` for something to happen. True: there is input.
  bool wait(std::uint32_t milliseconds) const;
  // Calls the handlers of what happened; `input` is what wait said.
  void handle(bool input, const Handlers& handlers);

 private:
  void readLines(const Handlers& handlers);

  TerminateSignals signals_;
  bool read_input_;
  std::string input_;
  bool skipping_ = false;  // the rest of a line that is too long
};

}  // namespace kalmira
