#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "settings/settings.h"
#include "instruments/catalogue.h"

// How the profile's traces look, as the display options change it.
namespace kalmira {

// One trace of the profile, by the slot of the value it shows.
struct TraceRow {
  std::size_t slot = 0;
  std::string_view name;
};
// The traces of a kind. `iceOption`: an ORLA started for ice work, which has the ice thickness, too.
std::span<const TraceRow> traceRows(Kind kind, bool iceOption);

// The scales that the profile's axis can show. `group` is 0 conductivity (GLACO: thickness), 1 inphase,
// 2 ice thickness.
struct AxisChoice {
  int group = 0;
  std::string_view name;
};
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

// Colours of the settings, 0x00BBGGRR, in words and as the web writes them: "Blue", "#0072B2". The word is
// that of the nearest of a few well-known colours.
std::string_view colourName(int colour);
std::string colourNumber(int colour);
int settingsColour(int red, int green, int blue);  // each 0 to 255

}  // namespace kalmira
