#include "sim/receiver.h"

#include <fmt/format.h>

#include <chrono>
#include <cmath>
#include <numbers>

#include "sim/chance.h"

namespace kalmira::sim {
namespace {

constexpr double kStartLatitude = 59.4125;   // degrees north
constexpr double kStartLongitude = 24.7361;  // degrees east
constexpr double kHeading_deg = 45.0;
constexpr double kMetresPerDegree = 111320.0;
constexpr double kKnotsPerMetreS = 3600.0 / 1852.0;
constexpr double kDifferentialAfter_s = 5.0;

using Centiseconds = std::chrono::duration<std::int64_t, std::centi>;

struct Fix {
  std::string time;      // hhmmss.ss, UTC
  std::string date;      // ddmmyy
  std::string position;  // latitude, N, longitude, E
  bool differential;
  int satellites;
  double pdop;
};

// Whole degrees and minutes with five decimals, as "5924.75000"; whole numbers of the last digit throughout,
// so that no rounding makes 60 minutes.
std::string degreesMinutes(double degrees, int degreeDigits) {
  constexpr std::int64_t kPerMinute = 100000;
  const std::int64_t total = std::llround(degrees * 60 * static_cast<double>(kPerMinute));
  return fmt::format("{:0{}d}{:02d}.{:05d}", total / (60 * kPerMinute), degreeDigits, total / kPerMinute % 60,
                     total % kPerMinute);
}

std::string positionText(std::uint64_t seed, std::uint64_t epoch, double time_s) {
  const double along_m = kWalk_mPerS * time_s + 0.05 * bell(seed, Use::position, epoch, 0);
  const double aside_m = 0.05 * bell(seed, Use::position, epoch, 1);
  const double heading = kHeading_deg * std::numbers::pi / 180;
  const double north_m = along_m * std::cos(heading) - aside_m * std::sin(heading);
  const double east_m = along_m * std::sin(heading) + aside_m * std::cos(heading);
  const double latitude = kStartLatitude + north_m / kMetresPerDegree;
  const double shrink = std::cos(kStartLatitude * std::numbers::pi / 180);
  const double longitude = kStartLongitude + east_m / (kMetresPerDegree * shrink);
  return fmt::format("{},N,{},E", degreesMinutes(latitude, 2), degreesMinutes(longitude, 3));
}

Fix fixAt(std::uint64_t seed, std::uint64_t epoch, double time_s) {
  using namespace std::chrono;
  const auto moment = sys_days{year{2025} / 5 / 12} + hours{8} + Centiseconds{std::llround(time_s * 100)};
  const auto day = floor<days>(moment);
  const year_month_day date{day};
  const hh_mm_ss<Centiseconds> clock{duration_cast<Centiseconds>(moment - day)};
  const int satellites = 9 + static_cast<int>(std::lround(1.5 * std::sin(time_s / 40)));
  return {.time = fmt::format("{:02d}{:02d}{:02d}.{:02d}", clock.hours().count(), clock.minutes().count(),
                              clock.seconds().count(), clock.subseconds().count()),
          .date = fmt::format("{:02d}{:02d}{:02d}", static_cast<unsigned>(date.day()),
                              static_cast<unsigned>(date.month()), static_cast<int>(date.year()) % 100),
          .position = positionText(seed, epoch, time_s),
          .differential = time_s >= kDifferentialAfter_s,
          .satellites = satellites,
          .pdop = 2.8 - 0.1 * satellites};
}

std::string gga(const Fix& fix) {
  return fmt::format("GPGGA,{},{},{},{:02d},{:.1f},34.2,M,18.0,M,,", fix.time, fix.position, fix.differential ? 2 : 1,
                     fix.satellites, fix.pdop * 0.6);
}

// Twelve places for satellites, then PDOP, HDOP, VDOP.
std::string gsa(const Fix& fix) {
  std::string body = "GPGSA,A,3";
  for (int i = 0; i < 12; ++i) body += i < fix.satellites ? fmt::format(",{:02d}", 2 + i * 5 / 2) : ",";
  return body + fmt::format(",{:.1f},{:.1f},{:.1f}", fix.pdop, fix.pdop * 0.6, fix.pdop * 0.8);
}

std::string rmc(const Fix& fix) {
  return fmt::format("GPRMC,{},A,{},{:.2f},{:.1f},{},,,{}", fix.time, fix.position, kWalk_mPerS * kKnotsPerMetreS,
                     kHeading_deg, fix.date, fix.differential ? 'D' : 'A');
}

}  // namespace

std::string withChecksum(std::string_view body, unsigned error) {
  unsigned sum = error & 0xFFU;
  for (const char byte : body) sum ^= static_cast<unsigned char>(byte);
  return fmt::format("${}*{:02X}", body, sum);
}

std::string nmeaBody(std::uint64_t seed, std::uint64_t number, double time_s) {
  const auto fix = fixAt(seed, number / 3, time_s);
  switch (number % 3) {
    case 0: return gga(fix);
    case 1: return gsa(fix);
    default: return rmc(fix);
  }
}

}  // namespace kalmira::sim
