#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "instruments/catalogue.h"
#include "link/com_devices.h"
#include "platform/clock.h"

namespace kalmira {

// The command line of kalmira. What is not given is remembered, or decided by the screen.
struct ProgramOptions {
  std::optional<Kind> kind;
  bool ice = false;
  std::filesystem::path root;  // empty: the folder in the user's documents
  ComAssignments com;          // of this run, over the remembered ones
  std::optional<bool> portrait;
  std::optional<double> scale;  // 0.5 to 8
  std::optional<bool> night;
  TickBase tickBase = TickBase::boot;
  int storageClass = kDefaultStorageClass;
  bool teskTimes10 = false;
  std::filesystem::path file;  // to be viewed; empty: none
};

struct ProgramHelp {
  std::string text;
};
struct ProgramUsageError {
  std::string what;
};

std::variant<ProgramOptions, ProgramHelp, ProgramUsageError> parseProgramOptions(
    const std::vector<std::string>& arguments);

}  // namespace kalmira
