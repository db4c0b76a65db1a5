#include <cmath>
#include <limits>

#include "instruments/decode.h"

namespace kalmira {
namespace {

// Truncates. Scales come from files and values from noisy wires, so that anything may arrive here.
int pixel(const ProfileAxis& axis, float value) {
  constexpr float kIntEnd = 2147483648.0F;  // the first float that an int cannot hold
  const float position = (axis.top - value) * axis.scale;
  if (std::isnan(position)) return 0;
  if (position >= kIntEnd) return std::numeric_limits<int>::max();
  if (position < -kIntEnd) return std::numeric_limits<int>::min();
  return static_cast<int>(position);
}

}  // namespace

void MapProfilePoints(Kind kind, bool iceOption, bool inphaseUnscaled, const ProfileAxes& axes,
                      const std::array<float, kSlots>& values, float extra1, float extra2,
                      std::array<int, kProfilePoints>& points) {
  const auto conductivity = [&](std::size_t slot) { points[slot] = pixel(axes.conductivity, values[slot]); };
  const auto inphase = [&](std::size_t slot) { points[slot] = pixel(axes.inphase, values[slot]); };
  if (kind == Kind::orla && iceOption) {
    points[4] = pixel(axes.ice, values[4]);
    return;
  }
  switch (kind) {
    case Kind::orla:
    case Kind::teskb:
    case Kind::teskdd:
    case Kind::tesk:
      for (const std::size_t slot : {0U, 1U}) conductivity(slot);
      for (const std::size_t slot : {2U, 3U}) inphase(slot);
      break;
    case Kind::vardo:
    case Kind::mirka:
      for (std::size_t slot = 0; slot < 6; ++slot) conductivity(slot);
      break;
    case Kind::glaco:
      conductivity(0);
      inphase(2);
      break;
    case Kind::tesk2:
      for (const std::size_t slot : {0U, 1U, 4U, 5U}) conductivity(slot);
      for (const std::size_t slot : {2U, 3U, 6U, 7U}) inphase(slot);
      if (!inphaseUnscaled) break;
      points[8] = pixel(axes.conductivity, extra1);
      points[9] = pixel(axes.conductivity, extra2);
      break;
  }
}

}  // namespace kalmira
