#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "datafile/survey_notes.h"
#include "viewer/line_extract.h"
#include "viewer/plot_view.h"
#include "viewer/readout.h"
#include "viewer/row_files.h"

namespace kalmira {

// A data file in the viewer, its lines, and of the line that is shown the rows in view.
struct OpenedFile {
  std::filesystem::path path;
  RecordReader reader;
  ScannedFile scanned;
  SurveyNotes notes;  // from beside the file
  ExtractedLine line;
  std::vector<StationPoint> points;  // rows firstPoint on
  int firstPoint = 1;
};

// Opens and scans the file, with the notes beside it; nullptr when it cannot be opened, or is no data file. `problem`
// says why, or what went wrong later: what was read before it is there.
std::unique_ptr<OpenedFile> openDataFile(const std::filesystem::path& path, std::string& problem);

// Extracts line `index` (from 0); a choice that the options do not make, the notes may. An empty text, or what went
// wrong.
std::string openLine(OpenedFile& file, std::size_t index, const RowFiles& rowFiles, const ExtractOptions& options);

// The rows in view, or where they are summed up that at the bar alone. The messages for the operator, for there may be
// two.
std::vector<std::string> loadView(OpenedFile& file, const PlotView& view, const Navigation& state);

// Writes some more of the line's row files: a few milliseconds. False when there is nothing more to do; `problem` then
// says what went wrong, if anything did.
bool fillSome(OpenedFile& file, std::string& problem);

// What has come into a file that is being logged since it was looked at.
struct FileGrowth {
  bool rows = false;   // of the line that is shown
  bool lines = false;  // others have begun
};
FileGrowth followFile(OpenedFile& file);

// "111510A.ROR  ORLA ice", whether it is damaged, and the project and site of its notes.
std::string fileCaption(const OpenedFile& file);

// What is said of the row at the bar: its fields, and what stands between it and the next station; or that there is
// none.
struct RowReadout {
  std::vector<ReadoutField> fields;
  std::vector<std::string> notes;
};
RowReadout readoutOf(OpenedFile& file, const Navigation& state);

}  // namespace kalmira
