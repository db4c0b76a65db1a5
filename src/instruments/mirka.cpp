#include <fmt/format.h>

#include "instruments/rows.h"

namespace kalmira {
namespace {

// All that it draws stands on the conductivity's scale, the inphase, too.
constexpr std::array kChannels{Channel{0, "Conductivity", "cond", "C", "mS/m", kConductivityAxis},
                               Channel{2, "Inphase", "inph", "I", "ppt", kConductivityAxis}};

RangeRow rangeOf(int code) {
  switch (code) {
    case 0: return {1000, -25.0};
    case 4: return {100, -2.5};
    case 6: return {1000, -25.0};
    default: return {10, -0.25};
  }
}

// One pair of slots for both orientations, and an inphase whose factor the range does not touch.
Reading decode(std::string_view record, const DecodeOptions& options) {
  Reading reading;
  const auto mode = readMode(record, options, reading);
  const auto [range, factor] = rangeOf(mode.code);
  reading.range = range;
  reading.conductivity = static_cast<float>(firstField(record) * factor);
  reading.inphase = static_cast<float>(secondField(record) * -0.25);
  put(reading.channels, 0, reading.conductivity);
  put(reading.channels, 2, reading.inphase);
  return reading;
}

FieldTexts panelTexts(const Reading& reading, const PanelStyle& style) {
  return {{PanelField::value1, valueText("C", reading.conductivity, "", style.wide)},
          {PanelField::value2, fmt::format("Sep:{:<8.2f} m", static_cast<double>(reading.inphase))}};
}

constexpr std::array kWidestReadings{Reading{.conductivity = -248888.88F, .inphase = -888.88F}};

}  // namespace

// A reduced member of the family: no title of its own, and one folder whatever the storage class.
constexpr Instrument kMirka{
    .kind = Kind::mirka,
    .name = "MIRKA",
    .title = "KALMIRA",
    .portFailureText = "Cannot open MIRKA port",
    .settingsFile = "MIRKA.INI",
    .versionTag = "CEVer2.10",
    .dataFolder = "DATAMIRKA",
    .fixedStorageFolder = true,
    .extension = ".RMI",
    .filterText = "MIRKA Files (*.RMI)",
    .modelTag = "MIRKA",
    .programVersion = "W210",
    .surveySetup = "GetSurveySetupMirka",
    .drawing = "mirka",
    .channels = kChannels,
    .axes = kOneAxis,
    .scalesOf = [](int) { return CurveScales{.conductivity = true, .inphase = false}; },
    .decode = decode,
    .panelTexts = panelTexts,
    .widestReadings = kWidestReadings,
    .modeText = [](int, int, int) { return std::string(); },
};

}  // namespace kalmira
