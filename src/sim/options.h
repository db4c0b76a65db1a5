#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "instruments/catalogue.h"
#include "sim/faults.h"
#include "sim/survey.h"

// The command line of kalmira-sim.
namespace kalmira::sim {

struct Options {
  bool help = false;
  std::optional<Kind> kind;
  std::string link;
  std::string gpsLink;
  std::optional<double> rate_hz;     // records a second; absent: the kind's own
  std::optional<double> gpsRate_hz;  // sentences a second; absent: one of each a second
  double end_s = std::numeric_limits<double>::infinity();
  std::optional<int> teskLength;
  double triggerEvery_s = 0;
  double badChecksum = 0;
  Faults faults;  // its seed is that of the whole run
  std::string replay;
  std::optional<double> speed;
};

struct ParsedOptions {
  Options options;
  std::string error;  // empty, or what was wrong with the command line
};
// `arguments` without the program's name.
ParsedOptions parseOptions(std::span<const char* const> arguments);

std::string usage();

// The plan of a survey by these options, which must hold a kind.
SurveyPlan surveyPlan(const Options& options);

}  // namespace kalmira::sim
