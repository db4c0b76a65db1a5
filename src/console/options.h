#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "instruments/start_options.h"
#include "settings/settings_fields.h"

namespace kalmira {

// What the command line of kalmira-log chooses; its kind is always given.
struct LogOptions : StartOptions {
  std::string port;
  std::string gps;     // empty: none
  std::string marker;  // empty: none
  std::vector<std::pair<FieldRef, std::string>> set;
  std::string name;              // of the data file, without its kind's extension; empty: the proposed one
  std::filesystem::path mirror;  // folder of a second copy; empty: none
  bool noInput = false;          // record at once and until a signal comes, whatever stands on standard input
  std::optional<double> seconds;
  bool exitOnSilence = false;
  bool show = false;
};

CommandLine logCommandLine(LogOptions& options);

}  // namespace kalmira
