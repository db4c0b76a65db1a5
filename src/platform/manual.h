#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/command_line.h"

// What the table of a program says, as the files that a system wants of a program.
namespace kalmira {

// A page of section 1 for man, in the man macros. Notes that begin with "Exit status:" are its exit status.
std::string manualPage(const CommandLine& line);

// Complete options, their choices, and paths where the placeholder names one: FILE, DEVICE, OUT, PATH; DIR.
std::string bashCompletion(const CommandLine& line);  // needs bash 4.4 and nothing else
std::string zshCompletion(const CommandLine& line);   // a #compdef file

// The file of a form: "man", "bash" or "zsh". Nothing: there is no such form.
std::optional<std::string> manualFile(const CommandLine& line, std::string_view form);

}  // namespace kalmira
