#include "positions/sentences.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>

#include "platform/text.h"

namespace kalmira {
namespace {

constexpr std::size_t kAddress = 6;  // "$GPGGA"

// The texts between a sentence's commas, without its checksum; missing ones are empty. Of the first `count` only.
class Fields {
 public:
  static constexpr std::size_t kMost = 16;

  explicit Fields(std::string_view sentence, std::size_t count = kMost) {
    const char* at = sentence.data();
    const char* const end = at + sentence.size();
    const auto separates = [](char c) { return c <= ',' && (c == ',' || c == '*'); };  // digits and letters are behind
    for (std::size_t field = 0; field < count; ++field, ++at) {
      const char* const begin = at;
      while (at != end && !separates(*at)) ++at;
      fields_[field] = {begin, static_cast<std::size_t>(at - begin)};
      if (at == end || *at == '*') return;
    }
  }
  std::string_view operator[](std::size_t index) const { return fields_[index]; }

 private:
  std::array<std::string_view, kMost> fields_{};
};

bool isDigits(std::string_view text) {
  for (const char c : text) {
    if (c < '0' || c > '9') return false;
  }
  return !text.empty();
}

std::optional<double> number(std::string_view text) {
  if (!text.starts_with('-')) return plainNumber(text);
  const auto size = plainNumber(text.substr(1));
  return size ? std::optional(-*size) : std::nullopt;
}

int twoDigits(std::string_view text) { return (text[0] - '0') * 10 + (text[1] - '0'); }

// "hhmmss.ss"; 60 is the second that is put in.
std::optional<double> timeOfDay(std::string_view text) {
  if (text.size() < 6 || !isDigits(text.substr(0, 6))) return std::nullopt;
  const int hour = twoDigits(text);
  const int minute = twoDigits(text.substr(2));
  const auto second = plainNumber(text.substr(4));
  if (hour > 23 || minute > 59 || !second || *second >= 61) return std::nullopt;
  return (hour * 60 + minute) * 60 + *second;
}

// "5057.90000" and its hemisphere; the minutes have two digits before the point.
std::optional<double> angle(std::string_view text, std::string_view side, char positive, char negative, double most) {
  const auto whole = std::min(text.find('.'), text.size());
  if (whole < 3 || whole > 5 || !isDigits(text.substr(0, whole))) return std::nullopt;
  if (side.size() != 1 || (side[0] != positive && side[0] != negative)) return std::nullopt;
  const auto minutes = plainNumber(text.substr(whole - 2));
  if (!minutes || *minutes >= 60) return std::nullopt;
  const double degrees = *plainNumber(text.substr(0, whole - 2)) + *minutes / 60;
  if (degrees > most) return std::nullopt;
  return side[0] == positive ? degrees : -degrees;
}

std::optional<std::int64_t> dayOf(int year, int month, int day) {
  const std::chrono::year_month_day date(std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day)));
  if (!date.ok()) return std::nullopt;
  return std::chrono::sys_days(date).time_since_epoch().count();
}

bool isKind(std::string_view sentence, std::string_view kind) {
  return sentence.size() > kAddress && sentence[kAddress] == ',' && sentence.substr(3, 3) == kind && sentence[1] != 'P';
}

std::optional<DatedTime> dated(std::optional<std::int64_t> day, std::optional<double> time, bool whileFixed) {
  if (!day || !time) return std::nullopt;
  if (*time >= kDay_s) return DatedTime{*day + 1, *time - kDay_s, whileFixed};
  return DatedTime{*day, *time, whileFixed};
}

// What no fix can be without stands in the first fields.
constexpr std::size_t kFixFields = 7;
PositionFault parseFix(const Fields& fields, PositionSentence& position) {
  if (fields[6].size() != 1 || !isDigits(fields[6])) return PositionFault::unreadable;
  if (fields[6] == "0") return PositionFault::noFix;
  const auto time = timeOfDay(fields[1]);
  const auto latitude = angle(fields[2], fields[3], 'N', 'S', 90);
  const auto longitude = angle(fields[4], fields[5], 'E', 'W', 180);
  if (!time || !latitude || !longitude) return PositionFault::unreadable;
  position.timeOfDay_s = *time;
  position.latitude = *latitude;
  position.longitude = *longitude;
  position.quality = fields[6][0] - '0';
  return PositionFault::none;
}

}  // namespace

bool isPositionSentence(std::string_view sentence) { return isKind(sentence, "GGA"); }

PositionFault parsePosition(std::string_view sentence, PositionSentence& position) {
  const Fields fields(sentence);
  const auto fault = parseFix(fields, position);
  if (fault != PositionFault::none) return fault;
  position.altitude = number(fields[9]);
  position.geoidSeparation = number(fields[11]);
  position.satellites = isDigits(fields[7]) ? std::optional(parseInt(fields[7])) : std::nullopt;
  position.hdop = number(fields[8]);
  position.correctionAge_s = number(fields[13]);
  return PositionFault::none;
}

std::optional<double> fixTimeOfDay(std::string_view sentence) {
  PositionSentence position;
  if (parseFix(Fields(sentence, kFixFields), position) != PositionFault::none) return std::nullopt;
  return position.timeOfDay_s;
}

std::optional<DatedTime> parseDatedTime(std::string_view sentence) {
  const bool rmc = isKind(sentence, "RMC");
  if (!rmc && !isKind(sentence, "ZDA")) return std::nullopt;
  const Fields fields(sentence);
  if (rmc) {
    const auto date = fields[9];
    if (fields[2] != "A" || date.size() != 6 || !isDigits(date)) return std::nullopt;
    // Two digits of the year: nobody surveyed before the satellites flew.
    const int year = twoDigits(date.substr(4));
    return dated(dayOf(year < 80 ? 2000 + year : 1900 + year, twoDigits(date.substr(2)), twoDigits(date)),
                 timeOfDay(fields[1]), true);
  }
  for (const std::size_t field : {2U, 3U, 4U}) {
    if (!isDigits(fields[field]) || fields[field].size() > 4) return std::nullopt;
  }
  return dated(dayOf(parseInt(fields[4]), parseInt(fields[3]), parseInt(fields[2])), timeOfDay(fields[1]), false);
}

std::optional<double> parseAccuracy(std::string_view sentence) {
  if (!isKind(sentence, "GST")) return std::nullopt;
  const Fields fields(sentence);
  const auto north = number(fields[6]);
  const auto east = number(fields[7]);
  if (!north || !east) return std::nullopt;
  return std::hypot(*north, *east);
}

}  // namespace kalmira
