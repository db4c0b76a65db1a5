#pragma once

#include <cstdint>

namespace kalmira {

// What a chart is drawn on, 0xRRGGBB.
struct ChartColours {
  bool dark = false;  // traces are lightened where they would drown
  std::uint32_t background = 0xFFFFFF;
  std::uint32_t grid = 0xC0C0C0;
};

// A trace's colour (0x00BBGGRR, as the settings hold it, chosen on white) as it is drawn, 0xRRGGBB.
std::uint32_t traceColourOn(const ChartColours& colours, int settingsColour);

}  // namespace kalmira
