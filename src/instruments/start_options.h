#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "instruments/catalogue.h"
#include "platform/clock.h"
#include "platform/command_line.h"

namespace kalmira {

// The choices at a start that the loggers' command lines have in common.
struct StartOptions {
  std::optional<Kind> kind;
  bool ice = false;
  std::filesystem::path root;  // empty: the folder in the user's documents
  int storageClass = kDefaultStorageClass;
  std::filesystem::path mirror;  // folder of a second copy; empty: none
  TickBase tickBase = TickBase::boot;
  bool teskTimes10 = false;
};

// --kind and --tesk-x10 alone, which other programs have, too.
CommandOption kindOption(std::optional<Kind>& kind);
CommandOption teskTimes10Option(bool& teskTimes10);
CommandGroup instrumentOptions(StartOptions& options);  // --kind, --ice, --tesk-x10
CommandGroup fileOptions(StartOptions& options);        // --root, --storage-class, --mirror, --tick-base
// What the options say of each other: an empty text, or what is wrong. Without a kind, none is wrong.
std::string startContradiction(const StartOptions& options);

}  // namespace kalmira
