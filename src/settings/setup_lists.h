#pragma once

#include <span>
#include <string>
#include <vector>

#include "instruments/catalogue.h"
#include "settings/settings.h"

namespace kalmira {

// What every set-up dialog is told about the instrument and the screen.
struct SetupFrame {
  Kind kind = Kind::orla;
  bool iceOption = false;  // ORLA started for ice work
  bool portrait = true;
  int storageClass = kDefaultStorageClass;
};

// The drop-down lists of the logger setup and of the GPS port setup: what they offer and which setting each one is.

struct SetupList {
  const char* name;  // of the list in the dialog's template
  std::vector<std::string> entries;
  int Settings::*field;
  int firstValue = 0;            // what the field holds for the first entry
  bool needsIceDisplay = false;  // greyed while the ice display is "Disabled"
};

std::vector<SetupList> loggerSetupLists(const SetupFrame& frame);
std::vector<SetupList> gpsSetupLists();

// The position that stands for the setting: a value that is none of the list's shows as the default's, or as the first
// where the list is too short for that one, too. That is how the rest of the program takes it.
int shownPosition(const SetupList& list, const Settings& settings);
// Makes entry `position` the setting; a position outside the list (nothing chosen) changes nothing.
void takePosition(const SetupList& list, int position, Settings& settings);

}  // namespace kalmira
