#include <fmt/format.h>

#include "instruments/rows.h"

namespace kalmira {
namespace {

constexpr std::array kChannels{Channel{0, "Cond. V10", "cond_v10", "C V10", "mS/m", kConductivityAxis},
                               Channel{1, "Cond. V20", "cond_v20", "C V20", "mS/m", kConductivityAxis},
                               Channel{2, "Cond. V40", "cond_v40", "C V40", "mS/m", kConductivityAxis},
                               Channel{3, "Cond. H10", "cond_h10", "C H10", "mS/m", kConductivityAxis},
                               Channel{4, "Cond. H20", "cond_h20", "C H20", "mS/m", kConductivityAxis},
                               Channel{5, "Cond. H40", "cond_h40", "C H40", "mS/m", kConductivityAxis}};
// The three slots of vertical readings come first, then those of the horizontal ones.
constexpr std::size_t kHorizontalBase = 3;

constexpr std::array<std::string_view, 6> kCoils{"V10", "V20", "V40", "H10", "H20", "H40"};
constexpr std::array<std::string_view, 6> kReadings{"1", "2", "3", "4", "5", "6"};

constexpr std::array<std::string_view, 4> kTitles{"STATICTIT_VARDOHVGA", "STATICTIT_VARDOMX", "STATICTIT_VARDOVVGA",
                                                  "STATICTIT_VARDOAR"};

RangeRow rangeOf(int code) {
  switch (code) {
    case 0: return {3, -0.00075};
    case 2: return {10, -0.0025};
    case 3: return {30, -0.0075};
    case 4: return {100, -0.025};
    case 5: return {300, -0.075};
    default: return {1000, -0.25};
  }
}

// Here the sense of the orientation bit is the reverse of the other kinds'. The second value is the coil separation.
Reading decode(std::string_view record, const DecodeOptions& options) {
  Reading reading;
  int rest = readMode(record, options, reading).rest;
  const bool horizontal = takeWeight(rest, 32);
  reading.orientation = horizontal ? 'H' : 'V';
  std::size_t step = 1;
  reading.inphase = 20.0F;
  if (takeWeight(rest, 24)) {
    step = 2;
    reading.inphase = 40.0F;
  } else if (takeWeight(rest, 16)) {
    step = 0;
    reading.inphase = 10.0F;
  } else {
    takeWeight(rest, 8);
  }
  const auto [range, factor] = rangeOf(rest);
  reading.range = range;
  reading.conductivity = static_cast<float>(firstField(record) * factor);
  put(reading.channels, (horizontal ? kHorizontalBase : 0) + step, reading.conductivity);
  return reading;
}

FieldTexts panelTexts(const Reading& reading, const PanelStyle& style) {
  return {{PanelField::value1, valueText("C", reading.conductivity, "mS/m", style.wide)},
          {PanelField::value2, fmt::format("Sep:{:2.0f} m", static_cast<double>(reading.inphase))},
          {PanelField::range, dipoleRangeText(reading, style.wide)}};
}

int coilSetting(int listB) { return listB >= 0 && listB < static_cast<int>(kCoils.size()) ? listB : 0; }

std::string modeText(int surveyMode, int, int listB) {
  const int setting = coilSetting(listB);
  if (surveyMode == kModeManual) return fmt::format("Rdgs:{}", setting + 1);
  return fmt::format("M:{}", kCoils[static_cast<std::size_t>(setting)]);
}

SurveyList listB(int surveyMode) {
  if (surveyMode == kModeManual) return {.label = "Rdgs/Station", .entries = kReadings};
  return {.label = "Coil Setting", .entries = kCoils};
}

constexpr std::array kWidestReadings{
    Reading{.conductivity = -8888.88F, .inphase = 40.0F, .orientation = 'H', .range = 1000}};

}  // namespace

constexpr Instrument kVardo{
    .kind = Kind::vardo,
    .name = "VARDO",
    .title = "VARDO",
    .portLabel = "VARDO Port",
    .portFailureText = "Cannot open VARDO port",
    .settingsFile = "VARDO.INI",
    .versionTag = "CEVer2.30",
    .dataFolder = "DATAVARDO",
    .documentsFolder = "DataVardo",
    .extension = ".RVD",
    .filterText = "VARDO Files (*.RVD)",
    .modelTag = "VARDO",
    .programVersion = "W230",
    .surveySetup = "GetSurveySetupVardo",
    .displayOptions = "GetOptionsVardo",
    .profileScale = "GetNewProfileScaleVardo",
    .titlePictures = kTitles,
    .drawing = "vardo",
    .savesBattery = true,
    .onDemand = [](int) { return true; },
    .listBValues = 6,
    .listB = listB,
    .readingsAtStation = [](int, int listB) { return coilSetting(listB) + 1; },
    .channels = kChannels,
    .axes = kOneAxis,
    .scalesOf = [](int) { return CurveScales{.conductivity = true, .inphase = false}; },
    .inphaseScale = false,
    .decode = decode,
    .panelTexts = panelTexts,
    .widestReadings = kWidestReadings,
    .modeText = modeText,
};

}  // namespace kalmira
