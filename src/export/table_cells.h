#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "export/survey_rows.h"

// The columns of the two tables, readings and events, and the cells of a row in their order, for whatever a format
// makes of cells. docs/export-formats.md says what each column holds.
namespace kalmira {

enum class ColumnType { text, integer, real, date, moment };

struct Column {
  std::string_view name;
  ColumnType type = ColumnType::text;
  std::string_view unit = {};     // "mS/m"; empty for none
  std::string_view content = {};  // in a few words, where the name needs them
};

// A channel of an instrument as a column.
struct ChannelColumn {
  std::string_view name;
  std::string_view unit;
};

// What all files of one output have in common.
struct OutputFrame {
  std::vector<ChannelColumn> channels{};  // of all files
  std::optional<MapZone> zone{};          // of eastings and northings; the first position's where it is not set
  std::string title{};                    // what the files are called
  std::optional<std::size_t> coloured{};  // of the channels, colours maps; none: the first one that has values
  bool projected = false;                 // geometries are eastings and northings where the format allows it
};

// Makes room for the channels of another file.
void takeChannels(OutputFrame& frame, const Header1& header);

std::vector<Column> readingColumns(const OutputFrame& frame);
std::span<const Column> eventColumns();

// What the cells of one file's rows need besides the row.
struct FileCells {
  FileCells(const OutputFrame& all, const Header1& header, std::string_view fileName);

  static constexpr std::size_t kNoSlot = kSlots;

  std::string name;                       // without its folder
  std::string_view kind;                  // the instrument's name
  std::vector<std::size_t> channelSlots;  // of the frame's channels; kNoSlot where the file has none
  const OutputFrame& frame;
};

// The channel's value in a reading. Voltages of the battery are no measurement.
inline std::optional<float> channelValue(const Reading& reading, std::size_t slot) {
  if (slot == FileCells::kNoSlot || reading.batteryLevels || reading.channels.present[slot] == 0) return std::nullopt;
  return reading.channels.value[slot];
}

// Where a map shows it: nullptr without a place, also for a grid that was put beside the earth.
inline const GeoPoint* mapPoint(const SurveyMoment& row) {
  const bool placed = row.place && std::isfinite(row.place->at.longitude) && std::isfinite(row.place->at.latitude);
  return placed ? &row.place->at : nullptr;
}

// Decimals of a degree (a millimetre), and of what is metres or seconds. Start stations have two in the file,
// increments three.
inline constexpr int kDegreeDecimals = 8;
inline constexpr int kDecimals = 3;

// `Cells` takes one cell after the other: none(), text(string_view), integer(int64), real(double, decimals),
// shortest(float or double), date(days since 1970), timeOfDay(ms), utc(seconds since 1970).
template <typename Cells>
void realCell(Cells& cells, const std::optional<double>& value, int decimals = kDecimals) {
  value ? cells.real(*value, decimals) : cells.none();
}

// date, time and tick
template <typename Cells>
void momentCells(Cells& cells, const SurveyMoment& row) {
  row.moment&& row.moment->day ? cells.date(*row.moment->day) : cells.none();
  row.moment ? cells.timeOfDay(row.moment->timeOfDayMs) : cells.none();
  row.tick ? cells.integer(*row.tick) : cells.none();
}

// longitude, latitude, altitude, easting, northing, epsg
template <typename Cells>
void placeCells(Cells& cells, const SurveyMoment& row, const OutputFrame& frame) {
  if (!row.place) {
    for (int i = 0; i < 6; ++i) cells.none();
    return;
  }
  cells.real(row.place->at.longitude, kDegreeDecimals);
  cells.real(row.place->at.latitude, kDegreeDecimals);
  realCell(cells, row.place->altitude);
  cells.real(row.place->plane.easting, kDecimals);
  cells.real(row.place->plane.northing, kDecimals);
  frame.zone ? cells.integer(frame.zone->epsg()) : cells.none();
}

template <typename Cells>
void readingCells(Cells& cells, const ReadingRow& row, const FileCells& file) {
  cells.text(row.line);
  realCell(cells, row.station);
  cells.integer(row.repeat);
  momentCells(cells, row);
  const auto& reading = row.reading;
  cells.text({&reading.orientation, 1});
  cells.integer(reading.secondMode == 'M' ? 1 : 0);
  cells.range(reading.range, reading.secondRange);
  for (const auto slot : file.channelSlots) {
    const auto value = channelValue(reading, slot);
    value ? cells.shortest(*value) : cells.none();
  }
  placeCells(cells, row, file.frame);
  if (row.place && !row.placedByGrid) {
    const auto& place = *row.place;
    cells.integer(place.fix);
    place.satellites ? cells.integer(*place.satellites) : cells.none();
    place.hdop ? cells.shortest(*place.hdop) : cells.none();
    cells.real(place.gap_s, kDecimals);
  } else {
    for (int i = 0; i < 4; ++i) cells.none();
  }
  row.utc ? cells.utc(*row.utc) : cells.none();
  realCell(cells, row.grid ? std::optional(row.grid->x) : std::nullopt);
  realCell(cells, row.grid ? std::optional(row.grid->y) : std::nullopt);
  cells.integer(static_cast<std::int64_t>(row.segment));
  cells.text(file.name);
  cells.text(file.kind);
}

template <typename Cells>
void eventCells(Cells& cells, const EventRow& row, const FileCells& file) {
  cells.text(file.name);
  cells.text(file.kind);
  cells.text(row.event);
  cells.text(row.text);
  cells.text(row.line);
  realCell(cells, row.station);
  momentCells(cells, row);
  row.utc ? cells.utc(*row.utc) : cells.none();
  placeCells(cells, row, file.frame);
  cells.integer(static_cast<std::int64_t>(row.segment));
}

}  // namespace kalmira
