#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/clock.h"
#include "settings/settings_fields.h"
#include "instruments/catalogue.h"

namespace kalmira {

// The command line of kalmira-log.
struct LogOptions {
  Kind kind = Kind::orla;
  bool ice = false;
  std::string port;
  std::string gps;             // empty: none
  std::string marker;          // empty: none
  std::filesystem::path root;  // empty: the folder in the user's documents
  int storageClass = kDefaultStorageClass;
  std::vector<std::pair<FieldRef, std::string>> set;
  std::string name;  // of the data file, without extension; empty: the proposed one
  std::optional<double> seconds;
  bool exitOnSilence = false;
  TickBase tickBase = TickBase::boot;
  bool show = false;
  bool teskTimes10 = false;
};

struct HelpWanted {};
struct UsageError {
  std::string what;
};

std::variant<LogOptions, HelpWanted, UsageError> parseLogOptions(const std::vector<std::string>& arguments);

// A whole text that is a number, in the C locale; nothing when it is none or not finite.
std::optional<double> wholeNumber(std::string_view text);

extern const std::string_view kLogUsage;

}  // namespace kalmira
