#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "instruments/catalogue.h"
#include "settings/settings.h"

namespace kalmira {

// Which settings file: the kind's, below the storage root.
struct SettingsPlace {
  Kind kind = Kind::orla;
  bool iceOption = false;
  int storageClass = kDefaultStorageClass;
  std::filesystem::path root;
};

// The file's text: version tag, then one value a line, every line ended by CR LF.
std::string formatSettings(const Settings& settings, Kind kind, bool iceOption);

// Reads what formatSettings wrote. False when the first line is not the kind's version tag; `settings` is then left
// alone. Lines that are missing or do not parse read as 0 or empty. The station increment becomes that of the survey
// mode.
bool parseSettings(std::string_view text, Kind kind, bool iceOption, Settings& settings);

enum class SettingsLoad {
  loaded,    // read from the file
  created,   // there was no file; it was written with the values as they stood
  replaced,  // the file was of another version and was written anew with the values as they stood
};
struct SettingsLoadResult {
  SettingsLoad how = SettingsLoad::loaded;
  std::string problem;  // empty, or why the file or its folder could not be written
};

// Loads the kind's file into `settings`, creating the folder and the file where they are missing.
SettingsLoadResult loadSettings(const SettingsPlace& place, Settings& settings);

// The file on this machine.
std::filesystem::path settingsFileOf(const SettingsPlace& place);

// Replaces the file whole or not at all. Returns an empty text, or why it could not be written.
std::string saveSettings(const SettingsPlace& place, const Settings& settings);

}  // namespace kalmira
