#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace kalmira {

// Waits on one thread for everything a program without a screen reacts to. POSIX only.
class EventLoop {
 public:
  struct Handlers {
    std::function<void(const std::string&)> onLine;  // a line of standard input, without its end
    std::function<void()> onLongLine;                // one of more than 64 KiB was dropped
    std::function<void()> onEndOfInput;
    std::function<void()> onTerminate;  // SIGINT or SIGTERM
  };

  // With `readInput`, standard input is read. Catches SIGINT and SIGTERM from now on; there can be only one
  // loop a program.
  explicit EventLoop(bool readInput);
  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;
  ~EventLoop();

  struct Ready {
    bool woken = false;
    bool input = false;
  };
  // Whether SIGINT or SIGTERM has come and has not been handled yet.
  bool terminateWanted() const;
  // Waits at most `milliseconds` for something to happen.
  Ready wait(std::uint32_t milliseconds) const;
  // Calls the handlers of what happened.
  void handle(Ready ready, const Handlers& handlers);

 private:
  void readLines(const Handlers& handlers);

  int wake_read_ = -1;
  int wake_write_ = -1;
  bool read_input_;
  std::string input_;
  bool skipping_ = false;  // the rest of a line that is too long
  bool catches_hang_up_ = true;
};

}  // namespace kalmira
