#pragma once

#include <string>

#include "check/check_file.h"

namespace kalmira {

// What is said of the file: its name, and below it lines "  key: value". `repaired`: what became of the repaired file,
// another such value; empty where none was asked for.
std::string reportText(const std::string& name, const FileCheck& check, const std::string& repaired);

}  // namespace kalmira
