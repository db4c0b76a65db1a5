#pragma once

#include <limits>
#include <optional>
#include <string>

#include "instruments/start_options.h"
#include "sim/player.h"
#include "sim/survey.h"

// The command line of kalmira-sim.
namespace kalmira::sim {

struct Options {
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

CommandLine simCommandLine(Options& options);

// The plan of a survey by these options, which must hold a kind.
SurveyPlan surveyPlanOf(const Options& options);

}  // namespace kalmira::sim
