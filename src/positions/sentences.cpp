#include "positions/sentences.h"

#include <array>
#include <chrono>
#include <cmath>

#include "platform/text.h"

namespace kalmira {
namespace {

constexpr std::size_t kAddress = 6;  // "$GPGGA"

// The texts between a sentence's commas, without its checksum; missing ones are empty.
class Fields {
 public:
  explicit Fields(std::string_view sentence) {
    auto rest = sentence.substr(0, sentence.find('*'));
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      const auto comma = rest.find(',');
      fields_[i] = rest.substr(0, comma);
      if (comma == std::string_view::npos) return;
      rest.remove_prefix(comma + 1);
    }
  }
  std::string_view operator[](std::size_t index) const { return fields_[index]; }

 private:
  std::array<std::string_view, 16> fields_{};
};

bool isDigits(std::string_view text) {
  for (const char c : text) {
    if (c < '0' || c > '9') return false;
  }
  return !text.empty();
}

// Digits, with a fraction or without.
bool isPlain(std::string_view text) {
  const auto point = text.find('.');
  if (point == std::string_view::npos) return isDigits(text);
  return isDigits(text.substr(0, point)) && (point + 1 == text.size() || isDigits(text.substr(point + 1)));
}

std::optional<double> number(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (!isPlain(text.substr(negative ? 1 : 0))) return std::nullopt;
  return parseReal(text);
}

int twoDigits(std::string_view text) { return (text[0] - '0') * 10 + (text[1] - '0'); }

// "hhmmss.ss"; 60 is the second that is put in.
std::optional<double> timeOfDay(std::string_view text) {
  if (text.size() < 6 || !isDigits(text.substr(0, 6)) || !isPlain(text)) return std::nullopt;
  const int hour = twoDigits(text);
  const int minute = twoDigits(text.substr(2));
  const double second = parseReal(text.substr(4));
  if (hour > 23 || minute > 59 || second >= 61) return std::nullopt;
  return (hour * 60 + minute) * 60 + second;
}

// "5057.90000" and its hemisphere; the minutes have two digits before the point.
std::optional<double> angle(std::string_view text, std::string_view side, std::string_view sides, double most) {
  const auto whole = text.find('.') == std::string_view::npos ? text.size() : text.find('.');
  if (whole < 3 || whole > 5 || !isPlain(text) || side.size() != 1 || sides.find(side[0]) == std::string_view::npos)
    return std::nullopt;
  const double minutes = parseReal(text.substr(whole - 2));
  const double degrees = parseInt(text.substr(0, whole - 2)) + minutes / 60;
  if (minutes >= 60 || degrees > most) return std::nullopt;
  return side[0] == sides[0] ? degrees : -degrees;
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

}  // namespace

bool isPositionSentence(std::string_view sentence) { return isKind(sentence, "GGA"); }

PositionFault parsePosition(std::string_view sentence, PositionSentence& position) {
  const Fields fields(sentence);
  if (fields[6].size() != 1 || !isDigits(fields[6])) return PositionFault::unreadable;
  if (fields[6] == "0") return PositionFault::noFix;
  const auto time = timeOfDay(fields[1]);
  const auto latitude = angle(fields[2], fields[3], "NS", 90);
  const auto longitude = angle(fields[4], fields[5], "EW", 180);
  if (!time || !latitude || !longitude) return PositionFault::unreadable;
  position = {.timeOfDay_s = *time,
              .latitude = *latitude,
              .longitude = *longitude,
              .quality = fields[6][0] - '0',
              .altitude = number(fields[9]),
              .geoidSeparation = number(fields[11]),
              .satellites = std::nullopt,
              .hdop = number(fields[8]),
              .correctionAge_s = number(fields[13])};
  if (isDigits(fields[7])) position.satellites = parseInt(fields[7]);
  return PositionFault::none;
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
