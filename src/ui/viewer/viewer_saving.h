#pragma once

#include <QByteArray>
#include <filesystem>
#include <string>
#include <string_view>

#include "settings/settings.h"
#include "viewer/opened_file.h"

// What the viewer writes, and what it must not write over.
namespace kalmira {

// Why nothing may be written to `target`: it has the extension of a data file, or is the open file by another name.
// Empty: it may.
std::string saveProblem(const std::filesystem::path& target, const std::filesystem::path& openFile);

// A name for what is made of a line: "111510A-12N.png" beside the data file. Characters of the line's name that do not
// go into file names become "_"; an empty line name is left out.
std::filesystem::path proposedName(const std::filesystem::path& dataFile, std::string_view lineName,
                                   std::string_view extension);

// A picture of what is seen of a line, black on white for reports: traces, grid, both scales, stations, what each
// colour stands for, the file's and the line's name.
struct LinePicture {
  OpenedFile& file;
  const Settings& settings;
  std::string title;
  int firstRow = 1;  // of the line's, from 1
  int lastRow = 0;

  int rows() const { return lastRow - firstRow + 1; }
};

QByteArray linePicturePng(const LinePicture& picture);
QByteArray linePictureSvg(const LinePicture& picture);

}  // namespace kalmira
