#pragma once

#include <array>
#include <string>
#include <string_view>

#include "datafile/reading_context.h"

namespace kalmira {

// What a file must begin with so that records from the middle of a survey mean in it what they meant in their
// own: headers, line block, calibration, station and time mark that hold there.
class Opening {
 public:
  // Every record before those that are to follow, in file order, with its line feed.
  void take(std::string_view record);
  // The records. `following` are those that come next: their first reading tells whether the station goes one
  // on. Empty before a line has begun.
  std::string records(std::string_view following, bool withHeaders) const;

 private:
  std::string headers_;
  std::string line_block_;
  std::array<std::string, 6> calibrations_;
  std::string time_mark_;
  SurveyPosition position_;
};

}  // namespace kalmira
