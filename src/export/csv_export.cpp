#include "export/csv_export.h"

#include <algorithm>
#include <array>

#include "export/cells.h"

namespace kalmira {
namespace {

constexpr std::string_view kFirstColumns = "line,station,repeat,date,time,tick,dipole,marker,range";
constexpr std::string_view kLastColumns =
    ",longitude,latitude,altitude,easting,northing,epsg,fix,satellites,hdop,position_gap,utc,grid_x,grid_y,segment,"
    "file,"
    "kind\n";
// Start stations have two decimals in the file, increments three.
constexpr int kStationDecimals = 3;
constexpr int kDegreeDecimals = 8;  // a millimetre
constexpr int kMetreDecimals = 3;
constexpr int kSecondDecimals = 3;

constexpr std::size_t kFlushBytes = 65536;

// The ice thickness stands in tables of files that ask for it.
std::span<const Channel> channelsOf(const Header1& header) {
  return kalmira::channelsOf(instrumentOf(header.kind), header.iceOption && header.iceQuantity == 1);
}

// The rows of one file, as text.
class RowText {
 public:
  RowText(const CsvTable& table, const Header1& header, std::string_view fileName)
      : epsg_(table.zone), slots_(table.channels.size(), kNoSlot) {
    const auto channels = channelsOf(header);
    for (std::size_t i = 0; i < table.channels.size(); ++i) {
      const auto found = std::ranges::find(channels, table.channels[i], &Channel::column);
      if (found != channels.end()) slots_[i] = found->slot;
    }
    last_ = ",";
    appendText(last_, fileName);
    last_ += ',';
    last_ += instrumentOf(header.kind).name;
    last_ += '\n';
  }

  void append(std::string& text, const ReadingRow& row) {
    appendText(text, row.line);
    text += ',';
    if (row.station) appendReal(text, *row.station, kStationDecimals);
    text += ',';
    appendInteger(text, row.repeat);
    appendMoment(text, row);
    appendReading(text, row.reading);
    appendPlace(text, row);
    text += ',';
    if (row.utc) appendUtc(text, *row.utc);
    text += ',';
    if (row.grid) appendReal(text, row.grid->x, kMetreDecimals);
    text += ',';
    if (row.grid) appendReal(text, row.grid->y, kMetreDecimals);
    text += ',';
    appendInteger(text, static_cast<std::int64_t>(row.segment));
    text += last_;
  }

 private:
  static constexpr std::size_t kNoSlot = kSlots;

  // The cells date, time and tick.
  void appendMoment(std::string& text, const ReadingRow& row) {
    text += ',';
    if (row.moment && row.moment->day) {
      if (day_ != row.moment->day) {
        day_ = row.moment->day;
        date_.clear();
        appendDate(date_, *day_);
      }
      text += date_;
    }
    text += ',';
    if (row.moment) appendTimeOfDay(text, row.moment->timeOfDayMs);
    text += ',';
    if (row.tick) appendInteger(text, *row.tick);
  }

  void appendReading(std::string& text, const Reading& reading) const {
    text += ',';
    text += reading.orientation;
    text += reading.secondMode == 'M' ? ",1," : ",0,";
    if (reading.range != 0) appendInteger(text, reading.range);
    if (reading.secondRange != 0) {
      text += '/';
      appendInteger(text, reading.secondRange);
    }
    for (const auto slot : slots_) {
      text += ',';
      // Voltages of the battery are no measurement.
      if (slot == kNoSlot || reading.batteryLevels || reading.channels.present.at(slot) == 0) continue;
      appendShortest(text, reading.channels.value.at(slot));
    }
  }

  // From the longitude to the gap of the position.
  void appendPlace(std::string& text, const ReadingRow& row) const {
    if (!row.place) {
      text += ",,,,,,,,,,";
      return;
    }
    const auto& place = *row.place;
    text += ',';
    appendReal(text, place.at.longitude, kDegreeDecimals);
    text += ',';
    appendReal(text, place.at.latitude, kDegreeDecimals);
    text += ',';
    if (place.altitude) appendReal(text, *place.altitude, kMetreDecimals);
    text += ',';
    appendReal(text, place.plane.easting, kMetreDecimals);
    text += ',';
    appendReal(text, place.plane.northing, kMetreDecimals);
    text += ',';
    if (epsg_) appendInteger(text, epsg_->epsg());
    if (row.placedByGrid) {
      text += ",,,,";
      return;
    }
    text += ',';
    appendInteger(text, place.fix);
    text += ',';
    if (place.satellites) appendInteger(text, *place.satellites);
    text += ',';
    if (place.hdop) appendShortest(text, *place.hdop);
    text += ',';
    appendReal(text, place.gap_s, kSecondDecimals);
  }

  const std::optional<MapZone>& epsg_;
  std::vector<std::size_t> slots_;  // of the table's channels; kNoSlot where the file has none
  std::string last_;
  // The text of the last date written: a day has many readings.
  std::optional<std::int64_t> day_;
  std::string date_;
};

}  // namespace

void takeChannels(CsvTable& table, const Header1& header) {
  for (const auto& channel : channelsOf(header)) {
    if (std::ranges::find(table.channels, channel.column) == table.channels.end())
      table.channels.push_back(channel.column);
  }
}

RowsResult exportReadings(RecordReader& reader, CsvTable& table, std::string_view fileName, const RowOptions& options) {
  std::string text;
  text.reserve(kFlushBytes + 1024);
  if (!table.begun) {
    takeChannels(table, reader.header());
    text = kFirstColumns;
    for (const auto& channel : table.channels) (text += ',') += channel;
    text += kLastColumns;
    table.begun = true;
  }
  RowText rows(table, reader.header(), fileName);
  bool written = true;
  auto result = eachRow(reader, options, table.zone, [&](const ReadingRow& row) {
    rows.append(text, row);
    if (text.size() < kFlushBytes) return true;
    written = table.write(text);
    text.clear();
    return written;
  });
  if (written && !text.empty()) result.stopped = !table.write(text);
  return result;
}

}  // namespace kalmira
