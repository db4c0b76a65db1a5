#pragma once

#include "instruments/catalogue.h"

namespace kalmira {

// What every set-up dialog is told about the instrument and the screen.
struct SetupFrame {
  Kind kind = Kind::orla;
  bool iceOption = false;  // ORLA started for ice work
  bool portrait = true;
  int storageClass = kDefaultStorageClass;
};

}  // namespace kalmira
