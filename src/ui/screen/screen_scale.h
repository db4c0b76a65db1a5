#pragma once

#include <algorithm>

// How large things are: windows are laid out in units of a screen of 240 x 320 (upright) or 320 x 240
// (lying).
namespace kalmira {

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

// Of texts in dialogs, pixels: readable on the smallest screen, and growing with it.
constexpr int dialogTextPixels(double scale) {
  constexpr double kTextUnits = 10;
  constexpr int kLeast = 12;
  return std::max(kLeast, static_cast<int>(kTextUnits * scale));
}

}  // namespace kalmira
