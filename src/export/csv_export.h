#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "datafile/record_reader.h"

// The cells of a table of comma-separated values, each appended to the row in the making.
namespace kalmira {

// In quotes where a comma, a quote or a blank at its end would be lost otherwise.
void appendText(std::string& row, std::string_view text);
// Rounded to `decimals` (0 to 9) decimals, halves away from zero; never "-0.00". Nothing at all for what is no finite
// number.
void appendReal(std::string& row, double value, int decimals);
void appendInteger(std::string& row, std::int64_t value);
// "2024-03-07", from days since 1970-01-01.
void appendDate(std::string& row, std::int64_t day);
// "09:05:04.089"
void appendTimeOfDay(std::string& row, std::uint32_t ms);

// A data file as a table of comma-separated values, one row a reading: "Export" in docs/data-file-format.md names every
// column. The file is read as a stream; neither its size nor the number of its readings takes memory.

// Takes the next piece of the table. False when it cannot; why is for the sink's owner to say.
using TextSink = std::function<bool(std::string_view)>;

// A table in the making. Several files of one kind make one table under one header.
struct CsvTable {
  TextSink write;
  std::string columns;  // the header row; empty until the first file is exported
};

enum class ExportOutcome {
  done,          // to the file's end, or to its first unreadable byte: see the reader's error
  otherColumns,  // the table has columns that this file does not fit; nothing was added
  outputFailed,  // the sink said no
};

struct ExportResult {
  ExportOutcome outcome = ExportOutcome::done;
  std::uint64_t readings = 0;           // rows
  std::uint64_t timelessReadings = 0;   // rows without a time: no time mark before them, or no readable tick
  std::uint64_t unreadableRecords = 0;  // whole records with a date, time or number that is none
};

// "line,station,...": the header row of the file's kind, without the line end.
std::string csvColumns(const Header1& header);

// Records of a file, from the one at `begin` up to the one at `end`. A line's block says all that its readings need.
struct FileStretch {
  std::uint64_t begin = 0;
  std::uint64_t end = UINT64_MAX;
};

// Adds the readings of the file that `reader` has opened. What damage it met, the reader tells. `teskRangeTimes10`: the
// start-up choice for a TESK, which its files do not tell.
ExportResult exportReadings(RecordReader& reader, CsvTable& table, bool teskRangeTimes10 = false,
                            const FileStretch& stretch = {});

}  // namespace kalmira
