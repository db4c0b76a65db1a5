#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "export/survey_writer.h"
#include "platform/attended_run.h"

namespace kalmira {

enum class ExportFormat { csv, xyz, geopackage, geojson, gpx, kml };

struct FormatRow {
  ExportFormat format;
  std::string_view ending;   // of file names, without a dot; also what --format calls it
  std::string_view name;     // "CSV table"
  std::string_view content;  // "map layers for a geographic information system"
  bool events;               // makes tables of events, too
  bool wide;                 // shows readings, so those of a station can be one
  bool toFileOnly;
  bool placedOnly = false;  // leaves out what has no place
  bool coloured = false;    // by a channel
};
std::span<const FormatRow> exportFormats();
const FormatRow& formatRow(ExportFormat format);
// By its ending, in any case; nothing for another one.
const FormatRow* formatOfFile(const std::filesystem::path& out);

inline constexpr int kExportDone = 0;
inline constexpr int kExportFailed = 1;  // a file gave nothing, or the output could not be written
inline constexpr int kExportUsage = 2;

struct ExportRequest {
  std::vector<std::filesystem::path> files{};
  std::optional<std::filesystem::path> out{};  // none: standard output
  std::optional<ExportFormat> format{};        // none: by the ending of `out`, else CSV
  TableOf table = TableOf::readings;
  bool wide = false;              // a row a station
  std::string colour{};           // the channel that colours the map; empty: the first one that has values
  bool mixed = false;             // files of several kinds may go into one table
  FileStretch stretch{};          // of each file
  bool teskTimes10 = false;       // a start-up choice of the loggers, which files do not tell
  PositionOptions positions{};    // but for what the notes beside a file may say, which follows
  std::optional<double> lag_s{};  // goes before the notes', as the antenna does
  bool antennaGiven = false;
  std::optional<MapZone> zone{};        // with its hemisphere
  std::optional<GridPlacement> grid{};  // gives places in place of GPS
};
// What the request is to be made of.
ExportFormat formatOf(const ExportRequest& request);

using Say = std::function<void(std::string_view)>;

struct ExportResult {
  int status = kExportDone;
  std::uint64_t readings = 0;  // that are in the output, also those that share a row
};

// `say` gets one line a message, without its line end. When `goOn` says no, nothing is left where the output was to be.
ExportResult runExport(const ExportRequest& request, const Say& say, const GoOn& goOn);

}  // namespace kalmira
