#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "datafile/record_reader.h"
#include "viewer/line_summary.h"
#include "viewer/line_walk.h"
#include "viewer/row_files.h"

// What a data file says about itself before any of its lines is shown. Everything the viewer needs of the instrument
// and its setup comes from here, never from the present settings.
namespace kalmira {

// One survey line. Small, since a damaged file may hold a million of them.
struct SurveyLine {
  std::uint64_t offset = 0;       // of its "L" record
  std::array<char, 8> letters{};  // the name, zero bytes behind it
};
// As the line list shows it: up to its first blank, plain ASCII.
std::string lineNameOf(const SurveyLine& line);

struct ScannedFile {
  Header1 header;
  // Which kind of plot: an ORLA file that asks for ice thickness in place of conductivity and inphase.
  bool wantsThickness = false;
  int seaWaterCase = 0;  // 0 to 10, where wantsThickness
  // Readings of a whole station, and so the curves of the plot.
  int readingsPerStation = 1;
  std::vector<SurveyLine> lines;   // in file order
  std::uint64_t skippedBytes = 0;  // damage that was passed over
  std::uint64_t tornBytes = 0;     // behind the last whole record
  std::uint64_t scannedTo = 0;     // offset behind the last record
};

// Reads the whole file; `reader` is open and may stand anywhere. On an error `file` holds what was found before it.
FileError ScanDataFile(RecordReader& reader, ScannedFile& file);

// One line as it was extracted. Memory: 0.3 bytes a row and its summary.
struct ExtractedLine {
  std::size_t line = 0;  // from 1, as in the line list
  ExtractOptions options;
  std::uint64_t begin = 0;                   // of its "L" record
  std::vector<LineWalk::State> waypoints{};  // every thousand rows or so, from its first record on
  LineWalk::State last{};                    // behind its last record so far
  bool complete = false;                     // another line begins there
  LineSummary summary{};
  RowFilling filling{};

  int rowCount() const { return last.rows; }
  std::uint64_t end() const { return last.offset; }
};

// Goes over line `line` (from 1) and begins its two row files; those of a line that is soon written are whole then. On
// an error (`cannotRead` or `cannotWrite`) the rows before it are in `extracted`. The data file is only read.
ViewerError ExtractLine(RecordReader& reader, const ScannedFile& file, std::size_t line, const RowFiles& rowFiles,
                        const ExtractOptions& options, ExtractedLine& extracted);

// What has come behind the line's last record since, where the file grows. True: there are more rows.
bool extendLine(RecordReader& reader, const ScannedFile& file, ExtractedLine& extracted);
// Lines that have begun since the scan, which are added to the table. True: there are some.
bool extendScan(RecordReader& reader, ScannedFile& file);

// Writes the row files up to row `upTo`, as far as there are that many. What went wrong since they were begun.
ViewerError fillRows(RecordReader& reader, const ScannedFile& file, ExtractedLine& line, int upTo);

// Rows `first` (from 1) and on out of the data file, until `take`, told the number and the row, says that it is enough,
// or the record at `until` is reached.
void walkRows(RecordReader& reader, const ScannedFile& file, const ExtractedLine& line, int first,
              const std::function<bool(int row, const LineRow&)>& take, std::uint64_t until = UINT64_MAX);

}  // namespace kalmira
