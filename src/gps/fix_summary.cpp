#include "gps/fix_summary.h"

#include <fmt/format.h>

#include <cmath>

#include "gps/nmea.h"
#include "platform/text.h"

namespace kalmira {
namespace {

std::string field(std::string_view line, int number) {
  std::string out;
  // The checksum stands behind the last field.
  (void)GetNmeaField(line.substr(0, line.rfind('*')), number, ',', out);
  return out;
}

// "101307.00" as "10:13:07 UTC".
std::string timeText(const std::string& time) {
  if (time.size() < 6 || !wholeNumber<double>(time)) return {};
  return fmt::format("{}:{}:{} UTC", time.substr(0, 2), time.substr(2, 2), time.substr(4, 2));
}

}  // namespace

std::string degreesText(std::string_view degreesAndMinutes, std::string_view hemisphere) {
  const auto number = wholeNumber<double>(degreesAndMinutes);
  if (!number || *number < 0 || hemisphere.size() != 1) return {};
  const double degrees = std::floor(*number / 100);
  return fmt::format("{:.6f} {}", degrees + (*number - degrees * 100) / 60, hemisphere);
}

void FixSummary::take(std::string_view line, bool checksumOk, std::uint32_t tick) {
  if (!checksumOk) {
    ++bad_;
    return;
  }
  // "$GPGGA", "$GNGSV": the talker, then the kind of sentence.
  if (line.size() < 6 || line[0] != '$') return;
  const auto kind = line.substr(3, 3);
  if (kind == "GGA") takeGga(line, tick);
  if (kind == "GSV") {
    if (const auto count = wholeNumber<int>(field(line, 4))) seen_[std::string(line.substr(1, 2))] = *count;
  }
}

void FixSummary::takeGga(std::string_view line, std::uint32_t tick) {
  heard_ = tick;
  const auto quality = field(line, 7);
  fix_ = quality.empty() ? "" : std::string(fixWord(quality[0]));
  time_ = timeText(field(line, 2));
  const auto north = degreesText(field(line, 3), field(line, 4));
  const auto east = degreesText(field(line, 5), field(line, 6));
  place_ = north.empty() || east.empty() ? "" : north + "  " + east;
  used_ = field(line, 8);
  hdop_ = field(line, 9);
  correction_age_ = field(line, 14);
}

std::vector<std::string> FixSummary::texts(std::uint32_t tick) const {
  std::vector<std::string> out;
  const auto add = [&out](std::string_view before, const std::string& text, std::string_view behind = "") {
    if (!text.empty()) out.push_back(fmt::format("{}{}{}", before, text, behind));
  };
  if (heard_) {
    add("", fix_);
    add("", time_);
    add("", place_);
    int seen = 0;
    for (const auto& [talker, count] : seen_) seen += count;
    add("Sat: ", used_, seen > 0 ? fmt::format(" of {}", seen) : "");
    add("HDOP ", hdop_);
    out.push_back(fmt::format("age {:.0f} s", (tick - *heard_) / 1000.0));
    add("corrections ", correction_age_, " s old");
  } else {
    out.emplace_back("No position yet");
  }
  if (bad_ > 0) out.push_back(fmt::format("{} bad", bad_));
  return out;
}

}  // namespace kalmira
