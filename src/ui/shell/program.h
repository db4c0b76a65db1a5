#pragma once

#include <filesystem>
#include <optional>

#include "instruments/start_options.h"
#include "link/com_devices.h"

namespace kalmira {

// What the command line of kalmira chooses. What is not given is remembered, or decided by the screen.
struct ProgramOptions : StartOptions {
  ComAssignments com;  // of this run, over the remembered ones
  std::optional<bool> portrait;
  std::optional<double> scale;  // 0.5 to 8
  std::optional<bool> night;
  std::filesystem::path file;  // to be viewed; empty: none
};

CommandLine programCommandLine(ProgramOptions& options);

// kalmira with its windows, from the start to the end: the exit status. Wants the QApplication and the program's
// resources to be there, and the root folder in the options.
int runProgram(const ProgramOptions& options);

}  // namespace kalmira
