#include <array>

#include "instruments/rows.h"

namespace kalmira {
namespace {

using F = PanelField;

// Parts per thousand for each mS/m of the quadrature scale; the second coil's is a quarter of the first's.
constexpr double kInphaseFactor1 = 0.028819;
constexpr double kInphaseFactor2 = 0.00720475;

constexpr std::array kChannels{Channel{0, "Conductivity 1 V", "cond1_v", "C1 V", "mS/m", kConductivityAxis},
                               Channel{1, "Conductivity 1 H", "cond1_h", "C1 H", "mS/m", kConductivityAxis},
                               Channel{2, "Inphase 1 V", "inph1_v", "I1 V", "ppt", kInphaseAxis},
                               Channel{3, "Inphase 1 H", "inph1_h", "I1 H", "ppt", kInphaseAxis},
                               Channel{4, "Conductivity 2 V", "cond2_v", "C2 V", "mS/m", kConductivityAxis},
                               Channel{5, "Conductivity 2 H", "cond2_h", "C2 H", "mS/m", kConductivityAxis},
                               Channel{6, "Inphase 2 V", "inph2_v", "I2 V", "ppt", kInphaseAxis},
                               Channel{7, "Inphase 2 H", "inph2_h", "I2 H", "ppt", kInphaseAxis}};

constexpr std::array<std::string_view, 2> kInphaseScaling{"ppt", "Unscaled"};

constexpr std::array<std::string_view, 4> kTitles{"STATICTIT_TESK2H_VGA", "STATICTIT_TESK2MX", "STATICTIT_TESK2ARVGA",
                                                  "STATICTIT_TESK2AR"};

// Its two coils one below the other.
constexpr std::array kBand{F::state, F::triggerMode, F::message, F::battery};
constexpr std::array kStation{F::stationLabel, F::station, F::repeat, F::file, F::line};
constexpr std::array kCoil1{F::value1, F::value2, F::value5};
constexpr std::array kCoil2{F::value3, F::value4, F::value6};
constexpr std::array kCalibration{F::calibration};
constexpr std::array kLyingRows{PanelRow{PanelRow::Shape::band, kBand}, PanelRow{PanelRow::Shape::flow, kStation},
                                PanelRow{PanelRow::Shape::columns, kCoil1}, PanelRow{PanelRow::Shape::columns, kCoil2},
                                PanelRow{PanelRow::Shape::flow, kCalibration}};

// The six words of a record in their order, most significant byte first, from byte 2 on.
enum Word : std::size_t { conductivity2, inphase2, conductivity1, inphase1, auxiliary1, auxiliary2 };
constexpr std::size_t kWords = 6;
constexpr std::size_t kFirstWord = 2;

// Conductivity offsets are added, inphase offsets subtracted.
enum Offset : std::size_t { inphaseV1, inphaseV2, inphaseH1, inphaseH2, cond1, cond2 };

unsigned byteAt(std::string_view record, std::size_t position) {
  return position < record.size() ? static_cast<unsigned char>(record[position]) : 0U;
}

unsigned wordAt(std::string_view record, std::size_t word) {
  return byteAt(record, kFirstWord + 2 * word) * 256U + byteAt(record, kFirstWord + 2 * word + 1);
}

// The scale that both quantities share: 0 to 65535 is -1280 to almost 1280, 32768 is 0.
double scaled(unsigned word) { return (5 * static_cast<int>(word) / 1024.0 - 160.0) * 8.0; }

// Offsets are applied in single precision, to the rounded value.
float conductivityOf(unsigned word, float offset) { return static_cast<float>(scaled(word)) + offset; }

float inphaseOf(unsigned word, double factor, bool unscaled, float offset) {
  return static_cast<float>(unscaled ? scaled(word) : scaled(word) * factor) - offset;
}

float auxiliaryOf(unsigned word) { return static_cast<float>(word / 3.108 - 50.0); }

bool marked(std::string_view record) {
  const unsigned mode = byteAt(record, 1);
  return mode != 2 && mode != 6;
}

// 14 bytes: start letter, mode byte, six words. The reader has raised the mode byte by 16 and 8 for the
// markers. It is tested with them: a marked record is vertical and "M" whatever the instrument said.
Reading decode(std::string_view record, const DecodeOptions& options) {
  Reading reading;
  const bool vertical = byteAt(record, 1) >= 4;
  const bool unscaled = options.listA == 1;
  const auto& offset = options.calibration;
  const auto word = [record](std::size_t which) { return wordAt(record, which); };
  reading.orientation = vertical ? 'V' : 'H';
  reading.secondMode = marked(record) ? 'M' : 'N';
  reading.conductivity = conductivityOf(word(conductivity1), offset[cond1]);
  reading.conductivity2 = conductivityOf(word(conductivity2), offset[cond2]);
  reading.inphase = inphaseOf(word(inphase1), kInphaseFactor1, unscaled, offset[vertical ? inphaseV1 : inphaseH1]);
  reading.inphase2 = inphaseOf(word(inphase2), kInphaseFactor2, unscaled, offset[vertical ? inphaseV2 : inphaseH2]);
  reading.auxiliary = {auxiliaryOf(word(auxiliary1)), auxiliaryOf(word(auxiliary2))};
  std::size_t slot = vertical ? 0 : 1;
  for (const float value : {reading.conductivity, reading.inphase, reading.conductivity2, reading.inphase2}) {
    put(reading.channels, slot, value);
    slot += 2;
  }
  return reading;
}

RecordFields rawFields(std::string_view record) {
  RecordFields fields{.value = {}, .count = kWords};
  for (std::size_t i = 0; i < kWords; ++i) fields.value[i] = static_cast<float>(wordAt(record, i));
  return fields;
}

void putRawFields(std::span<char> record, const RecordFields& fields) {
  for (std::size_t i = 0; i < fields.count; ++i) {
    const auto word = static_cast<unsigned>(fields.value[i]);
    record[kFirstWord + 2 * i] = static_cast<char>(word >> 8U);
    record[kFirstWord + 2 * i + 1] = static_cast<char>(word & 0xFFU);
  }
}

// While a calibration measures, the auxiliary values stay as they are, and the first inphase is shown as a raw one.
FieldTexts panelTexts(const Reading& reading, const PanelStyle& style) {
  const bool wide = style.wide;
  FieldTexts texts{{F::value1, valueText("C", reading.conductivity, "mS/m", wide)},
                   {F::value2, valueText("I", reading.inphase, style.measuring ? "mS/m" : "ppt", wide)},
                   {F::value3, valueText("c", reading.conductivity2, "mS/m", wide)},
                   {F::value4, valueText("i", reading.inphase2, "ppt", wide)}};
  if (style.measuring) return texts;
  texts.emplace_back(F::value5, valueText("T", reading.auxiliary[0], "", wide));
  texts.emplace_back(F::value6, valueText("t", reading.auxiliary[1], "", wide));
  return texts;
}

constexpr std::array kWidestReadings{Reading{.conductivity = -8888.88F,
                                             .inphase = -8888.88F,
                                             .conductivity2 = -8888.88F,
                                             .inphase2 = -8888.88F,
                                             .auxiliary = {20888.88F, 20888.88F}}};

}  // namespace

constexpr Instrument kTesk2{
    .kind = Kind::tesk2,
    .name = "TESK2",
    .title = "TESK2",
    .portLabel = "TESK-2 Port",
    .portFailureText = "Cannot open TESK2 port",
    .settingsFile = "TESK2.INI",
    .versionTag = "CEVer2.30",
    .dataFolder = "DATATESK2",
    .documentsFolder = "DataTesk2",
    .extension = ".NTS",
    .filterText = "TESK2 Files (*.NTS)",
    .modelTag = "TESK2",
    .programVersion = "W230",
    .surveySetup = "GetSurveySetupTeskB",  // as a TESKB is, deliberately
    .loggerSetup = "GetLoggerSetupTesk2",
    .displayOptions = "GetOptionsTesk2",
    .titlePictures = kTitles,
    .drawing = "tesk2",
    .framing = Framing::tesk2,
    .instrumentBaud = 19200,
    .instrumentLength = 14,
    .recordPeriodMs = 50.0,
    .fileRecordLength = 26,
    .recordedBytes = 14,
    .writesVariant = true,
    .screenMarkColumn = 25,
    .listA = [](int) { return SurveyList{.label = "Inphase", .entries = kInphaseScaling}; },
    .listB = dipoleList,
    .readingsAtStation = dipolesAtStation,
    .calibrated = true,
    .hasMarker = true,
    .channels = kChannels,
    .axes = kBothAxes,
    .unscaledInphase = true,
    .drawsAuxiliary = true,
    .decode = decode,
    .triggerPressed = marked,
    .rawFields = rawFields,
    .putRawFields = putRawFields,
    .panelTexts = panelTexts,
    .widestReadings = kWidestReadings,
    .modeText = dipoleModeText,
    .uprightValues = rows::kUprightPairs,
    .lyingFigures = kLyingRows,
};

}  // namespace kalmira
