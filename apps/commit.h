#pragma once

#include <string_view>
#include <utility>

#include "platform/command_line.h"

namespace kalmira {

// The commit that the programs were built from, "+" behind it where the work tree differed; empty where not known.
// From cmake/KalmiraCommit.cmake.
std::string_view builtCommit();

inline CommandLine withCommit(CommandLine line) {
  line.commit = builtCommit();
  return line;
}

}  // namespace kalmira
