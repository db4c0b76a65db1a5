#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "instruments/catalogue.h"

namespace kalmira {

inline constexpr std::size_t kTraces = 8;
inline constexpr std::size_t kLineNameCharacters = 24;

// Everything the operator sets up, with the values a new logger starts from. List choices hold the position in their
// list, counted from 0. A file may hold anything: readers of a choice go through indexOr, readers of the interval
// through readingsIntervalOf.
struct Settings {
  int instrumentLength = 0;  // ORLA: 0 "Standard", 1 "Short"
  int iceDisplay = 0;        // ORLA with the ice option: 0 "Disabled", 1 "Enabled"
  int iceQuantity = 0;       // 0 "Cond./Inphase", 1 "Ice Thickness"
  int seaWaterChoice = 0;    // 0 to 10: 2000 to 3000 mS/m in steps of 100
  float iceMinimum = 9.0F;   // metres, profile scale
  float iceMaximum = 10.0F;
  int lengthUnits = 0;          // 0 "meters", 1 "feet"
  int instrumentPortIndex = 0;  // 0 to 11 for COM1 to COM12
  int audio = 1;                // 0 "No", 1 "Yes": a beep with the readings
  int pauseKey = 0;             // 0 to 3
  std::array<int, kTraces> traceShown{1, 1, 1, 1, 1, 1, 1, 1};
  std::array<int, kTraces> traceWidth{2, 2, 2, 2, 2, 2, 2, 2};  // pixels, 1 to 4
  // 0x00BBGGRR; dark and bright enough apart for colour-blind eyes on white, in sunlight.
  std::array<int, kTraces> traceColour{0x00B27200, 0x00005ED5, 0x00739E00, 0x00A779CC,
                                       0x00000000, 0x00E9B456, 0x00009FE6, 0x00666666};
  int profileGrid = 1;               // 0 no grid; else the scale at the axis: 1 conductivity, 2 inphase, 3 ice
  float conductivityMinimum = 0.0F;  // mS/m (GLACO: metres of ice)
  float conductivityMaximum = 10.0F;
  float inphaseMinimum = -10.0F;  // parts per thousand
  float inphaseMaximum = 10.0F;
  int gpsInput = 0;          // 0 "Disabled", 1 "Enabled"
  int gpsPortIndex = 1;      // 0 to 11 for COM1 to COM12
  int gpsBaudIndex = 0;      // 0 to 7: 4800 to 460800
  int gpsDataBitsIndex = 1;  // 0 "7", 1 "8"
  int gpsParityIndex = 0;    // 0 "No", 1 "Even", 2 "Odd"
  int gpsStopBitsIndex = 0;  // 0 "1", 1 "2"
  int surveyMode = kModeAuto;
  int surveyListA = 0;    // by kind: displayed quantity or component
  int surveyListB = 0;    // by kind: dipole mode or coil setting
  int readingsCount = 1;  // samples in an average, 1 to 100
  int tesk2Variant = 1;   // 1 "TESK-2-1", 2 "TESK-2"
  // TESK2: inphase offsets V1, V2, H1, H2, then conductivity offsets 1 and 2.
  std::array<float, 6> calibrationFactors{};
  std::array<float, 3> modeIncrement{1.0F, 1.0F, 1.0F};  // station increment of each survey mode
  float readingsInterval = 1.0F;                         // seconds between two logged readings in Auto mode
  std::string lineName = "1";                            // UTF-8, at most 24 characters
  float lineIncrement = 1.0F;
  int sequenceMode = 0;  // 0 "Alternate", 1 "One Way"
  int direction = 2;     // 0 "West", 1 "South", 2 "North", 3 "East"
  double startStation = 0.0;
  float stationIncrement = 1.0F;
  int softMarker = 0;
  int markerPortChoice = 0;  // 0 "Disabled"; n is COM n up to 5, COM n+1 from 6 on: there is no COM6
};

// `value` when it is a position of a list of `count` entries, else `fallback`.
constexpr int indexOr(int value, int count, int fallback) { return value >= 0 && value < count ? value : fallback; }

// The survey mode as used: 0 to 2.
int surveyModeOf(const Settings& settings);
// The readings interval as used, in seconds: finite and positive, at most a day.
float readingsIntervalOf(const Settings& settings);
// The samples of an average as used: 1 to 100.
int readingsCountOf(const Settings& settings);

// Which settings files hold a field.
enum class FieldScope { all, lengths, ice, variant, calibration, marker };

// One line of the settings file: where the value lives in the record and how it is written.
struct SettingsField {
  using Member = std::variant<int Settings::*, float Settings::*, double Settings::*, std::string Settings::*,
                              std::array<int, kTraces> Settings::*, std::array<float, 3> Settings::*,
                              std::array<float, 6> Settings::*>;
  std::string_view name;  // "readingsInterval", "traceWidth"
  FieldScope scope;
  Member member;
};

// All fields in file order; an array stands once and takes a line an element.
std::span<const SettingsField> settingsFields();

// Whether files of this kind (and, for an ORLA, ice option) hold the field.
bool fieldApplies(const SettingsField& field, Kind kind, bool iceOption);

// Lines the field takes in a file: 1, or the size of its array.
std::size_t fieldSize(const SettingsField& field);

// Element `index` (0 for a plain field) as it stands in a file, and back. Numbers that do not parse give 0.
std::string fieldText(const Settings& settings, const SettingsField& field, std::size_t index);
void setFieldText(Settings& settings, const SettingsField& field, std::size_t index, std::string_view text);

// A field, or an element of one, by the name users write: "surveyMode", "traceWidth[2]".
struct FieldRef {
  const SettingsField* field;
  std::size_t index;
};
std::optional<FieldRef> findField(std::string_view name);

}  // namespace kalmira
