#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "datafile/record_text.h"
#include "support/temp_folder.h"
#include "viewer/line_extract.h"

namespace kalmira {

// An ORLA file in Auto mode; columns 16 to 19: units, list B, survey mode, list A.
inline const std::string kOrla = "ORLA2   W230GRD0000    \n";
inline const std::string kOrlaBothDipoles = "ORLA2   W230GRD0220    \n";
// Ice thickness asked for, in feet; the short instrument's sea-water case 0.
inline const std::string kOrlaIce = "ORLAS  iW230GRD100010  \n";
inline const std::string kTesk2 = "TESK2   W230GRD00001     \n";

// Station 10 on by 1.5, at 10:00:00.000, which is tick 1000.
inline std::string lineBlock(std::string_view name = "L7", std::size_t recordLength = 24) {
  return records(recordLength, {name, "B      10.00", "AN            1.500", "Z08032024 10:00:00"}) +
         formatTimeMark(static_cast<int>(recordLength), {.hour = 10}, 1000);
}

// ORLA: 10 mS/m and -2 ppt, vertical dipoles ("$") or horizontal (4).
inline std::string vertical(char first = 'T', std::uint32_t tick = 1000) {
  return formatReading(24, std::string(1, first) + "$-0400+0800", tick);
}
inline std::string horizontal(char first, std::uint32_t tick = 1000) {
  return formatReading(24, std::string(1, first) + "\x04-0400+0800", tick);
}

// A data file in memory, and its row files in a folder of their own.
struct ViewedFile {
  explicit ViewedFile(const std::string& bytes) {
    opened = reader.open(std::make_unique<std::istringstream>(bytes)).kind == FileErrorKind::none &&
             ScanDataFile(reader, file).kind == FileErrorKind::none;
  }
  ViewerError extract(std::size_t number = 1) { return ExtractLine(reader, file, number, rows, {}, line); }
  std::string line1() const { return readFile(rows.line1); }
  std::string line2() const { return readFile(rows.line2); }
  StationPoint point(int row) {
    std::vector<StationPoint> points;
    LoadLineRows(reader, file, line, 0, 0, row, points);
    return points.at(0);
  }

  TempFolder folder;
  RowFiles rows = rowFilesOf(folder.path(), 1);
  RecordReader reader;
  ScannedFile file;
  ExtractedLine line;
  bool opened = false;
};

}  // namespace kalmira
