#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "positions/local_grid.h"
#include "positions/survey_places.h"

// A data file's readings, each with all that the file says of it: where and when it was taken, in which stretch of the
// survey. All tables and maps are made of these. Not bound to a thread.
namespace kalmira {

// Records of a file, from the one at `begin` up to the one at `end`: a whole line, for its block says all that its
// readings need.
struct FileStretch {
  std::uint64_t begin = 0;
  std::uint64_t end = UINT64_MAX;
};

struct RowOptions {
  bool teskRangeTimes10 = false;  // the start-up choice for a TESK, which its files do not tell
  FileStretch stretch{};
  const PositionScan* scan = nullptr;  // of the same file; none: readings have no places from GPS, and no UTC
  PositionOptions positions{};
  std::optional<GridPlacement> grid{};  // gives places in place of GPS
};

struct ReadingRow {
  std::string line;
  std::optional<double> station;
  int repeat = 1;
  std::optional<RecordTimes::Moment> moment;  // by the device's clock
  std::optional<std::uint32_t> tick;
  Reading reading;
  std::optional<double> utc;      // seconds since 1970
  std::optional<GridPoint> grid;  // the survey's own
  std::uint64_t segment = 1;      // one on at each gap of the survey
  std::optional<Place> place;
  bool placedByGrid = false;  // nothing is known of fixes then
};

struct RowsResult {
  bool stopped = false;  // `take` said no
  std::uint64_t readings = 0;
  std::uint64_t timelessReadings = 0;   // without a time: no time mark before them, or no readable tick
  std::uint64_t placelessReadings = 0;  // of a file with position sentences
  std::uint64_t unreadableRecords = 0;  // whole records with a date, time or number that is none
  LeftOut leftOut;                      // of the position sentences
};

// Takes the rows in file order; false stops. `zone` is that of the whole output, set by the first position where it is
// not set yet. What damage the file has, its reader tells.
RowsResult eachRow(RecordReader& reader, const RowOptions& options, std::optional<MapZone>& zone,
                   const std::function<bool(const ReadingRow&)>& take);

}  // namespace kalmira
