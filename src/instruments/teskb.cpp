#include <fmt/format.h>

#include "instruments/rows.h"

namespace kalmira {
namespace {

constexpr std::array<std::string_view, 4> kTitles{"STATICTIT_TESKBHVGA", "STATICTIT_TESKBMX", "STATICTIT_TESKBVVGA",
                                                  "STATICTIT_TESKBAR"};

struct Ranges {
  std::int16_t range;  // of the conductivity
  std::uint16_t secondRange;
  double conductivityFactor;
  double inphaseFactor;
};

Ranges rangesOf(int code) {
  switch (code >= 4 ? code - 4 : code) {
    case 1: return {1000, 100, -1.0, -0.00288};
    case 2: return {100, 1000, -0.1, -0.0288};
    case 3: return {1000, 1000, -1.0, -0.0288};
    default: return {100, 100, -0.1, -0.00288};
  }
}

// The inphase field comes first, the reverse of ORLA's order.
Reading decode(std::string_view record, const DecodeOptions& options) {
  Reading reading;
  const auto mode = readMode(record, options, reading);
  const auto ranges = rangesOf(mode.code);
  reading.range = ranges.range;
  reading.secondRange = ranges.secondRange;
  reading.conductivity = static_cast<float>(secondField(record) * (ranges.conductivityFactor / mode.divisor));
  reading.inphase = static_cast<float>(firstField(record) * (ranges.inphaseFactor / mode.divisor));
  put(reading.channels, conductivitySlot(reading), reading.conductivity);
  put(reading.channels, inphaseSlot(reading), reading.inphase);
  return reading;
}

FieldTexts panelTexts(const Reading& reading, const PanelStyle& style) {
  const std::string_view word = reading.orientation == 'V' ? "Vertical" : "Horizontal";
  return {{PanelField::value1, valueText("C", reading.conductivity, "mS/m", style.wide)},
          {PanelField::value2, valueText("I", reading.inphase, "ppt", style.wide)},
          {PanelField::range, style.wide
                                  ? fmt::format("{}    GnC:{:<4}  GnI:{:<4}", word, reading.range, reading.secondRange)
                                  : fmt::format("{} G{:<4},{:<4}", word, reading.range, reading.secondRange)}};
}

constexpr std::array kWidestReadings{
    Reading{.conductivity = -8888.88F, .inphase = -888.88F, .orientation = 'H', .range = 1000, .secondRange = 1000}};

}  // namespace

constexpr Instrument kTeskb{
    .kind = Kind::teskb,
    .name = "TESKB",
    .title = "TESKB",
    .portLabel = "TESKB Port",
    .portFailureText = "Cannot open TESKB port",
    .settingsFile = "TESKB.INI",
    .versionTag = "CEVer2.22",
    .dataFolder = "DATATESKB",
    .documentsFolder = "DataTeskB",
    .extension = ".PTS",
    .filterText = "TESKB Files (*.PTS)",
    .modelTag = "TESKB",
    .programVersion = "W222",
    .surveySetup = "GetSurveySetupTeskB",
    .surveySetupUpright = "GetSurveySetupTeskBV",
    .titlePictures = kTitles,
    .drawing = "teskb",
    .listB = dipoleList,
    .readingsAtStation = dipolesAtStation,
    .channels = kDipoleChannels,
    .axes = kBothAxes,
    .decode = decode,
    .panelTexts = panelTexts,
    .widestReadings = kWidestReadings,
    .modeText = dipoleModeText,
};

}  // namespace kalmira
