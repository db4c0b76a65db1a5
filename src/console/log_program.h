#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "instruments/start_options.h"
#include "link/port.h"
#include "settings/settings.h"

namespace kalmira {

// What the command line of kalmira-log chooses; its kind is always given.
struct LogOptions : StartOptions {
  std::string port;
  std::string gps;     // empty: none
  std::string marker;  // empty: none
  std::vector<std::pair<FieldRef, std::string>> set;
  std::vector<std::string> notes;  // "FIELD=VALUE"
  std::string name;                // of the data file, without its kind's extension; empty: the proposed one
  bool noInput = false;            // record at once and until a signal comes, whatever stands on standard input
  std::optional<double> seconds;
  bool exitOnSilence = false;
  bool show = false;
};

CommandLine logCommandLine(LogOptions& options);

// kalmira-log, all but its command line: runs one session to its end. Returns the exit status: 0; 1 when the session
// could not start or the link was given up; 3 when the survey is not whole or not where it should be. `defaultRoot`
// serves when the options name no root.
int runLogProgram(const LogOptions& options, const std::filesystem::path& defaultRoot, const PortFactory& portFactory);

}  // namespace kalmira
