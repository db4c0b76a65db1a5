#include "instruments/rows.h"

namespace kalmira {
namespace {

constexpr std::array<std::string_view, 4> kTitles{"STATICTIT_TESKHVGA", "STATICTIT_TESKMX", "STATICTIT_TESKVVGA",
                                                  "STATICTIT_TESKAR"};

// One component of one dipole. A record has 7 or 12 bytes, by the instrument's age.
Reading decode(std::string_view record, const DecodeOptions& options) {
  Reading reading;
  const auto mode = readMode(record, options, reading);
  auto [range, factor] = componentRange(mode.code, reading.recordType);
  factor /= mode.divisor;
  if (options.teskRangeTimes10) {
    factor *= 10.0;
    range = static_cast<std::int16_t>(range * 10);
  }
  reading.range = range;
  const auto value = static_cast<float>(firstField(record) * factor);
  if (reading.recordType == 2) {
    reading.conductivity = value;
    put(reading.channels, conductivitySlot(reading), value);
  } else {
    reading.inphase = value;
    put(reading.channels, inphaseSlot(reading), value);
  }
  return reading;
}

FieldTexts panelTexts(const Reading& reading, const PanelStyle& style) {
  const auto range = dipoleRangeText(reading, style.wide);
  if (reading.recordType == 2) {
    return {{PanelField::value1, valueText("C", reading.conductivity, "mS/m", style.wide)}, {PanelField::range, range}};
  }
  return {{PanelField::value2, valueText("I", reading.inphase, "ppt", style.wide)}, {PanelField::range, range}};
}

int readingsAtStation(int listA, int listB) {
  if (listB != 2) return 1;
  return listA == 0 ? 4 : 2;
}

constexpr std::array kWidestReadings{
    Reading{.conductivity = -88888.88F, .orientation = 'H', .range = 10000, .recordType = 2},
    Reading{.inphase = -8888.88F, .orientation = 'H', .range = 10000, .recordType = 1}};

}  // namespace

constexpr Instrument kTesk{
    .kind = Kind::tesk,
    .name = "TESK",
    .title = "TESK",
    .portLabel = "TESK Port",
    .portFailureText = "Cannot open TESK port",
    .settingsFile = "TESK.INI",
    .versionTag = "CEVer2.22",
    .dataFolder = "DATATESK",
    .documentsFolder = "DataTesk",
    .extension = ".RTS",
    .filterText = "TESK Files (*.RTS)",
    .modelTag = "TESKS",
    .programVersion = "W222",
    .surveySetup = "GetSurveySetupTesk",
    .titlePictures = kTitles,
    .drawing = "tesk",
    .asksRecordLength = true,
    .listAValues = 3,
    .listA = componentList,
    .listB = dipoleList,
    .readingsAtStation = readingsAtStation,
    .rangeTimes10 = true,
    .channels = kDipoleChannels,
    .axes = kBothAxes,
    .scalesOf = componentScales,
    .decode = decode,
    .rawFields = asciiFirstField,
    .panelTexts = panelTexts,
    .widestReadings = kWidestReadings,
    .modeText = dipoleModeText,
};

}  // namespace kalmira
