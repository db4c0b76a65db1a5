#pragma once

#include <filesystem>

#include "console/options.h"
#include "link/port.h"

namespace kalmira {

// kalmira-log, all but its command line: runs one session to its end. Returns the exit status: 0; 1 when the
// session could not start or the link was given up; 3 when the survey is not whole or not where it should be.
// `defaultRoot` serves when the options name no root.
int runLogProgram(const LogOptions& options, const std::filesystem::path& defaultRoot, const PortFactory& portFactory);

}  // namespace kalmira
