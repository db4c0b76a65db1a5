#include "instruments/panel_fields.h"

#include <fmt/format.h>

namespace kalmira {

std::string_view panelFieldName(PanelField field) {
  static constexpr std::array<std::string_view, kPanelFields> kNames{
      "file",        "state",       "battery",  "triggerMode", "stationLabel", "station", "line",   "repeat", "mode",
      "value1",      "value2",      "value3",   "value4",      "value5",       "value6",  "range",  "marker", "message",
      "calibration", "gpsActivity", "gpsCount", "satellites",  "fix",          "pdop",    "gpsNote"};
  return kNames[static_cast<std::size_t>(field)];
}

std::string valueText(std::string_view label, float value, std::string_view unit, bool wide) {
  return fmt::format("{}:{:<8.2f}{}", label, static_cast<double>(value), wide ? unit : std::string_view{});
}

std::string dipoleModeText(int, int, int listB) {
  constexpr std::string_view kModes = "VHB";
  return fmt::format("Mode:{}", kModes[listB >= 0 && listB < 3 ? static_cast<std::size_t>(listB) : 0]);
}

}  // namespace kalmira
