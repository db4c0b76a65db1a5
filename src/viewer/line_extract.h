#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "viewer/line_table.h"
#include "viewer/row_files.h"

namespace kalmira {

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

// Writes the two row files of line `line` (from 1). On an error (`cannotRead` or `cannotWrite`) the rows that
// were complete before it are in the files and in `extracted`. The data file is only read.
ViewerError ExtractLine(RecordReader& reader, const ScannedFile& file, std::size_t line, const RowFiles& rowFiles,
                        const ExtractOptions& options, ExtractedLine& extracted);

}  // namespace kalmira
