#pragma once

#include <cstdint>

namespace kalmira {

struct LocalTime {
  int year = 0;
  int month = 1;  // 1 to 12
  int day = 1;    // 1 to 31
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

// Milliseconds from the first moment of 1970 to `time`, both as that clock shows them.
std::int64_t msSince1970(const LocalTime& time);

// The one source of times. Everything that needs a tick or the time of day is handed a Clock; tests hand in one that
// they move by hand. All members may be called from any thread.
class Clock {
 public:
  Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
  virtual ~Clock() = default;

  // Milliseconds on a 32-bit counter that wraps after 49.7 days. Differences of two ticks are right across the wrap
  // when taken as unsigned 32-bit numbers: use ticksSince.
  virtual std::uint32_t tick() const = 0;
  // The device's date and time of day, in its time zone.
  virtual LocalTime localTime() const = 0;
  // Seconds that it is ahead of UTC, now.
  virtual int utcOffset() const = 0;
  // How long the machine has slept since it was started.
  virtual std::uint64_t sleptMs() const = 0;
  // Returns after at least `milliseconds`.
  virtual void pause(std::uint32_t milliseconds) const = 0;
};

inline std::uint32_t ticksSince(std::uint32_t now, std::uint32_t then) { return now - then; }

// What tick 0 stands for: the device's start, counting the time it slept, or the program's start.
enum class TickBase { boot, program };

class SystemClock final : public Clock {
 public:
  explicit SystemClock(TickBase base);
  std::uint32_t tick() const override;
  LocalTime localTime() const override;
  int utcOffset() const override;
  std::uint64_t sleptMs() const override;
  void pause(std::uint32_t milliseconds) const override;

 private:
  std::uint64_t origin_ms_ = 0;
};

}  // namespace kalmira
