#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "datafile/record_reader.h"
#include "export/survey_rows.h"

// Data files as a table of comma-separated values, one row a reading: docs/export-formats.md names every column. Files
// are read as streams; neither their size nor the number of their readings takes memory.
namespace kalmira {

// Takes the next piece of the table. False when it cannot; why is for the sink's owner to say.
using TextSink = std::function<bool(std::string_view)>;

// A table in the making, of one file or several.
struct CsvTable {
  TextSink write;
  std::vector<std::string_view> channels{};  // columns of all files, see takeChannels
  std::optional<MapZone> zone{};             // of eastings and northings; the first position's where it is not set
  bool begun = false;                        // its header row is written
};

// Makes room for the channels of another file.
void takeChannels(CsvTable& table, const Header1& header);

// Adds the readings of the file that `reader` has opened under the channels that have room; those of its header have it
// where the table has not begun. `fileName` without its folder.
RowsResult exportReadings(RecordReader& reader, CsvTable& table, std::string_view fileName,
                          const RowOptions& options = {});

}  // namespace kalmira
