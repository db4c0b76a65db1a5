#pragma once

#include <string_view>

namespace kalmira {

// Opens the null device for every standard stream that the program was started without, so that no port or
// data file gets its number. First thing in main.
void openMissingStreams();

// Prints a line on standard error. Where that cannot be written to, nothing happens: a message nobody can
// read must not end a survey.
void printError(std::string_view line);

}  // namespace kalmira
