#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/attended_run.h"
#include "platform/command_line.h"

namespace kalmira {

inline constexpr int kCheckSound = 0;
inline constexpr int kCheckDamaged = 1;  // a file at least is damaged, not complete or cannot be read
inline constexpr int kCheckUsage = 2;

// What the command line of kalmira-check chooses.
struct CheckRequest {
  std::vector<std::filesystem::path> files;
  std::optional<std::filesystem::path> repair;  // where the repaired file goes
};
CommandLine checkCommandLine(CheckRequest& request);

// Returns the exit status. `print` takes the report of one file, and says whether it could; `say` takes a message, one
// line without its end. When `goOn` says no, nothing is left where the repaired file was to be.
int runCheck(const CheckRequest& request, const std::function<bool(std::string_view)>& print,
             const std::function<void(std::string_view)>& say, const GoOn& goOn);

}  // namespace kalmira
