#include "platform/clock.h"

#include <chrono>
#include <ctime>
#include <thread>

namespace kalmira {
namespace {

#ifdef CLOCK_BOOTTIME
std::uint64_t clockMs(clockid_t clock) {
  std::timespec now{};
  clock_gettime(clock, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1000U + static_cast<std::uint64_t>(now.tv_nsec) / 1000000U;
}
#endif

std::uint64_t uptimeMs() {
#ifdef CLOCK_BOOTTIME
  return clockMs(CLOCK_BOOTTIME);
#else
  using namespace std::chrono;
  return static_cast<std::uint64_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
#endif
}

std::tm localParts(std::time_t seconds) {
  std::tm parts{};
#ifdef _WIN32
  localtime_s(&parts, &seconds);
#else
  localtime_r(&seconds, &parts);
#endif
  return parts;
}

}  // namespace

std::int64_t msSince1970(const LocalTime& time) {
  using namespace std::chrono;
  const sys_days day = year(time.year) / time.month / time.day;
  const auto ofDay = hours(time.hour) + minutes(time.minute) + seconds(time.second) + milliseconds(time.millisecond);
  return (day.time_since_epoch() + ofDay).count();
}

SystemClock::SystemClock(TickBase base) : origin_ms_(base == TickBase::program ? uptimeMs() : 0) {}

std::uint32_t SystemClock::tick() const { return static_cast<std::uint32_t>(uptimeMs() - origin_ms_); }

LocalTime SystemClock::localTime() const {
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::time_t seconds = system_clock::to_time_t(floor<std::chrono::seconds>(now));
  const auto parts = localParts(seconds);
  const auto fraction = duration_cast<milliseconds>(now - floor<std::chrono::seconds>(now));
  return {.year = parts.tm_year + 1900,
          .month = parts.tm_mon + 1,
          .day = parts.tm_mday,
          .hour = parts.tm_hour,
          .minute = parts.tm_min,
          .second = parts.tm_sec,
          .millisecond = static_cast<int>(fraction.count())};
}

int SystemClock::utcOffset() const {
  const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  const auto parts = localParts(now);
  const LocalTime local{.year = parts.tm_year + 1900,
                        .month = parts.tm_mon + 1,
                        .day = parts.tm_mday,
                        .hour = parts.tm_hour,
                        .minute = parts.tm_min,
                        .second = parts.tm_sec};
  return static_cast<int>(msSince1970(local) / 1000 - now);
}

std::uint64_t SystemClock::sleptMs() const {
#ifdef CLOCK_BOOTTIME
  // The one clock runs while the machine sleeps, the other does not.
  const auto running = clockMs(CLOCK_MONOTONIC);
  const auto booted = clockMs(CLOCK_BOOTTIME);
  return booted > running ? booted - running : 0;
#else
  return 0;
#endif
}

void SystemClock::pause(std::uint32_t milliseconds) const {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace kalmira
