#include "export/csv_export.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <cmath>
#include <iterator>
#include <optional>

#include "datafile/reading_context.h"
#include "datafile/record_parse.h"

namespace kalmira {
namespace {

constexpr std::array<double, 10> kPowersOfTen{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
// Scaled values up to here are exact as integers.
constexpr double kIntegerLimit = 9e15;

// `value` in exactly `width` digits.
void appendDigits(std::string& row, std::uint64_t value, std::size_t width) {
  const std::size_t end = row.size() + width;
  row.resize(end, '0');
  for (std::size_t place = end; width > 0; --width) {
    row[--place] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
}

constexpr std::string_view kCommonColumns = "line,station,repeat,date,time,tick,dipole,marker,range";
// Start stations have two decimals in the file, increments three.
constexpr int kStationDecimals = 3;
// The finest step of any channel is 0.00028, of the second inphase of a TESK2.
constexpr int kChannelDecimals = 5;

constexpr std::size_t kFlushBytes = 65536;

// The ice thickness stands in tables of files that ask for it.
std::span<const Channel> channelsOf(const Header1& header) {
  return kalmira::channelsOf(instrumentOf(header.kind), header.iceOption && header.iceQuantity == 1);
}

// What the records up to here have said.
struct FileState {
  FileState(const Header1& header, bool teskRangeTimes10)
      : columns(channelsOf(header)), decoder(header, teskRangeTimes10) {}

  std::span<const Channel> columns;
  SurveyPosition position;
  RecordTimes times;
  ReadingDecoder decoder;
  // The text of the last date written: a day has many readings.
  std::optional<std::int64_t> day;
  std::string date;
};

template <typename Value, typename Taker>
bool takeIf(const std::optional<Value>& value, Taker take) {
  if (value) take(*value);
  return value.has_value();
}

// False when the record says nothing.
bool takeRecord(FileState& state, std::string_view record) {
  switch (recordTypeOf(record)) {
    case RecordType::date: return takeIf(parseDate(record), [&](const LocalTime& date) { state.times.takeDate(date); });
    case RecordType::timeMark:
      return takeIf(parseTimeMark(record), [&](const TimeMark& mark) { state.times.takeMark(mark); });
    case RecordType::calibration:
      return takeIf(parseCalibration(record),
                    [&](const CalibrationPair& calibration) { state.decoder.takeCalibration(calibration); });
    default: return state.position.take(record);
  }
}

// The cells date, time and tick. False when there is no time.
bool appendMoment(std::string& row, FileState& state, std::optional<std::uint32_t> tick) {
  const auto moment = tick ? state.times.at(*tick) : std::nullopt;
  if (moment && moment->day) {
    if (state.day != moment->day) {
      state.day = moment->day;
      state.date.clear();
      appendDate(state.date, *moment->day);
    }
    row += state.date;
  }
  row += ',';
  if (moment) appendTimeOfDay(row, moment->timeOfDayMs);
  row += ',';
  if (tick) appendInteger(row, *tick);
  return moment.has_value();
}

void appendRange(std::string& row, const Reading& reading) {
  if (reading.range != 0) appendInteger(row, reading.range);
  if (reading.secondRange != 0) {
    row += '/';
    appendInteger(row, reading.secondRange);
  }
}

// Returns whether the row has a time.
bool appendReading(std::string& row, FileState& state, std::string_view record) {
  appendText(row, state.position.lineName());
  row += ',';
  if (const auto station = state.position.station()) appendReal(row, *station, kStationDecimals);
  row += ',';
  appendInteger(row, readingRepeat(record));
  row += ',';
  const bool timed = appendMoment(row, state, parseTick(record));
  const auto reading = state.decoder.decode(readingText(record));
  row += ',';
  row += reading.orientation;
  row += reading.secondMode == 'M' ? ",1," : ",0,";
  appendRange(row, reading);
  for (const auto& column : state.columns) {
    row += ',';
    // Voltages of the battery are no measurement.
    if (reading.batteryLevels || reading.channels.present.at(column.slot) == 0) continue;
    appendReal(row, static_cast<double>(reading.channels.value.at(column.slot)), kChannelDecimals);
  }
  row += '\n';
  return timed;
}

}  // namespace

void appendText(std::string& row, std::string_view text) {
  const bool plain =
      text.find_first_of(",\"\r\n") == std::string_view::npos && !text.starts_with(' ') && !text.ends_with(' ');
  if (plain) {
    row += text;
    return;
  }
  row += '"';
  for (const char c : text) {
    if (c == '"') row += '"';
    row += c;
  }
  row += '"';
}

// By way of an integer: several times as fast as the general conversion, which is most of an export's time.
void appendReal(std::string& row, double value, int decimals) {
  if (!std::isfinite(value)) return;
  const auto places = static_cast<std::size_t>(decimals);
  const double scaled = std::round(std::abs(value) * kPowersOfTen.at(places));
  if (scaled >= kIntegerLimit) {
    fmt::format_to(std::back_inserter(row), "{:.{}f}", value, decimals);
    return;
  }
  const auto units = static_cast<std::uint64_t>(scaled);
  if (value < 0 && units > 0) row += '-';
  const auto one = static_cast<std::uint64_t>(kPowersOfTen.at(places));
  const fmt::format_int whole(units / one);
  row.append(whole.data(), whole.size());
  if (decimals == 0) return;
  row += '.';
  appendDigits(row, units % one, places);
}

void appendInteger(std::string& row, std::int64_t value) {
  const fmt::format_int text(value);
  row.append(text.data(), text.size());
}

void appendDate(std::string& row, std::int64_t day) {
  const std::chrono::year_month_day date{std::chrono::sys_days{std::chrono::days{day}}};
  fmt::format_to(std::back_inserter(row), "{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                 static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
}

void appendTimeOfDay(std::string& row, std::uint32_t ms) {
  appendDigits(row, ms / 3600000, 2);
  row += ':';
  appendDigits(row, ms / 60000 % 60, 2);
  row += ':';
  appendDigits(row, ms / 1000 % 60, 2);
  row += '.';
  appendDigits(row, ms % 1000, 3);
}

std::string csvColumns(const Header1& header) {
  std::string columns(kCommonColumns);
  for (const auto& channel : channelsOf(header)) {
    columns += ',';
    columns += channel.column;
  }
  return columns;
}

ExportResult exportReadings(RecordReader& reader, CsvTable& table, bool teskRangeTimes10, const FileStretch& stretch) {
  ExportResult result;
  const std::string columns = csvColumns(reader.header());
  if (!table.columns.empty() && table.columns != columns) {
    result.outcome = ExportOutcome::otherColumns;
    return result;
  }
  std::string text;
  text.reserve(kFlushBytes + 1024);
  if (table.columns.empty()) text = columns + '\n';
  table.columns = columns;

  FileState state(reader.header(), teskRangeTimes10);
  Record record;
  if (stretch.begin > 0) reader.seek(stretch.begin);
  while (reader.next(record) && record.offset < stretch.end) {
    if (!takeRecord(state, record.bytes)) ++result.unreadableRecords;
    if (recordTypeOf(record.bytes) != RecordType::reading) continue;
    ++result.readings;
    if (!appendReading(text, state, record.bytes)) ++result.timelessReadings;
    if (text.size() < kFlushBytes) continue;
    if (!table.write(text)) {
      result.outcome = ExportOutcome::outputFailed;
      return result;
    }
    text.clear();
  }
  if (!text.empty() && !table.write(text)) result.outcome = ExportOutcome::outputFailed;
  return result;
}

}  // namespace kalmira
