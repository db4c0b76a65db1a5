#pragma once

#include <QByteArray>
#include <string>

#include "settings/settings.h"
#include "viewer/opened_file.h"

namespace kalmira {

// A picture of the whole line that is shown, black on white for reports: traces, grid, both scales, stations,
// what each colour stands for, the file's and the line's name.
struct LinePicture {
  const ScannedFile& scanned;
  const ExtractedLine& line;
  const RowFiles& rowFiles;
  const Settings& settings;
  std::string title;
};

QByteArray linePicturePng(const LinePicture& picture);
QByteArray linePictureSvg(const LinePicture& picture);

}  // namespace kalmira
