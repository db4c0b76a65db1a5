#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "settings/settings.h"
#include "settings/settings_file.h"

// What whoever works on a survey needs to know beyond its readings. It stands beside the data file as JSON, so the data
// file itself stays as it is. All functions may be called from any thread.
namespace kalmira {

struct SurveyNotes {
  // Asked of the operator, kept from survey to survey. Empty: not said.
  std::string project{};
  std::string site{};
  std::string operatorName{};  // in the file "operator"
  std::string instrumentSerial{};
  std::string calibrationDate{};             // any text
  std::optional<double> instrumentHeight{};  // metres above the ground, 0 to 100
  // Where the GPS antenna is, in metres from the instrument's middle, -100 to 100, seen in the direction of travel.
  std::optional<double> antennaAhead{};
  std::optional<double> antennaRight{};
  std::optional<double> antennaUp{};
  std::optional<double> gpsLag{};  // seconds by which the fastest sentence comes after its fix, -10 to 10

  // Filled in by the program, for the survey it has just begun.
  std::string version{};                    // of the program
  std::string kind{};                       // the instrument's name: "ORLA"
  std::string created{};                    // the machine's local time: "2026-05-14T09:30:00"
  std::optional<double> utcOffset{};        // seconds that its local time is ahead of UTC, within a day
  std::optional<double> clockDifference{};  // seconds that its clock is ahead of the receiver's UTC
  std::optional<bool> teskRangeTimes10{};   // a TESK's ranges are ten times what its data file tells
  // As the survey began with them: "surveyMode", "traceWidth[2]", as fieldText gives them.
  std::vector<std::pair<std::string, std::string>> settings{};

  bool operator==(const SurveyNotes&) const = default;
};

// A field but the settings: its name in the file, where it lives, and what it takes.
struct NotesField {
  using Member = std::variant<std::string SurveyNotes::*, std::optional<double> SurveyNotes::*,
                              std::optional<bool> SurveyNotes::*>;
  std::string_view name;
  Member member;
  bool asked = true;  // of the operator
  double least = 0;   // of a number
  double most = 0;
};
std::span<const NotesField> notesFields();

// As an operator reads and types it; empty where nothing is said.
std::string noteText(const SurveyNotes& notes, const NotesField& field);
// Sets a field that is asked of the operator; an empty value takes back what was said. Returns an empty text, or what
// is wrong, in one sentence without a full stop: no such field, no number, out of range, control characters, a text of
// more than kLongestNote bytes. The notes are then left alone.
inline constexpr std::size_t kLongestNote = 1000;
std::string setNote(SurveyNotes& notes, std::string_view name, std::string_view text);
std::string setNote(SurveyNotes& notes, std::string_view fieldAndValue);  // "gpsLag=0.2"

// The fields that are asked of the operator, and nothing else.
SurveyNotes askedNotes(const SurveyNotes& notes);
// The fields of the kind's settings file, as SurveyNotes holds them.
std::vector<std::pair<std::string, std::string>> settingsForNotes(const Settings& settings, Kind kind, bool iceOption);

// "111510A.ROR" has its notes in "111510A.ROR.json".
std::filesystem::path notesPathBeside(const std::filesystem::path& dataFile);
// The operator's last notes, which a new survey begins with: NOTES.json in the folder of the settings file.
std::filesystem::path lastNotesPath(const SettingsPlace& place);

// Nothing when there is no such file, or none that can be read: `problem` tells the second in words, else it is empty.
// Of a file that is broken or has fields that cannot be taken, `problem` says which, and the notes are the rest of it.
std::optional<SurveyNotes> readNotes(const std::filesystem::path& path, std::string& problem);
std::optional<SurveyNotes> readNotesBeside(const std::filesystem::path& dataFile, std::string& problem);

// Of a file's text; what cannot be taken `problem` says, else it is empty.
SurveyNotes parseNotes(std::string_view text, std::string& problem);
// The file's text: what is said, field by field. Any text can be read again, with "\ufffd" for what is no UTF-8.
std::string formatNotes(const SurveyNotes& notes);
// Replaces the file whole or not at all, committed to the disk. Returns an empty text, or why it could not be written.
std::string writeNotes(const std::filesystem::path& path, const SurveyNotes& notes);

}  // namespace kalmira
