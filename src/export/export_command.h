#pragma once

#include "export/export_run.h"
#include "platform/command_line.h"

namespace kalmira {

// What the command line of kalmira-export chooses.
CommandLine exportCommandLine(ExportRequest& request);

}  // namespace kalmira
