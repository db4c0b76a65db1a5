#pragma once

#include "screen/theme.h"
#include "instruments/catalogue.h"

namespace kalmira {

// What every set-up dialog is told about the instrument and the screen.
struct SetupFrame {
  Kind kind = Kind::orla;
  bool iceOption = false;  // ORLA started for ice work
  bool portrait = true;
  int storageClass = kDefaultStorageClass;
  const Theme* theme = nullptr;  // never null while a dialog runs
};

}  // namespace kalmira
