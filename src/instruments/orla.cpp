#include <fmt/format.h>

#include "instruments/rows.h"

namespace kalmira {
namespace {

// The short instrument counts inphase this many times as large as the standard one.
constexpr double kShortInphase = 3.35;
constexpr double kFixedInphase = -0.0025;
constexpr double kMetresPerFoot = 0.3048;

constexpr std::array kChannels{Channel{0, "Conductivity V", "cond_v", "C V", "mS/m", kConductivityAxis},
                               Channel{1, "Conductivity H", "cond_h", "C H", "mS/m", kConductivityAxis},
                               Channel{2, "Inphase V", "inph_v", "I V", "ppt", kInphaseAxis},
                               Channel{3, "Inphase H", "inph_h", "I H", "ppt", kInphaseAxis},
                               Channel{4, "Ice Thickness", "thickness", "Th", "m", kIceAxis}};

constexpr std::array<std::string_view, 2> kDisplay{"Cond./Inphase", "Inphase"};

constexpr std::array<std::string_view, 5> kTitles{"STATICTIT_ORLA", "STATICTIT_ORLAMX", "STATICTIT_ORLAHVGA",
                                                  "STATICTIT_ORLAVVGA", "STATICTIT_ORLAAR"};
constexpr std::array<std::string_view, 4> kIceTitles{"STATICTIT_ICEH_VGA", "STATICTIT_ICEMX", "STATICTIT_ICEV_VGA",
                                                     "STATICTIT_ICEAR"};

constexpr std::array kValue1Range{PanelField::value1, PanelField::range};
constexpr std::array kValue3{PanelField::value3};
constexpr std::array kIceRows{PanelRow{PanelRow::Shape::flow, kValue1Range},
                              PanelRow{PanelRow::Shape::flow, rows::kValue2}, PanelRow{PanelRow::Shape::flow, kValue3}};

bool inphaseOnly(int listA) { return listA == 1; }

RangeRow rangeOf(int code) {
  switch (code) {
    case 0: return {1000, -0.25};
    case 2: return {10, -0.0025};
    case 4: return {100, -0.025};
    case 6: return {1000, -0.25};
    default: return {1000, -0.0025};  // the odd codes: battery records, in volts
  }
}

// A record is "TA+0123-0045": conductivity field first. One with an odd mode byte has the battery's two voltages.
Reading decode(std::string_view record, const DecodeOptions& options) {
  Reading reading;
  const auto mode = readMode(record, options, reading);
  const auto [range, factor] = rangeOf(mode.code);
  const double conductivityField = firstField(record);
  const double inphaseField = secondField(record);
  double conductivity = conductivityField * factor;
  double inphase = inphaseField * factor;
  reading.batteryLevels = mode.odd;
  if (!mode.odd && inphaseOnly(options.listA)) {
    // Showing inphase only, the instrument sends it in the conductivity field; that value stays unscaled. The short
    // instrument's inphase takes no range factor.
    conductivity = conductivityField;
    inphase = options.orlaModelOption ? conductivityField / kShortInphase : conductivityField * factor * 0.25;
  } else if (!mode.odd) {
    inphase = inphaseField * kFixedInphase;
    if (options.orlaModelOption) inphase /= kShortInphase;
  }
  reading.range = range;
  reading.conductivity = static_cast<float>(conductivity);
  reading.inphase = static_cast<float>(inphase);
  if (!inphaseOnly(options.listA)) put(reading.channels, conductivitySlot(reading), reading.conductivity);
  put(reading.channels, inphaseSlot(reading), reading.inphase);
  return reading;
}

std::string thicknessText(const Reading& reading, const PanelStyle& style) {
  const bool wide = style.wide;
  if (reading.orientation == 'V') return wide ? "Th: N/A in mode V" : "T:N/A in V";
  if (reading.thickness < 0.0F) return wide ? "T: Out of Range" : "T:Off Range";
  const double metres = static_cast<double>(reading.thickness);
  if (style.feet) return fmt::format(fmt::runtime(wide ? "Th: {:<8.2f}ft" : "T[ft]:{:<8.2f}"), metres / kMetresPerFoot);
  return fmt::format(fmt::runtime(wide ? "Th: {:<8.2f}m" : "T[m]:{:<8.2f}"), metres);
}

FieldTexts panelTexts(const Reading& reading, const PanelStyle& style) {
  const bool wide = style.wide;
  if (reading.batteryLevels) {
    return {{PanelField::value1, valueText("B", reading.conductivity, "Volt", wide)},
            {PanelField::value2, valueText("B", reading.inphase, "Volt", wide)},
            {PanelField::value3, ""},
            {PanelField::range, "Battery Levels"}};
  }
  FieldTexts texts{{PanelField::value1,
                    inphaseOnly(style.listA) ? std::string() : valueText("C", reading.conductivity, "mS/m", wide)},
                   {PanelField::value2, valueText("I", reading.inphase, "ppt", wide)}};
  if (!style.iceOption) {
    texts.emplace_back(PanelField::range, dipoleRangeText(reading, wide));
    return texts;
  }
  texts.emplace_back(PanelField::value3, thicknessText(reading, style));
  texts.emplace_back(PanelField::range, wide ? fmt::format("Mode:{}  R:{:<4}", reading.orientation, reading.range)
                                             : fmt::format("{} G{:<4}", reading.orientation, reading.range));
  return texts;
}

constexpr Reading kWidest{.conductivity = -8888.88F, .inphase = -8888.88F, .orientation = 'H', .range = 1000};
constexpr Reading kWidestVertical{.conductivity = -8888.88F, .inphase = -8888.88F, .orientation = 'V', .range = 1000};
constexpr Reading kThick{.orientation = 'H', .thickness = 270.9306F};  // 888.88 ft
constexpr Reading kBattery{.conductivity = -88.88F, .inphase = -88.88F, .batteryLevels = true};
constexpr std::array kWidestReadings{kWidest, kWidestVertical, kThick, kBattery};

}  // namespace

constexpr Instrument kOrla{
    .kind = Kind::orla,
    .name = "ORLA",
    .title = "ORLA",
    .portLabel = "ORLA Port",
    .portFailureText = "Cannot open ORLA port",
    .settingsFile = "ORLA.INI",
    .iceSettingsFile = "ORLICE.INI",
    .versionTag = "CEVer2.30",
    .dataFolder = "DATAORLA",
    .documentsFolder = "DataOrla",
    .extension = ".ROR",
    .filterText = "ORLA Files (*.ROR)",
    .modelTag = "ORLA2",
    .shortModelTag = "ORLAS",
    .programVersion = "W230",
    .surveySetup = "GetSurveySetupOrlaH",
    .surveySetupUpright = "GetSurveySetupOrlaV",
    .surveySetupWide = "GetSurveySetupOrlaHWIDE",
    .loggerSetup = "GetLoggerSetupOrla",
    .loggerSetupIce = "GetLoggerSetupOrlaIce",
    .displayOptionsIce = "GetOptionsIceNew",
    .titlePictures = kTitles,
    .titlePicturesIce = kIceTitles,
    .drawing = "orla",
    .drawingIce = "orla_ice",
    .listA = [](int) { return SurveyList{.label = "Display", .entries = kDisplay}; },
    .listB = dipoleList,
    .readingsAtStation = dipolesAtStation,
    .channels = kChannels,
    .axes = kBothAxes,
    .scalesOf = [](int listA) { return CurveScales{.conductivity = !inphaseOnly(listA), .inphase = true}; },
    .decode = decode,
    .panelTexts = panelTexts,
    .widestReadings = kWidestReadings,
    .modeText = dipoleModeText,
    .uprightIceValues = kIceRows,
};

}  // namespace kalmira
