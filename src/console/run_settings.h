#pragma once

#include <string>
#include <utility>
#include <vector>

#include "settings/settings_fields.h"
#include "settings/settings_file.h"

namespace kalmira {

using FieldValues = std::vector<std::pair<FieldRef, std::string>>;

// The settings of one run: those of the file, with values laid over them that must not get into the file.
class RunSettings {
 public:
  // Loads the file as the logger does and lays `overrides` over it, in order.
  RunSettings(SettingsPlace place, const FieldValues& overrides);

  Settings& settings() { return settings_; }
  // Empty, or why the settings file could not be written at load.
  const std::string& problem() const { return problem_; }
  // A new line was confirmed: what it set is the session's own from now on, also where it equals an override.
  void keepLine();
  // Writes `current` with the file's own value wherever an override still stands. Empty text or the problem.
  std::string save(const Settings& current) const;

 private:
  struct Override {
    FieldRef field;
    std::string fileValue;  // as the file has it
    std::string runValue;   // as the run began with it
  };

  SettingsPlace place_;
  Settings settings_;
  std::string problem_;
  std::vector<Override> overrides_;
};

}  // namespace kalmira
