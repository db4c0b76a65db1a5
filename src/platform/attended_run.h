#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/clock.h"
#include "platform/terminate.h"

namespace kalmira {

// Asked now and then by whoever reads a large file, `done` of `total` bytes of which are read: whether to go on.
using GoOn = std::function<bool(std::string_view name, std::uint64_t done, std::uint64_t total)>;

// A run of a program that somebody may sit in front of: messages, and on a terminal, from two seconds on, a line that
// says how far it is and goes away by itself.
class AttendedRun {
 public:
  // Speaks on `descriptor`, standard error.
  AttendedRun(std::string_view program, const Clock& clock, int descriptor);
  ~AttendedRun() { clear(); }
  AttendedRun(const AttendedRun&) = delete;
  AttendedRun& operator=(const AttendedRun&) = delete;

  // From now on a signal that ends the program makes goOn say no, for runs that have something to tidy up. Without
  // this it ends the program at once.
  void tidyWhenEnded() { signals_.emplace(); }
  bool goOn(std::string_view name, std::uint64_t done, std::uint64_t total);
  // A message, one line.
  void say(std::string_view text);
  // Takes the line away, before something else is printed.
  void clear();

 private:
  void write(std::string_view text) const;

  std::string program_;
  const Clock& clock_;
  int descriptor_;
  bool terminal_;
  std::uint32_t shown_at_;  // tick of the start, then of the line shown last
  bool shown_ = false;
  std::optional<TerminateSignals> signals_;
};

}  // namespace kalmira
