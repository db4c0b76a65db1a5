#pragma once

#include <atomic>

#include "platform/clock.h"

namespace kalmira {

// A clock that stands still until it is moved. Pauses move it.
class FakeClock final : public Clock {
 public:
  std::uint32_t tick() const override { return tick_; }
  LocalTime localTime() const override { return time; }
  int utcOffset() const override { return 3600; }
  std::uint64_t sleptMs() const override { return slept; }
  void pause(std::uint32_t milliseconds) const override { tick_ += milliseconds; }
  void advance(std::uint32_t milliseconds) { tick_ += milliseconds; }
  void set(std::uint32_t tick) { tick_ = tick; }

  std::atomic<std::uint64_t> slept{0};
  LocalTime time{.year = 2026, .month = 11, .day = 15, .hour = 10, .minute = 13, .second = 7, .millisecond = 250};

 private:
  mutable std::atomic<std::uint32_t> tick_{100000};
};

}  // namespace kalmira
