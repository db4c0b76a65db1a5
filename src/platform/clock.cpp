#include "platform/clock.h"

#include <chrono>
#include <ctime>
#include <thread>

namespace kalmira {
namespace {

std::uint64_t uptimeMs() {
#ifdef CLOCK_BOOTTIME
  std::timespec now{};
  clock_gettime(CLOCK_BOOTTIME, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1000U + static_cast<std::uint64_t>(now.tv_nsec) / 1000000U;
#else
  using namespace std::chrono;
  return static_cast<std::uint64_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
#endif
}

}  // namespace

SystemClock::SystemClock(TickBase base) : origin_ms_(base == TickBase::program ? uptimeMs() : 0) {}

std::uint32_t SystemClock::tick() const { return static_cast<std::uint32_t>(uptimeMs() - origin_ms_); }

LocalTime SystemClock::localTime() const {
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::time_t seconds = system_clock::to_time_t(floor<std::chrono::seconds>(now));
  std::tm parts{};
#ifdef _WIN32
  localtime_s(&parts, &seconds);
#else
  localtime_r(&seconds, &parts);
#endif
  const auto fraction = duration_cast<milliseconds>(now - floor<std::chrono::seconds>(now));
  return {.year = parts.tm_year + 1900,
          .month = parts.tm_mon + 1,
          .day = parts.tm_mday,
          .hour = parts.tm_hour,
          .minute = parts.tm_min,
          .second = parts.tm_sec,
          .millisecond = static_cast<int>(fraction.count())};
}

void SystemClock::pause(std::uint32_t milliseconds) const {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace kalmira
