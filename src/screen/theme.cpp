#include "screen/theme.h"

#include <algorithm>
#include <cmath>

namespace kalmira {
namespace {

constexpr double kLeastContrast = 3.0;  // to be told from the ground by weak eyes
constexpr int kLighteningSteps = 32;    // from the colour to white

double channel(std::uint32_t colour, int shift) {
  return static_cast<double>((colour >> shift) & 0xFFU) / 255.0;
}

double linear(double value) {
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

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

const Theme& dayTheme() {
  static constexpr Theme kDay;
  return kDay;
}

const Theme& nightTheme() {
  static constexpr Theme kNight{.night = true,
                                .background = 0x000000,
                                .text = 0xE0D0C0,
                                .faintText = 0xA89888,
                                .button = 0x2A2420,
                                .buttonText = 0xE8D8C8,
                                .buttonEdge = 0x7A6A5C,
                                .pressedButton = 0x4A3E36,
                                .focus = 0xFF9040,
                                .monitor = 0x404040,
                                .monitorText = 0xE8E8E8,
                                .standBy = 0xA87C00,
                                .standByText = 0x000000,
                                .logging = 0x00501E,
                                .loggingText = 0xE8F8E8,
                                .warning = 0x8A1020,
                                .warningText = 0xFFE8E0,
                                .chart = 0x101010,
                                .chartGrid = 0x4A4A4A,
                                .chartText = 0xC8B8A8};
  return kNight;
}

std::uint32_t traceColourOn(const Theme& theme, int settingsColour) {
  const auto bgr = static_cast<std::uint32_t>(settingsColour) & 0xFFFFFFU;
  const std::uint32_t colour = (bgr & 0xFFU) << 16U | (bgr & 0xFF00U) | bgr >> 16U;
  if (!theme.night) return colour;
  for (unsigned step = 0; step < kLighteningSteps; ++step) {
    const auto lighter = lightened(colour, step);
    if (contrast(lighter, theme.chart) >= kLeastContrast) return lighter;
  }
  return 0xFFFFFF;
}

}  // namespace kalmira
