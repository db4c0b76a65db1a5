#include "instruments/rows.h"

namespace kalmira {
namespace {

constexpr std::array kChannels{Channel{0, "Thickness", "thickness", "Th", "m", kConductivityAxis},
                               Channel{2, "Inphase", "inph", "I", "ppt", kInphaseAxis}};
constexpr std::array kAxes{AxisChoice{kConductivityAxis, "Thickness"}, AxisChoice{kInphaseAxis, "Inphase"}};

constexpr std::array<std::string_view, 4> kTitles{"STATICTIT_GLACOH_VGA", "STATICTIT_GLACOMX", "STATICTIT_GLACOV_VGA",
                                                  "STATICTIT_GLACOAR"};

// "T123I045": no mode byte; thickness in centimetres.
Reading decode(std::string_view record, const DecodeOptions&) {
  Reading reading;
  reading.range = 100;
  reading.orientation = 'V';
  reading.secondMode = 'N';
  reading.conductivity = static_cast<float>(asciiField(record, 1, 3) / 100.0);
  reading.inphase = static_cast<float>(asciiField(record, 5, 3));
  put(reading.channels, 0, reading.conductivity);
  put(reading.channels, 2, reading.inphase);
  return reading;
}

FieldTexts panelTexts(const Reading& reading, const PanelStyle&) {
  return {{PanelField::value1, valueText("Th", reading.conductivity, "", false)},
          {PanelField::value2, valueText("IP", reading.inphase, "", false)}};
}

constexpr std::array kWidestReadings{Reading{.conductivity = -8.88F, .inphase = 888.0F}};

}  // namespace

constexpr Instrument kGlaco{
    .kind = Kind::glaco,
    .name = "GLACO",
    .title = "GLACO",
    .portLabel = "GLACO Port",
    .portFailureText = "Cannot open GLACO port",
    .settingsFile = "GLACO.INI",
    .versionTag = "CEVer2.30",
    .dataFolder = "DATAICE",
    .extension = ".IOR",
    .filterText = "GLACO Files (*.IOR)",
    .modelTag = "GLACO",
    .programVersion = "W210",
    .surveySetup = "GetSurveySetupGlaco",
    .displayOptions = "GetOptionsGlaco",
    .titlePictures = kTitles,
    .drawing = "glaco",
    .framing = Framing::ice,
    .instrumentLength = 8,
    .recordPeriodMs = 100.0,
    .onDemand = [](int surveyMode) { return surveyMode == kModeWheel; },
    .hasTrigger = false,
    .channels = kChannels,
    .axes = kAxes,
    .firstAxisIsThickness = true,
    .decode = decode,
    .panelTexts = panelTexts,
    .widestReadings = kWidestReadings,
};

}  // namespace kalmira
