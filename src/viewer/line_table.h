#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "datafile/record_reader.h"

// What a data file says about itself before any of its lines is shown. Everything the viewer needs of the
// instrument and its setup comes from here, never from the present settings.
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
  bool iceThickness = false;
  int seaWaterCase = 0;  // 0 to 10, where iceThickness
  // Readings of a whole station, and so the curves of the plot.
  int readingsPerStation = 1;
  std::vector<SurveyLine> lines;   // in file order
  std::uint64_t skippedBytes = 0;  // damage that was passed over
  std::uint64_t tornBytes = 0;     // behind the last whole record
};

// Reads the whole file; `reader` is open and may stand anywhere. Lines that begin after the scan, in a file
// that is being logged, are not in the table. On an error `file` holds what was found before it.
FileError ScanDataFile(RecordReader& reader, ScannedFile& file);

}  // namespace kalmira
