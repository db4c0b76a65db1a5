#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "settings/settings.h"
#include "viewer/line_extract.h"

// What is said about the station at the bar.
namespace kalmira {

enum class NoteKind { comment, event, mark, newStation };
struct StationNote {
  NoteKind kind = NoteKind::comment;
  std::string text;  // plain ASCII; of a mark "Mark"
  std::optional<std::uint32_t> timeOfDayMs;
};

// What stands in the file from a station's first reading to the next station; with row 1 also what stands before it in
// the line.
struct StationNotes {
  std::vector<StationNote> notes;
  bool batteryLevels = false;  // ORLA: the reading holds battery voltages
  bool more = false;           // there were too many to list
};
// Found again in the data file: nothing but their places is kept in memory. A row that does not exist has none, nor has
// one whose records are gone from the file.
StationNotes readStationNotes(RecordReader& reader, const ScannedFile& file, const ExtractedLine& line, int row);

// Where the row is in the data file; offset 0 of a row that does not exist.
RowPlace placeOfRow(RecordReader& reader, const ScannedFile& file, const ExtractedLine& line, int row);

// One value of the readout.
struct ReadoutField {
  std::string label;  // "C V", "Stn", "Time"
  std::string value;  // "12.34"
  std::string unit;   // "mS/m", or empty
  int trace = -1;     // 0 to 9: the trace in whose colour the label may be marked; -1: none
};

// The fields of a row's point in a fixed order: station, time of day, then every channel present. Thickness is in the
// file's own unit of length.
std::vector<ReadoutField> readoutFields(const ScannedFile& file, const RowPlace& place, const StationPoint& point);
// "C V: 12.34 mS/m"
std::string readoutText(const ReadoutField& field);
// "10:05:07 Comment: gate", "Event: $STARTED" (no time known).
std::string noteText(const StationNote& note);

// The scale settings of the curves that the file's plot has: "C:0/10  I:-10/10".
std::string scaleStatusText(const ScannedFile& file, const Settings& settings);

}  // namespace kalmira
