#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kalmira {

// The text fields of the status panel. Showing a text in a field replaces what stood there.
enum class PanelField {
  file,
  state,
  battery,
  triggerMode,
  stationLabel,
  station,
  line,
  repeat,  // which reading of a station, where a station has several
  mode,
  value1,
  value2,
  value3,
  value4,
  value5,
  value6,
  range,
  marker,
  message,
  calibration,
  gpsActivity,
  gpsCount,
  satellites,
  fix,
  pdop,
  gpsNote,  // stands in for the GPS fields when GPS is off
};
inline constexpr int kPanelFields = static_cast<int>(PanelField::gpsNote) + 1;

// "state", "value1" ...
constexpr std::string_view panelFieldName(PanelField field) {
  constexpr std::array<std::string_view, kPanelFields> kNames{
      "file",        "state",       "battery",  "triggerMode", "stationLabel", "station", "line",   "repeat", "mode",
      "value1",      "value2",      "value3",   "value4",      "value5",       "value6",  "range",  "marker", "message",
      "calibration", "gpsActivity", "gpsCount", "satellites",  "fix",          "pdop",    "gpsNote"};
  return kNames[static_cast<std::size_t>(field)];
}

// Texts of fields; "" clears a field.
using FieldTexts = std::vector<std::pair<PanelField, std::string>>;

// What the texts of a reading depend on besides the reading.
struct PanelStyle {
  bool wide = true;        // long texts with units
  bool iceOption = false;  // ORLA with the ice display on
  bool feet = false;       // thickness in feet
  int listA = 0;           // ORLA 1: shows inphase only
  bool measuring = false;  // TESK2: a calibration takes this reading
};

// A row of the panel. Fields that the kind does not use are left out.
struct PanelRow {
  enum class Shape {
    flow,     // one beside the other, the last takes what is left
    columns,  // equal shares of the width
    band,     // the state's: shape, cells, and the battery's fixed place at the right
  };
  Shape shape = Shape::flow;
  std::span<const PanelField> fields;
};

// The rows that show a reading, as most kinds have them: of an upright panel, which has the width for large figures one
// below the other, and of a lying one, which has no row to spare.
namespace rows {
using F = PanelField;
using Shape = PanelRow::Shape;
inline constexpr std::array kValue1{F::value1};
inline constexpr std::array kValue2{F::value2};
inline constexpr std::array kValues12{F::value1, F::value2};
inline constexpr std::array kValues34{F::value3, F::value4};
inline constexpr std::array kValues56{F::value5, F::value6};
inline constexpr std::array kValues123{F::value1, F::value2, F::value3};
inline constexpr std::array kRange{F::range};
inline constexpr std::array kBand{F::state, F::message, F::battery};
inline constexpr std::array kStation{F::stationLabel, F::station, F::repeat, F::line, F::triggerMode};
inline constexpr std::array kFileRange{F::file, F::range};
inline constexpr std::array kUpright{PanelRow{Shape::flow, kValue1}, PanelRow{Shape::flow, kValue2},
                                     PanelRow{Shape::flow, kRange}};
// Two beside each other: for kinds with four values and more.
inline constexpr std::array kUprightPairs{PanelRow{Shape::columns, kValues12}, PanelRow{Shape::columns, kValues34},
                                          PanelRow{Shape::columns, kValues56}, PanelRow{Shape::flow, kRange}};
inline constexpr std::array kLying{PanelRow{Shape::band, kBand}, PanelRow{Shape::flow, kStation},
                                   PanelRow{Shape::columns, kValues123}, PanelRow{Shape::flow, kFileRange}};
}  // namespace rows

}  // namespace kalmira
