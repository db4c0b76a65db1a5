#include "chart/chart_colours.h"

#include <algorithm>
#include <cmath>

namespace kalmira {
namespace {

constexpr double kLeastContrast = 3.0;  // to be told from the ground by weak eyes
constexpr int kLighteningSteps = 32;    // from the colour to white

double channel(std::uint32_t colour, int shift) { return static_cast<double>((colour >> shift) & 0xFFU) / 255.0; }

double linear(double value) { return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4); }

double luminance(std::uint32_t colour) {
  return 0.2126 * linear(channel(colour, 16)) + 0.7152 * linear(channel(colour, 8)) +
         0.0722 * linear(channel(colour, 0));
}

double contrast(std::uint32_t a, std::uint32_t b) {
  const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

// `step` of kLighteningSteps on the way to white.
std::uint32_t lightened(std::uint32_t colour, unsigned step) {
  std::uint32_t mixed = 0;
  for (const int shift : {16, 8, 0}) {
    const auto value = (colour >> shift) & 0xFFU;
    mixed |= (value + (255U - value) * step / kLighteningSteps) << shift;
  }
  return mixed;
}

}  // namespace

std::uint32_t traceColourOn(const ChartColours& colours, int settingsColour) {
  const auto bgr = static_cast<std::uint32_t>(settingsColour) & 0xFFFFFFU;
  const std::uint32_t colour = (bgr & 0xFFU) << 16U | (bgr & 0xFF00U) | bgr >> 16U;
  if (!colours.dark) return colour;
  for (unsigned step = 0; step < kLighteningSteps; ++step) {
    const auto lighter = lightened(colour, step);
    if (contrast(lighter, colours.background) >= kLeastContrast) return lighter;
  }
  return 0xFFFFFF;
}

}  // namespace kalmira
