#pragma once

#include <array>

#include "instruments/catalogue.h"

namespace kalmira {

// One vertical scale of the profile: a value stands (top - value) * scale pixels below the upper edge.
struct ProfileAxis {
  float top = 0;
  float scale = 1;  // pixels per unit
};
struct ProfileAxes {
  ProfileAxis conductivity;
  ProfileAxis inphase;
  ProfileAxis ice;
};
// The traces: one a slot, then the two auxiliary values.
inline constexpr std::size_t kProfilePoints = kSlots + 2;

// The traces that a kind draws. `iceOption`: its ice display is on, and nothing else is drawn. `secondCoil`: the
// auxiliary values, too.
std::array<bool, kProfilePoints> drawnTraces(const Instrument& instrument, bool iceOption, bool secondCoil);

// Pixel positions of these traces; a point that is not drawn keeps what `points` held. A position that no int can hold
// is brought to the nearest one, and one that is no number to 0.
void MapProfilePoints(const Instrument& instrument, bool iceOption, bool secondCoil, const ProfileAxes& axes,
                      const std::array<float, kSlots>& values, float extra1, float extra2,
                      std::array<int, kProfilePoints>& points);

}  // namespace kalmira
