#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/file_writer.h"
#include "settings/settings.h"
#include "settings/settings_file.h"

namespace kalmira {

using FieldValues = std::vector<std::pair<FieldRef, std::string>>;

// The settings of one run: those of the file, with values laid over them that must not get into the file.
class RunSettings {
 public:
  // Loads the file as the logger does and lays `overrides` over it, in order.
  RunSettings(SettingsPlace place, const FieldValues& overrides);

  Settings& settings() { return settings_; }
  // Why the settings file could not be written, once; empty when there is nothing to tell.
  std::string takeProblem();
  // A new line was confirmed: what it set is the session's own from now on, also where it equals an override.
  void keepLine();
  // Has `current` written, with the file's own value wherever an override still stands. Waits for nothing.
  void save(const Settings& current);
  // Waits until the last save is done.
  void finish() { writer_.finish(); }

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
  FileWriter writer_{"settings"};
};

}  // namespace kalmira
