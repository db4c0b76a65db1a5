#pragma once

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "datafile/record_format.h"
#include "datafile/record_text.h"
#include "positions/survey_places.h"

// A survey with a receiver, made up.
namespace kalmira {

inline constexpr int kLength = 24;
inline constexpr double kStart = 36000;  // time of day of the walk's begin
inline constexpr double kDay = 20220;    // 12 May 2025

inline std::string withChecksum(const std::string& body) {
  unsigned sum = 0;
  for (const char c : body) sum ^= static_cast<unsigned char>(c);
  return fmt::format("${}*{:02X}", body, sum);
}

inline std::string angleText(double angle, int digits, std::string_view sides) {
  const double size = std::abs(angle);
  const int degrees = static_cast<int>(size);
  return fmt::format("{:0{}}{:010.7f},{}", degrees, digits, (size - degrees) * 60, sides[angle < 0 ? 1 : 0]);
}

inline std::string timeText(double timeOfDay) {
  const auto ms = static_cast<std::int64_t>(std::round(timeOfDay * 1000)) % 86400000;
  return fmt::format("{:02}{:02}{:02}.{:03}", ms / 3600000, ms / 60000 % 60, ms / 1000 % 60, ms % 1000);
}

inline std::string gga(double timeOfDay, const GeoPoint& at, char quality = '4') {
  return withChecksum(fmt::format("GNGGA,{},{},{},{},12,0.8,100.0,M,18.0,M,1.0,0001", timeText(timeOfDay),
                                  angleText(at.latitude, 2, "NS"), angleText(at.longitude, 3, "EW"), quality));
}

// An instrument that is carried along a path on the plane, and what its receiver and its logger make of it.
struct Walk {
  MapZone zone{.number = 32, .north = true};
  std::function<PlanePoint(double time)> path = [](double t) {
    return PlanePoint{400000 + 1.2 * t, 5500000 + 0.7 * t};
  };
  std::function<PlanePoint(double time)> instrument{};  // where its antenna is elsewhere
  double seconds = 300;
  double sentences_hz = 1;
  double start = kStart;                                                     // time of day
  double uptime = 1000;                                                      // of the machine at the walk's begin
  double drift = 0;                                                          // of the ticks, seconds a second
  std::function<double(int n)> delay = [](int) { return 0.1; };              // of sentence n
  std::function<double(double time)> receiver = [](double) { return 0.0; };  // its clock's fault
  std::function<std::string(int n, std::string sentence)> change = [](int, std::string text) { return text; };
  std::function<bool(double time)> heard = [](double) { return true; };
  PositionOptions options{.lag_s = 0.1};
  std::string line = "7";
  bool dated = true;  // sentences tell the date
  double readings_hz = 10;
  std::function<std::string(int n)> values = [](int) { return std::string("T$-0400+0800"); };  // of reading n
  std::vector<std::pair<double, std::string>> also{};  // records that come at a time

  std::uint32_t tickOf(double t) const {
    return static_cast<std::uint32_t>(std::llround((uptime + t * (1 + drift)) * 1000));
  }
  std::string reading(int n) const { return formatReading(kLength, values(n), tickOf(n / readings_hz)); }
  std::string bytes() const {
    std::vector<std::pair<double, std::string>> records;
    double came = 0;
    for (int n = 0; n / sentences_hz < seconds; ++n) {
      const double t = n / sentences_hz;
      came = std::max(came, t + delay(n));  // none overtakes another
      if (!heard(t)) continue;
      const auto text = change(n, gga(start + t + receiver(t), unproject(zone, path(t))));
      const double at = start + t + receiver(t);
      const auto date =
          withChecksum(fmt::format("GPRMC,{},A,,,,,,,{:02}0525,,,D", timeText(at), 12 + std::floor(at / 86400)));
      if (n % 10 == 0 && dated) records.emplace_back(came, formatGpsSentence(kLength, date, tickOf(came), '@', '#'));
      if (!text.empty()) records.emplace_back(came, formatGpsSentence(kLength, text, tickOf(came), '@', '#'));
    }
    for (int n = 1; n / readings_hz < seconds; ++n) records.emplace_back(n / readings_hz, reading(n));
    records.insert(records.end(), also.begin(), also.end());
    std::ranges::stable_sort(records, {}, [](const auto& record) { return record.first; });
    auto all = kalmira::records(kLength, {"ORLA2   W230GPS0000", "L" + line, "B      10.00", "AN            1.500"});
    all += formatTimeMark(kLength, {.hour = 10}, tickOf(0));
    for (const auto& [t, record] : records) all += record;
    return all;
  }
};

}  // namespace kalmira
