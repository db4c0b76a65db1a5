#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "datafile/record_reader.h"
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
};

// Reads the whole file; `reader` is open and may stand anywhere. Lines that begin after the scan, in a file that is
// being logged, are not in the table. On an error `file` holds what was found before it.
FileError ScanDataFile(RecordReader& reader, ScannedFile& file);

// Where in the data file a row comes from.
struct RowPlace {
  std::uint64_t offset = 0;             // of its first reading, or of the new-station record of a break row
  std::uint32_t timeOfDayMs = kNoTime;  // of that reading, since midnight

  static constexpr std::uint32_t kNoTime = UINT32_MAX;
};

// One line as it was extracted. Memory: 16 bytes a row (TESK2: 24).
struct ExtractedLine {
  std::size_t line = 0;                      // from 1, as in the line list
  std::vector<RowPlace> rows;                // row n (from 1) is rows[n - 1]
  std::vector<std::array<float, 2>> extras;  // TESK2: the auxiliary values of each row
  std::uint64_t begin = 0;                   // of its "L" record
  std::uint64_t end = 0;                     // behind its last record

  int rowCount() const { return static_cast<int>(rows.size()); }
};

struct ExtractOptions {
  bool teskRangeTimes10 = false;  // the program's start-up choice; the file does not say it
};

// Writes the two row files of line `line` (from 1). On an error (`cannotRead` or `cannotWrite`) the rows that were
// complete before it are in the files and in `extracted`. The data file is only read.
ViewerError ExtractLine(RecordReader& reader, const ScannedFile& file, std::size_t line, const RowFiles& rowFiles,
                        const ExtractOptions& options, ExtractedLine& extracted);

}  // namespace kalmira
