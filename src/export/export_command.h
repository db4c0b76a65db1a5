#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "export/survey_rows.h"
#include "platform/attended_run.h"
#include "platform/command_line.h"

namespace kalmira {

inline constexpr int kExportDone = 0;
inline constexpr int kExportFailed = 1;  // a file gave nothing, or the table could not be written
inline constexpr int kExportUsage = 2;

// What the command line of kalmira-export chooses.
struct ExportRequest {
  std::vector<std::filesystem::path> files;
  std::optional<std::filesystem::path> out;  // none: standard output
  bool teskTimes10 = false;                  // a start-up choice of the loggers, which files do not tell
  bool mixed = false;                        // files of several kinds may go into one table
  PositionOptions positions;                 // but for what the notes beside a file may say, which follows
  std::optional<double> lag_s;               // goes before the notes', as the antenna does
  bool antennaGiven = false;
  std::optional<MapZone> zone;        // with its hemisphere
  std::optional<GridPlacement> grid;  // gives places in place of GPS
};
CommandLine exportCommandLine(ExportRequest& request);

// Returns the exit status; `say` gets one line a message, without its line end. When `goOn` says no, nothing is left
// where the table was to be.
int runExport(const ExportRequest& request, const std::function<void(std::string_view)>& say, const GoOn& goOn);

}  // namespace kalmira
