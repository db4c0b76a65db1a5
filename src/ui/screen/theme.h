#pragma once

#include <QPalette>
#include <QString>
#include <algorithm>
#include <cstdint>
#include <string_view>

#include "chart/chart_picture.h"

// The colours of everything on the screen, for the day (sunlight on a dim screen: black on white) and for the night
// (eyes that must stay used to the dark). Colours are 0xRRGGBB.
namespace kalmira {

struct Theme {
  bool night = false;
  std::uint32_t background = 0xFFFFFF;
  std::uint32_t text = 0x000000;
  std::uint32_t faintText = 0x444444;
  std::uint32_t button = 0xE4E4E4;
  std::uint32_t buttonText = 0x000000;
  std::uint32_t buttonEdge = 0x555555;
  std::uint32_t pressedButton = 0xB8B8B8;
  std::uint32_t focus = 0x0044CC;  // frame of the button that Enter presses
  // The band behind the state word, and the word on it.
  std::uint32_t monitor = 0x5A5A5A;
  std::uint32_t monitorText = 0xFFFFFF;
  std::uint32_t standBy = 0xFFC400;
  std::uint32_t standByText = 0x000000;
  std::uint32_t logging = 0x00702A;
  std::uint32_t loggingText = 0xFFFFFF;
  // What is old: the band when no data come, with stripes across it, which no state has.
  std::uint32_t stale = 0xFF6A00;
  std::uint32_t staleText = 0x000000;  // and the stripes
  std::uint32_t oldText = 0x949494;    // values that are no longer true
  std::uint32_t calibration = 0x0A3FA8;
  std::uint32_t calibrationText = 0xFFFFFF;
  std::uint32_t warning = 0xB00020;  // the message line
  std::uint32_t warningText = 0xFFFFFF;
  std::uint32_t chart = 0xFFFFFF;
  std::uint32_t chartGrid = 0xC0C0C0;
  std::uint32_t chartText = 0x000000;
};

const Theme& dayTheme();
const Theme& nightTheme();

ChartColours chartColoursOf(const Theme& theme);
std::uint32_t traceColourOn(const Theme& theme, int settingsColour);

// The palette for everything Qt draws by itself: dialogs, menus, message boxes.
QPalette paletteOf(const Theme& theme);

// How large things are: windows are laid out in units of a screen of 240 x 320 (upright) or 320 x 240 (lying).

struct ScreenScale {
  bool portrait = true;
  double scale = 1.0;  // pixels a unit
};

constexpr ScreenScale screenScaleOf(int width, int height) {
  constexpr double kShortSide = 240;
  constexpr double kLongSide = 320;
  const bool portrait = height >= width;
  return {.portrait = portrait,
          .scale = portrait ? std::min(width / kShortSide, height / kLongSide)
                            : std::min(width / kLongSide, height / kShortSide)};
}

// Of texts in dialogs, pixels: readable on the smallest screen, growing with it, and not smaller than the texts that
// the person has asked the desktop for.
int dialogTextPixels(double scale);

inline QString qtText(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

}  // namespace kalmira
