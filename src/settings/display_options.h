#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "instruments/catalogue.h"
#include "settings/settings.h"

// How the profile's traces look, as the display options change it.
namespace kalmira {

// The scales that the profile's axis can show.
// `iceDisplayed`: an ORLA started for ice work whose ice display is on, which draws nothing else.
std::span<const AxisChoice> axisChoices(Kind kind, bool iceDisplayed);
// The position in `choices` of the scale that the axis shows; without grid lines it is always the first.
std::size_t axisPosition(std::span<const AxisChoice> choices, const Settings& settings);
bool gridChosen(const Settings& settings);
// What the settings hold for it: 0 without grid lines, whatever the group, else 1 plus the group.
int profileGridOf(bool grid, int group);

// What the display options are of `from`, and nothing else: the rest may have changed behind the open dialog.
void takeDisplayOptions(const Settings& from, Settings& to);

bool traceChosen(const Settings& settings, std::size_t slot);
int traceWidthOf(const Settings& settings, std::size_t slot);  // pixels, 1 to 4
inline constexpr int kTraceWidths = 4;
std::string traceWidthName(int width);  // "1 pixel", "2 pixels"

// Colours of the settings, 0x00BBGGRR, in words and as the web writes them: "Blue", "#0072B2". The word is that of the
// nearest of a few well-known colours.
std::string_view colourName(int colour);
std::string colourNumber(int colour);
int settingsColour(int red, int green, int blue);  // each 0 to 255

// The vertical scales of the profile, as the profile scale dialog changes them. Conductivity is in mS/m, inphase in
// parts per thousand, ice thickness (the first scale of a GLACO, too) in metres.

// Which scales the dialog shows. `iceOption`: an ORLA whose ice display is on.
struct ScaleFields {
  bool inphase = true;            // a VARDO has none
  bool ice = false;               // ORLA with the ice option
  bool firstIsThickness = false;  // GLACO: "Thickness" in place of "Conductivity"
};
ScaleFields scaleFieldsOf(Kind kind, bool iceOption);

// Brings what was typed within its limits. Conductivity and inphase: both ends within -9000 to 9000, and a maximum that
// is not above the minimum becomes the minimum plus 100. Anything that is no number counts as 0.
struct ScaleEnds {
  float minimum = 0;
  float maximum = 0;
};
ScaleEnds limitedScale(ScaleEnds typed);
// Thickness: at least 0; a minimum above 10 becomes 9, a maximum above 10 becomes 10, so that there is room for one
// above the other; a maximum that is not above the minimum becomes the minimum plus 1.
ScaleEnds limitedThickness(ScaleEnds typed);

// The scales of `from`, and nothing else: the rest may have changed behind the open dialog.
void takeScales(const Settings& from, Settings& to);

}  // namespace kalmira
