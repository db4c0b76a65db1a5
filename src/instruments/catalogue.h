#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "instruments/panel_fields.h"
#include "instruments/reading.h"

// What an instrument is: one row a kind, each in a file of its own (orla.cpp ... tesk2.cpp). Whatever differs between
// kinds is a column, as a value, a table or a small function; the rest of the program reads columns and never asks
// which kind it has.
namespace kalmira {

enum class Kind : int { orla = 0, teskb, teskdd, tesk, vardo, mirka, glaco, tesk2 };
inline constexpr int kKindCount = 8;

// Survey mode, trigger mode and GPS logging mode are one value.
inline constexpr int kModeAuto = 0;
inline constexpr int kModeWheel = 1;
inline constexpr int kModeManual = 2;

// How the instrument's serial stream is cut into records.
enum class Framing {
  ascii,  // "T", further characters, carriage return
  ice,    // "T", three digits, "I", three digits
  tesk2,  // "T" or "t", 13 binary bytes, 255 255
};

// A value of a reading. `axis` is the scale it is drawn on: 0 conductivity (GLACO: thickness), 1 inphase, 2 ice.
struct Channel {
  std::size_t slot = 0;
  std::string_view name;    // of its trace, in the display options
  std::string_view column;  // of exported tables
  std::string_view label;   // in the viewer's readout
  std::string_view unit;
  int axis = 0;
};
inline constexpr int kConductivityAxis = 0;
inline constexpr int kInphaseAxis = 1;
inline constexpr int kIceAxis = 2;

// A scale that the profile's axis can show.
struct AxisChoice {
  int group = 0;  // as Channel::axis
  std::string_view name;
};

// One of the two survey lists of a kind in a survey mode.
struct SurveyList {
  std::string_view label;
  std::span<const std::string_view> entries;  // empty: there is no such list
  int firstValue = 0;                         // what the settings hold for the first entry
  int usual = 0;                              // what is taken when the settings hold nothing of the list

  bool offers(int value) const { return value >= firstValue && value < firstValue + static_cast<int>(entries.size()); }
};
inline SurveyList noSurveyList(int) { return {}; }

// Which of the two scales a file's curves stand on, by list A of its header.
struct CurveScales {
  bool conductivity = true;
  bool inphase = true;
};
inline CurveScales bothScales(int) { return {}; }

inline bool allTheTime(int) { return false; }

// Of a record of the ASCII kinds, see rows.h.
bool asciiTriggerPressed(std::string_view record);
RecordFields asciiRawFields(std::string_view record);
void putAsciiFields(std::span<char> record, const RecordFields& fields);

struct Instrument {
  Kind kind = Kind::orla;
  // --- names
  std::string_view name{};             // as the user writes it: "ORLA"
  std::string_view title{};            // of the main window
  std::string_view portLabel{};        // empty: the dialog keeps its own label
  std::string_view portFailureText{};  // shown when its port cannot be opened
  std::string_view settingsFile{};     // bare name, "ORLA.INI"
  std::string_view iceSettingsFile{};  // the same with the ice option; empty: a kind without that option
  std::string_view versionTag{};       // first line of the settings file
  std::string_view dataFolder{};       // bare name under "C_DRIVE" and "Storage"
  std::string_view documentsFolder{};  // bare name under "My Documents"; empty: there is none
  bool fixedStorageFolder = false;     // true: always under "C_DRIVE", whatever the storage class
  std::string_view extension{};        // of data files, with the full stop
  std::string_view filterText{};       // of the open and save dialogs
  std::string_view modelTag{};         // header 1, columns 1 to 8
  std::string_view shortModelTag{};    // the same of the instrument length "Short"; empty: there is one length only
  std::string_view programVersion{};   // header 1: "W230" followed by GRD or GPS
  // --- dialog templates and title pictures
  std::string_view surveySetup{};         // on a lying screen of storage class 0 or 1
  std::string_view surveySetupUpright{};  // empty: as surveySetup; so the next
  std::string_view surveySetupWide{};     // on a lying screen of another storage class
  std::string_view loggerSetup = "GetLoggerSetupTesk";
  std::string_view loggerSetupIce{};
  std::string_view displayOptions = "GetOptions";
  std::string_view displayOptionsIce{};
  std::string_view profileScale{};  // empty: "GetNewProfileScaleOrla", small screens "GetNewProfileScaleOrlaH"
  std::span<const std::string_view> titlePictures{};  // largest choice first as the screens came
  std::span<const std::string_view> titlePicturesIce{};
  std::string_view drawing{};  // of the title: a file of resources/titles, without its ending
  std::string_view drawingIce{};
  // --- the link
  Framing framing = Framing::ascii;
  int instrumentBaud = 9600;      // bit/s
  int instrumentLength = 12;      // bytes of a record (TESK: the longer of its two)
  double recordPeriodMs = 91.0;   // time between two records of the stream (TESK: the longer of its two)
  bool asksRecordLength = false;  // the record length is found out before logging
  bool savesBattery = false;      // falls asleep by itself: a silent link asks for it to be woken
  // Records come when something asks for one, not all the time: silence alone is no fault then.
  bool (*onDemand)(int surveyMode) = allTheTime;
  // --- files
  int fileRecordLength = 24;  // bytes of a data file record, with its line feed
  int recordedBytes = 12;     // of an instrument's record, in a reading record
  int listAValues = 2;        // header 1 holds 0 to one less; other settings count as 0
  int listBValues = 3;
  bool writesVariant = false;  // header 1 has the instrument variant in column 20
  int screenMarkColumn = 23;   // of header 1
  // --- the survey
  SurveyList (*listA)(int surveyMode) = noSurveyList;
  SurveyList (*listB)(int surveyMode) = noSurveyList;
  // Readings of a whole station in Manual mode, by the two lists of header 1; nullptr: always one.
  int (*readingsAtStation)(int listA, int listB) = nullptr;
  // Has a trigger: Wheel and Manual mode wait for it, and samples are averaged in Manual mode. Without one every
  // reading is recorded, and beeps.
  bool hasTrigger = true;
  bool rangeTimes10 = false;  // its ranges may be ten times as large: a start-up choice
  bool calibrated = false;    // has calibration factors, which the operator measures and files hold
  bool hasMarker = false;     // an external marker line, and keys that mark
  // --- readings
  std::span<const Channel> channels{};  // by slot; those of the ice option last
  std::span<const AxisChoice> axes{};
  CurveScales (*scalesOf)(int listA) = bothScales;
  bool inphaseScale = true;           // the scale dialog has one for inphase
  bool firstAxisIsThickness = false;  // metres with one decimal, not mS/m
  bool unscaledInphase = false;       // list A 1: inphase as the instrument counts it; two further traces then
  bool drawsAuxiliary = false;        // the two auxiliary values are shown, and drawn where inphase is unscaled
  // What `record` says; bytes past its end read as blanks, in a binary one as zero. Any bytes give some values; nothing
  // here fails.
  Reading (*decode)(std::string_view record, const DecodeOptions& options) = nullptr;
  // The trigger is pressed, by the record itself.
  bool (*triggerPressed)(std::string_view record) = asciiTriggerPressed;
  // The numbers of a record, and averages of them put back, in the record's own form and cut to whole numbers.
  RecordFields (*rawFields)(std::string_view record) = asciiRawFields;
  void (*putRawFields)(std::span<char> record, const RecordFields& fields) = putAsciiFields;
  // --- the panel
  FieldTexts (*panelTexts)(const Reading& reading, const PanelStyle& style) = nullptr;
  std::span<const Reading> widestReadings{};  // between them the widest text of every field of panelTexts
  // The mode field by survey mode and lists; nullptr: the kind has none. "" where it stays blank.
  std::string (*modeText)(int surveyMode, int listA, int listB) = nullptr;
  std::span<const PanelRow> uprightValues = rows::kUpright;
  std::span<const PanelRow> uprightIceValues{};  // with the ice display on
  std::span<const PanelRow> lyingFigures = rows::kLying;
  bool valuesAlike = false;  // the value fields are as wide as the widest of them: they stand in columns

  bool hasIce() const { return !iceSettingsFile.empty(); }
  bool hasLengths() const { return !shortModelTag.empty(); }
};

// nullptr for an index outside 0 to 7.
const Instrument* findInstrument(int kindIndex);
const Instrument& instrumentOf(Kind kind);
// By name, letter case ignored, or by index "0" to "7"; nullptr when there is none such.
const Instrument* findInstrumentByName(std::string_view nameOrIndex);

// The channels of a kind; `ice`: with those that the ice option brings.
std::span<const Channel> channelsOf(const Instrument& instrument, bool ice);

// Where the handheld keeps user files: 0 "C_DRIVE", 1 "Storage", 2 and 3 the root and "My Documents".
inline constexpr int kDefaultStorageClass = 1;

// All paths below use backslashes as the handheld does; localPath (platform/paths.h) makes them ours. Settings:
// "Storage\KALINI\ORLA.INI". With `iceOption` an ORLA has a file of its own.
std::string settingsPath(Kind kind, bool iceOption, int storageClass);
// Data folder without leading or trailing backslash: the form it is created by.
std::string dataFolder(Kind kind, int storageClass);
// The form the free-name probe starts from: with a trailing backslash.
std::string dataFolderPrefix(Kind kind, int storageClass);
// "*.ROR"
std::string filterPattern(Kind kind);

// The 15 characters that open header 1: model tag in 8 columns, program tag. `shortInstrument` is the ORLA's instrument
// length "Short".
std::string headerTag(Kind kind, bool shortInstrument, bool gps);
// The row whose header tags open `header1`, or nullptr: how a data file says which instrument wrote it.
const Instrument* findInstrumentByHeader(std::string_view header1);

// Readings of a whole station, how many "T", "2", "3" ... records stand at one: for logging and for reading back alike.
// `listA` and `listB` are columns 19 and 17 of header 1.
int readingsPerStationOf(Kind kind, int surveyMode, int listA, int listB);

// The names of dialog templates and title pictures, by kind and screen. A dialog is loaded by the name given here.

std::string_view surveySetupTemplate(Kind kind, bool portrait, int storageClass);
std::string_view loggerSetupTemplate(Kind kind, bool iceOption);
std::string_view displayOptionsTemplate(Kind kind, bool iceOption);
// `small`: storage class 1 without the wide layout.
std::string_view profileScaleTemplate(Kind kind, bool iceOption, bool small);
std::string_view newStationTemplate(bool small);
inline constexpr std::string_view kGpsPortSetupTemplate = "GetGPSPortSetup";

// The title pictures of a kind, largest choice first as the screens came; MIRKA has none of its own.
std::span<const std::string_view> titlePictures(Kind kind, bool iceOption);
// The pictures that every kind's title shows.
std::span<const std::string_view> commonTitlePictures();

}  // namespace kalmira
