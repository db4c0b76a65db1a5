#pragma once

#include "instruments/catalogue.h"
#include "settings/settings.h"

// The vertical scales of the profile, as the profile scale dialog changes them. Conductivity is in mS/m,
// inphase in parts per thousand, ice thickness (the first scale of a GLACO, too) in metres.
namespace kalmira {

// Which scales the dialog shows. `iceOption`: an ORLA whose ice display is on.
struct ScaleFields {
  bool inphase = true;            // a VARDO has none
  bool ice = false;               // ORLA with the ice option
  bool firstIsThickness = false;  // GLACO: "Thickness" in place of "Conductivity"
};
ScaleFields scaleFieldsOf(Kind kind, bool iceOption);

// Brings what was typed within its limits. Conductivity and inphase: both ends within -9000 to 9000, and a
// maximum that is not above the minimum becomes the minimum plus 100. Anything that is no number counts as 0.
struct ScaleEnds {
  float minimum = 0;
  float maximum = 0;
};
ScaleEnds limitedScale(ScaleEnds typed);
// Thickness: at least 0; a minimum above 10 becomes 9, a maximum above 10 becomes 10, so that there is room
// for one above the other; a maximum that is not above the minimum becomes the minimum plus 1.
ScaleEnds limitedThickness(ScaleEnds typed);

// The scales of `from`, and nothing else: the rest may have changed behind the open dialog.
void takeScales(const Settings& from, Settings& to);

}  // namespace kalmira
