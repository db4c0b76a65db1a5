#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "positions/local_grid.h"
#include "positions/survey_places.h"

// A data file's readings and events, each with all that the file says of it: where and when it was, in which stretch of
// the survey. All tables and maps are made of these. Not bound to a thread.
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

// What a row says of its moment of the survey.
struct SurveyMoment {
  std::string line;
  std::uint64_t lineBlock = 0;  // line blocks of the file up to here: two lines may have one name
  std::optional<double> station;
  std::optional<RecordTimes::Moment> moment;  // by the device's clock
  std::optional<std::uint32_t> tick;
  std::optional<double> utc;      // seconds since 1970
  std::optional<GridPoint> grid;  // the survey's own
  std::uint64_t segment = 1;      // one on at each gap of the survey
  std::optional<Place> place;
  bool placedByGrid = false;  // nothing is known of fixes then
};

struct ReadingRow : SurveyMoment {
  int repeat = 1;
  Reading reading;
};

// A new line or station, a comment, a factor of the calibration, or what the logger itself has noted.
struct EventRow : SurveyMoment {
  std::string_view event;  // "line", "station", "comment", "calibration" or "event"
  std::string text;        // name of the line, number of the station, number and factor, or as it stands in the file
};

// Whoever wants rows, in file order. The first two return false to stop; `event` and `fix` may be missing.
struct RowTakers {
  std::function<bool(const ReadingRow&)> reading;
  std::function<bool(const EventRow&)> event{};
  std::function<bool(const Fix&)> fix{};  // each good fix of the receiver; none where a grid gives the places
};

struct RowsResult {
  bool stopped = false;  // somebody said no
  std::uint64_t readings = 0;
  std::uint64_t timelessReadings = 0;   // without a time: no time mark before them, or no readable tick
  std::uint64_t placelessReadings = 0;  // of a file with position sentences
  std::uint64_t unreadableRecords = 0;  // whole records with a date, time or number that is none
  LeftOut leftOut{};                    // of the position sentences
};

// `zone` is that of the whole output, set by the first position where it is not set yet. What damage the file has, its
// reader tells.
RowsResult eachRow(RecordReader& reader, const RowOptions& options, std::optional<MapZone>& zone,
                   const RowTakers& takers);

}  // namespace kalmira
