#include "sim/world.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <numbers>

namespace kalmira::sim {
namespace {

// One buried thing in each stretch, never nearer to its ends than 8 m. A walker meets the first within 20 s.
constexpr double kStretch_m = 30;
constexpr double kMargin_m = 8;

struct Buried {
  double halfWidth_m;
  double conductivity;  // at its middle, mS/m
  double inphase;       // parts per thousand
  bool flanked;         // conductivity falls over it and rises on both sides
};
constexpr std::array<Buried, 3> kBuried{{
    {.halfWidth_m = 4.0, .conductivity = 75, .inphase = 1.2, .flanked = false},   // landfill
    {.halfWidth_m = 0.8, .conductivity = -45, .inphase = 5.0, .flanked = true},   // pipe
    {.halfWidth_m = 2.0, .conductivity = 220, .inphase = 7.0, .flanked = false},  // metal sheet
}};

double wave(std::uint64_t seed, double distance_m, double length_m, std::uint64_t which) {
  const double phase = fraction(seed, Use::ground, which);
  return std::sin(2 * std::numbers::pi * (distance_m / length_m + phase));
}

double hump(double offset_m, double halfWidth_m) {
  const double scaled = offset_m / halfWidth_m;
  return std::exp(-scaled * scaled);
}

// The share of the response that comes from below `depth`, a fraction of the coil separation: the standard cumulative
// responses of the two dipoles at low induction numbers.
double shareBelow(double depth, bool vertical) {
  const double root = std::sqrt(4 * depth * depth + 1);
  return vertical ? 1 / root : root - 2 * depth;
}

void addBuried(std::uint64_t seed, std::uint64_t stretch, double distance_m, double separation_m, Response& response) {
  const auto& thing = kBuried[draw(seed, Use::anomaly, stretch) % kBuried.size()];
  const double span_m = kStretch_m - 2 * kMargin_m;
  const double middle_m =
      static_cast<double>(stretch) * kStretch_m + kMargin_m + span_m * fraction(seed, Use::anomaly, stretch, 1);
  const double strength = 0.7 + 0.3 * fraction(seed, Use::anomaly, stretch, 2);
  // Coils further apart see it wider and weaker.
  const double width_m = thing.halfWidth_m + 0.1 * separation_m;
  const double scale = strength * thing.halfWidth_m / width_m;
  const double offset_m = distance_m - middle_m;
  double shape = hump(offset_m, width_m);
  response.inphase += scale * thing.inphase * shape;
  if (thing.flanked) shape -= 0.5 * hump(std::abs(offset_m) - 2 * width_m, width_m);
  response.conductivity += scale * thing.conductivity * shape;
}

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

// Whole degrees and minutes with five decimals, as "5924.75000"; whole numbers of the last digit throughout, so that no
// rounding makes 60 minutes.
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

Response groundResponse(std::uint64_t seed, double distance_m, double separation_m, bool vertical) {
  const double upper = 14 + 5 * wave(seed, distance_m, 170, 0);
  const double lower = 38 + 12 * wave(seed, distance_m, 430, 1);
  const double depth_m = 1.5 + 0.7 * wave(seed, distance_m, 95, 2);
  const double below = shareBelow(depth_m / separation_m, vertical);
  Response response{.conductivity = upper + (lower - upper) * below,
                    .inphase = 0.4 + 0.3 * wave(seed, distance_m, 250, 3)};
  const auto stretch = static_cast<std::uint64_t>(distance_m / kStretch_m);
  const std::uint64_t first = stretch == 0 ? 0 : stretch - 1;
  for (auto near = first; near <= stretch + 1; ++near) {
    addBuried(seed, near, distance_m, separation_m, response);
  }
  if (!vertical) response.inphase *= 0.6;
  return response;
}

double seaIce(std::uint64_t seed, double distance_m) {
  const double level = 1.8 + 0.5 * wave(seed, distance_m, 310, 4) + 0.2 * wave(seed, distance_m, 37, 5);
  const double ridge = std::max(0.0, wave(seed, distance_m, 120, 6) - 0.7) * 10;
  return std::clamp(level + ridge, 0.5, 6.0);
}

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
