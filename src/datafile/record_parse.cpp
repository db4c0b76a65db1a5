#include "datafile/record_parse.h"

#include <charconv>
#include <chrono>
#include <cmath>

#include "platform/text.h"

namespace kalmira {
namespace {

// A GPS sentence longer than this is a damaged file's: its rest is dropped.
constexpr std::size_t kLongestSentence = 65536;

// Columns counted from 1, as in the format's description; columns past the record's end are missing.
std::string_view columns(std::string_view record, std::size_t first, std::size_t count) {
  return first <= record.size() ? record.substr(first - 1, count) : std::string_view();
}

// The whole column must be one number.
template <typename Number>
std::optional<Number> number(std::string_view column) {
  const auto text = trimmed(column);
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<double> real(std::string_view column) {
  const auto value = number<double>(column);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

// Digits only, no more than `limit`.
std::optional<int> digits(std::string_view column, int limit) {
  int value = 0;
  for (const char c : column) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + (c - '0');
  }
  return !column.empty() && value <= limit ? std::optional(value) : std::nullopt;
}

// Blanks and digits, as nearly every tick is.
std::optional<std::uint32_t> plainTick(std::string_view column) {
  std::uint64_t value = 0;
  bool digits = false;
  for (const char c : column) {
    if (c == ' ' && !digits) continue;
    if (c < '0' || c > '9') return std::nullopt;
    digits = true;
    value = value * 10 + static_cast<std::uint64_t>(c - '0');
  }
  return digits && value <= UINT32_MAX ? std::optional(static_cast<std::uint32_t>(value)) : std::nullopt;
}

int headerDigit(std::string_view record, std::size_t column) {
  return digits(columns(record, column, 1), 9).value_or(0);
}

// "HH:MM:SS"
std::optional<LocalTime> timeOfDay(std::string_view text) {
  const auto hour = digits(columns(text, 1, 2), 23);
  const auto minute = digits(columns(text, 4, 2), 59);
  const auto second = digits(columns(text, 7, 2), 60);  // a leap second
  if (!hour || !minute || !second || text[2] != ':' || text[5] != ':') return std::nullopt;
  return LocalTime{.hour = *hour, .minute = *minute, .second = *second};
}

// Bytes before the line feed.
std::string_view textOf(std::string_view record) { return record.substr(0, record.size() - 1); }

}  // namespace

RecordType recordTypeOf(std::string_view record) {
  if (record.empty()) return RecordType::unknown;
  switch (record[0]) {
    case tag::kHeader2: return RecordType::header2;
    case tag::kLine: return RecordType::lineName;
    case tag::kStart: return RecordType::startStation;
    case tag::kDirection: return RecordType::direction;
    case tag::kDate: return RecordType::date;
    case tag::kTimeMark: return RecordType::timeMark;
    case tag::kStation: return RecordType::station;
    case tag::kComment: return RecordType::comment;
    case tag::kEvent: return RecordType::event;
    case tag::kGpsFirst: return RecordType::gpsFirst;
    case tag::kGpsMore: return RecordType::gpsMore;
    case tag::kTextFirst: return RecordType::textFirst;
    case tag::kTextMore: return RecordType::textMore;
    case tag::kGpsTick: return RecordType::gpsTick;
    default: break;
  }
  if (findInstrumentByHeader(record) != nullptr) return RecordType::header1;
  if (readingRepeat(record) > 0) return RecordType::reading;
  return record[0] == tag::kCalibration ? RecordType::calibration : RecordType::unknown;
}

bool isRecord(std::string_view bytes) {
  const auto lineFeed = bytes.find('\n');
  if (lineFeed == bytes.size() - 1) return recordTypeOf(bytes) != RecordType::unknown;
  // An instrument's binary record may hold one.
  if (bytes.back() != '\n' || recordTypeOf(bytes) != RecordType::reading) return false;
  const auto text = readingText(bytes).size();
  return lineFeed < text && bytes.find('\n', text) == bytes.size() - 1 && parseTick(bytes).has_value();
}

std::optional<Header1> parseHeader1(std::string_view record) {
  const Instrument* instrument = findInstrumentByHeader(record);
  if (instrument == nullptr) return std::nullopt;
  Header1 header{.kind = instrument->kind,
                 .shortInstrument = record.substr(0, 5) == headerTag(instrument->kind, true, false).substr(0, 5),
                 .gps = columns(record, 13, 3) == "GPS",
                 .iceOption = columns(record, 8, 1) == "i",
                 .lengthUnits = headerDigit(record, 16),
                 .listB = headerDigit(record, 17),
                 .surveyMode = headerDigit(record, 18),
                 .listA = headerDigit(record, 19)};
  header.shortInstrument = header.shortInstrument && instrument->hasLengths();
  header.iceOption = header.iceOption && instrument->hasIce();
  if (header.iceOption) {
    header.iceQuantity = headerDigit(record, 20);
    header.seaWaterChoice = columns(record, 21, 1) == "A" ? 10 : headerDigit(record, 21);
  }
  if (instrument->writesVariant) header.tesk2Variant = headerDigit(record, 20);
  const auto mark = columns(record, static_cast<std::size_t>(instrument->screenMarkColumn), 1);
  header.screenMark = mark.empty() ? ' ' : mark[0];
  return header;
}

std::string parseLineName(std::string_view record) { return std::string(trimmedEnd(columns(textOf(record), 2, 8))); }

std::optional<double> parseStation(std::string_view record) { return real(columns(record, 2, 11)); }

std::optional<LineDirection> parseDirection(std::string_view record) {
  const auto increment = real(columns(record, 9, 11));
  if (!increment) return std::nullopt;
  return LineDirection{.letter = record[1], .increment = *increment};
}

std::optional<LocalTime> parseDate(std::string_view record) {
  const auto day = digits(columns(record, 2, 2), 31);
  const auto month = digits(columns(record, 4, 2), 12);
  const auto year = digits(columns(record, 6, 4), 9999);
  auto time = timeOfDay(columns(record, 11, 8));
  if (!day || !month || !year || !time) return std::nullopt;
  const std::chrono::year_month_day date(std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day)));
  if (!date.ok()) return std::nullopt;
  time->year = *year;
  time->month = *month;
  time->day = *day;
  return time;
}

std::optional<std::uint32_t> parseTick(std::string_view record) {
  if (record.size() < 12) return std::nullopt;
  if (const auto plain = plainTick(record.substr(record.size() - 11, 10))) return plain;
  const auto value = number<std::int64_t>(record.substr(record.size() - 11, 10));
  // A writer that prints the counter as a signed number gives the same 32 bits.
  if (!value || *value < INT32_MIN || *value > UINT32_MAX) return std::nullopt;
  return static_cast<std::uint32_t>(*value);
}

std::optional<TimeMark> parseTimeMark(std::string_view record) {
  const auto time = timeOfDay(columns(record, 2, 8));
  const auto milliseconds = digits(columns(record, 11, 3), 999);
  const auto tick = parseTick(record);
  if (!time || columns(record, 10, 1) != "." || !milliseconds || !tick) return std::nullopt;
  const int seconds = (time->hour * 60 + time->minute) * 60 + time->second;
  return TimeMark{.timeOfDayMs = static_cast<std::uint32_t>(seconds * 1000 + *milliseconds), .tick = *tick};
}

std::optional<CalibrationPair> parseCalibration(std::string_view record) {
  const auto channel = digits(columns(record, 2, 1), 6);
  const auto factor = real(columns(record, 3, 10));
  if (!channel || *channel == 0 || !factor) return std::nullopt;
  return CalibrationPair{
      .channel = *channel, .factor = *factor, .replaced = real(columns(record, 14, 10)).value_or(0.0)};
}

std::string_view readingText(std::string_view record) {
  return record.size() < 13 ? std::string_view() : record.substr(0, record.size() - 12);
}

int readingRepeat(std::string_view record) {
  if (record.empty()) return 0;
  const char first = record[0];
  if (first == 'T' || first == 't') return 1;
  return first >= '2' && first <= '6' ? first - '0' : 0;
}

std::string parseNote(std::string_view record) { return std::string(trimmedEnd(columns(textOf(record), 2, 11))); }

std::optional<SentenceAssembler::Sentence> SentenceAssembler::feed(std::string_view record) {
  if (record.size() < 2) return std::nullopt;
  const auto chunk = record.substr(1, record.size() - 2);
  switch (const char tag = record[0]) {
    case tag::kGpsFirst:
    case tag::kTextFirst:
      text_ = chunk;
      chunks_ = 1;
      checksum_right_ = tag == tag::kGpsFirst;
      break;
    case tag::kGpsMore:
    case tag::kTextMore:
      if (chunks_ == 0) break;
      ++chunks_;
      // A sentence shorter than one chunk stands in its continuation a second time.
      if (chunks_ == 2 && text_.ends_with(' ') && text_ == chunk) break;
      if (text_.size() < kLongestSentence) text_ += chunk;
      break;
    case tag::kGpsTick: {
      const auto tick = parseTick(record);
      const bool whole = chunks_ >= 2 && tick;
      chunks_ = 0;
      if (whole) return Sentence{trimmedEnd(text_), checksum_right_, *tick};
      break;
    }
    default: break;
  }
  return std::nullopt;
}

}  // namespace kalmira
