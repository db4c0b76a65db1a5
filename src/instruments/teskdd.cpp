#include <fmt/format.h>

#include "instruments/rows.h"

namespace kalmira {
namespace {

using F = PanelField;

constexpr std::array<std::string_view, 4> kTitles{"STATICTIT_TESKDHVGA", "STATICTIT_TESKDMX", "STATICTIT_TESKDVVGA",
                                                  "STATICTIT_TESKDAR"};

// Conductivity above inphase.
constexpr std::array kConductivities{F::value1, F::value2, F::range};
constexpr std::array kInphases{F::value3, F::value4, F::file};
constexpr std::array kLyingRows{
    PanelRow{PanelRow::Shape::band, rows::kBand}, PanelRow{PanelRow::Shape::flow, rows::kStation},
    PanelRow{PanelRow::Shape::flow, kConductivities}, PanelRow{PanelRow::Shape::flow, kInphases}};

// Both dipoles in one record of one component: the vertical one's value first.
Reading decode(std::string_view record, const DecodeOptions& options) {
  Reading reading;
  const auto mode = readMode(record, options, reading);
  const auto [range, factor] = componentRange(mode.code, reading.recordType);
  reading.range = range;
  reading.conductivity = static_cast<float>(firstField(record) / mode.divisor * factor);
  reading.inphase = static_cast<float>(secondField(record) / mode.divisor * factor);
  const std::size_t slot = reading.recordType == 1 ? 2 : 0;
  put(reading.channels, slot, reading.conductivity);
  put(reading.channels, slot + 1, reading.inphase);
  return reading;
}

FieldTexts panelTexts(const Reading& reading, const PanelStyle& style) {
  const bool wide = style.wide;
  const bool conductivity = reading.recordType == 2;
  const std::string range =
      conductivity
          ? fmt::format(fmt::runtime(wide ? "Conductivity [mS/m]  Range:{:<4}" : "Conductivity  G{:<4}"), reading.range)
          : fmt::format(fmt::runtime(wide ? "      Inphase [ppt]  Range:{:<4}" : "Inphase  G{:<4}"), reading.range);
  return {{conductivity ? F::value1 : F::value3, valueText(conductivity ? "CV" : "IV", reading.conductivity, "", wide)},
          {conductivity ? F::value2 : F::value4, valueText(conductivity ? "CH" : "IH", reading.inphase, "", wide)},
          {F::range, range}};
}

std::string modeText(int, int listA, int) {
  constexpr std::string_view kComponents = "BIC";
  return fmt::format("Mode:{}", kComponents[listA >= 0 && listA < 3 ? static_cast<std::size_t>(listA) : 0]);
}

constexpr std::array kWidestReadings{
    Reading{.conductivity = -8888.88F, .inphase = -8888.88F, .range = 1000, .recordType = 1},
    Reading{.conductivity = -8888.88F, .inphase = -8888.88F, .range = 1000, .recordType = 2}};

}  // namespace

constexpr Instrument kTeskdd{
    .kind = Kind::teskdd,
    .name = "TESKDD",
    .title = "TESKDD",
    .portLabel = "TESK-DD Port",
    .portFailureText = "Cannot open TESKD port",
    .settingsFile = "TESKD.INI",
    .versionTag = "CEVer2.22",
    .dataFolder = "DATATESKD",
    .documentsFolder = "DataTeskD",
    .extension = ".QTS",
    .filterText = "TESKD Files (*.QTS)",
    .modelTag = "TESKD",
    .programVersion = "W222",
    .surveySetup = "GetSurveySetupTeskD",
    .titlePictures = kTitles,
    .drawing = "teskdd",
    .listAValues = 3,
    .listA = componentList,
    .readingsAtStation = [](int listA, int) { return listA == 0 ? 2 : 1; },
    .channels = kDipoleChannels,
    .axes = kBothAxes,
    .scalesOf = componentScales,
    .decode = decode,
    .panelTexts = panelTexts,
    .widestReadings = kWidestReadings,
    .modeText = modeText,
    .uprightValues = rows::kUprightPairs,
    .lyingFigures = kLyingRows,
    .valuesAlike = true,
};

}  // namespace kalmira
