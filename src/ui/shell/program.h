#pragma once

#include "ui/shell/program_options.h"

namespace kalmira {

// kalmira with its windows, from the start to the end: the exit status. Wants the QApplication and the
// program's resources to be there, and the root folder in the options.
int runProgram(const ProgramOptions& options);

}  // namespace kalmira
