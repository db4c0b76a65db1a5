#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

// The instrument catalogue: one row a model, and the names that are built from it. Whatever differs between
// models as data stands here; the rest of the program reads a column instead of asking for the model.
namespace kalmira {

enum class Kind : int { orla = 0, teskb, teskdd, tesk, vardo, mirka, glaco, tesk2 };
inline constexpr int kKindCount = 8;

// How the instrument's serial stream is cut into records.
enum class Framing {
  ascii,  // "T", further characters, carriage return
  ice,    // "T", three digits, "I", three digits
  tesk2,  // "T" or "t", 13 binary bytes, 255 255
};

struct Instrument {
  Kind kind;
  std::string_view name;             // as the user writes it: "ORLA"
  std::string_view title;            // of the main window
  std::string_view portLabel;        // empty: the dialog keeps its own label
  std::string_view portFailureText;  // shown when its port cannot be opened
  std::string_view settingsFile;     // bare name, "ORLA.INI"
  std::string_view versionTag;       // first line of the settings file
  std::string_view dataFolder;       // bare name under "C_DRIVE" and "Storage"
  std::string_view documentsFolder;  // bare name under "My Documents"; empty: there is none
  std::string_view extension;        // of data files, with the full stop
  std::string_view filterText;       // of the open and save dialogs
  std::string_view modelTag;         // header 1, columns 1 to 8
  std::string_view programVersion;   // header 1: "W230" followed by GRD or GPS
  // Most of the family is alike in these.
  Framing framing = Framing::ascii;
  int instrumentBaud = 9600;        // of the instrument link
  int instrumentLength = 12;        // bytes of an instrument record (TESK: the longer of its two)
  double recordPeriodMs = 91.0;     // time between two records of the stream (TESK: the longer of its two)
  int fileRecordLength = 24;        // bytes of a data file record, with its line feed
  bool fixedStorageFolder = false;  // true: always under "C_DRIVE", whatever the storage class
};

// nullptr for an index outside 0 to 7.
const Instrument* findInstrument(int kindIndex);
const Instrument& instrumentOf(Kind kind);
// By name, letter case ignored, or by index "0" to "7"; nullptr when there is none such.
const Instrument* findInstrumentByName(std::string_view nameOrIndex);

// Where the handheld keeps user files: 0 "C_DRIVE", 1 "Storage", 2 and 3 the root and "My Documents".
inline constexpr int kDefaultStorageClass = 1;

// All paths below use backslashes as the handheld does; localPath (platform/paths.h) makes them ours.
// Settings: "Storage\KALINI\ORLA.INI". With `iceOption` an ORLA has a file of its own.
std::string settingsFolder(Kind kind, int storageClass);
std::string settingsPath(Kind kind, bool iceOption, int storageClass);
// Data folder without leading or trailing backslash: the form it is created by.
std::string dataFolder(Kind kind, int storageClass);
// The form the free-name probe starts from: with a trailing backslash.
std::string dataFolderPrefix(Kind kind, int storageClass);
// The form the save dialog starts in: trailing backslash, and a leading one except under "C_DRIVE".
std::string dataFolderForDialog(Kind kind, int storageClass);
// "*.ROR"
std::string filterPattern(Kind kind);

// The 15 characters that open header 1: model tag in 8 columns, program tag. `shortInstrument` is the ORLA's
// instrument length "Short".
std::string headerTag(Kind kind, bool shortInstrument, bool gps);
// The row whose header tags open `header1`, or nullptr: how a data file says which instrument wrote it.
const Instrument* findInstrumentByHeader(std::string_view header1);

}  // namespace kalmira
