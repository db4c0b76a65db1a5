#include "instruments/profile_map.h"

#include <cmath>
#include <limits>

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

const ProfileAxis& axisOf(const ProfileAxes& axes, int axis) {
  if (axis == kIceAxis) return axes.ice;
  return axis == kInphaseAxis ? axes.inphase : axes.conductivity;
}

bool drawn(const Channel& channel, bool iceOption) { return (channel.axis == kIceAxis) == iceOption; }

}  // namespace

std::array<bool, kProfilePoints> drawnTraces(const Instrument& instrument, bool iceOption, bool secondCoil) {
  std::array<bool, kProfilePoints> traces{};
  for (const auto& channel : instrument.channels) traces[channel.slot] = drawn(channel, iceOption);
  traces[kSlots] = traces[kSlots + 1] = secondCoil && instrument.unscaledInphase;
  return traces;
}

void MapProfilePoints(const Instrument& instrument, bool iceOption, bool secondCoil, const ProfileAxes& axes,
                      const std::array<float, kSlots>& values, float extra1, float extra2,
                      std::array<int, kProfilePoints>& points) {
  for (const auto& channel : instrument.channels) {
    if (!drawn(channel, iceOption)) continue;
    points[channel.slot] = pixel(axisOf(axes, channel.axis), values[channel.slot]);
  }
  if (!secondCoil || !instrument.unscaledInphase) return;
  points[kSlots] = pixel(axes.conductivity, extra1);
  points[kSlots + 1] = pixel(axes.conductivity, extra2);
}

}  // namespace kalmira
