#include "settings/display_options.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace kalmira {
namespace {

struct NamedColour {
  std::string_view name;
  std::array<int, 3> rgb;
};
constexpr std::array<NamedColour, 19> kNamedColours{{{"Black", {0, 0, 0}},
                                                     {"White", {255, 255, 255}},
                                                     {"Grey", {128, 128, 128}},
                                                     {"Light grey", {200, 200, 200}},
                                                     {"Red", {230, 0, 0}},
                                                     {"Dark red", {128, 0, 0}},
                                                     {"Vermilion", {213, 94, 0}},
                                                     {"Orange", {240, 160, 0}},
                                                     {"Brown", {130, 75, 20}},
                                                     {"Yellow", {250, 240, 40}},
                                                     {"Olive", {128, 128, 0}},
                                                     {"Light green", {120, 230, 100}},
                                                     {"Green", {0, 150, 60}},
                                                     {"Dark green", {0, 85, 20}},
                                                     {"Light blue", {90, 185, 240}},
                                                     {"Blue", {0, 100, 200}},
                                                     {"Dark blue", {0, 0, 140}},
                                                     {"Purple", {130, 30, 160}},
                                                     {"Pink", {225, 130, 180}}}};

std::array<int, 3> rgbOf(int colour) {
  const auto bgr = static_cast<unsigned>(colour);
  return {static_cast<int>(bgr & 0xFFU), static_cast<int>(bgr >> 8U & 0xFFU), static_cast<int>(bgr >> 16U & 0xFFU)};
}

int squaredDistance(const std::array<int, 3>& a, const std::array<int, 3>& b) {
  int sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += (a[i] - b[i]) * (a[i] - b[i]);
  return sum;
}

constexpr float kFarthest = 9000.0F;
constexpr float kLeastSpan = 100.0F;
constexpr float kThickest = 10.0F;  // metres
constexpr float kThickestMinimum = 9.0F;
constexpr float kLeastThicknessSpan = 1.0F;

ScaleEnds numbersOnly(ScaleEnds ends) {
  if (std::isnan(ends.minimum)) ends.minimum = 0;
  if (std::isnan(ends.maximum)) ends.maximum = 0;
  return ends;
}

ScaleEnds apart(ScaleEnds ends, float span) {
  if (!(ends.maximum > ends.minimum)) ends.maximum = ends.minimum + span;
  return ends;
}

}  // namespace

std::span<const AxisChoice> axisChoices(Kind kind, bool iceDisplayed) {
  static constexpr std::array kIceAlone{AxisChoice{kIceAxis, "Ice Thickness"}};
  const auto& instrument = instrumentOf(kind);
  if (instrument.hasIce() && iceDisplayed) return kIceAlone;
  return instrument.axes;
}

std::size_t axisPosition(std::span<const AxisChoice> choices, const Settings& settings) {
  for (std::size_t i = 0; i < choices.size(); ++i) {
    if (profileGridOf(true, choices[i].group) == settings.profileGrid) return i;
  }
  return 0;
}

bool gridChosen(const Settings& settings) { return indexOr(settings.profileGrid, 4, 1) != 0; }

int profileGridOf(bool grid, int group) { return grid ? 1 + group : 0; }

void takeDisplayOptions(const Settings& from, Settings& to) {
  to.traceShown = from.traceShown;
  to.traceWidth = from.traceWidth;
  to.traceColour = from.traceColour;
  to.profileGrid = from.profileGrid;
}

bool traceChosen(const Settings& settings, std::size_t slot) {
  return indexOr(settings.traceShown.at(slot), 2, 1) == 1;
}

int traceWidthOf(const Settings& settings, std::size_t slot) {
  return indexOr(settings.traceWidth.at(slot) - 1, kTraceWidths, 0) + 1;
}

std::string traceWidthName(int width) { return fmt::format("{} pixel{}", width, width == 1 ? "" : "s"); }

std::string_view colourName(int colour) {
  const auto rgb = rgbOf(colour);
  int least = std::numeric_limits<int>::max();
  std::string_view name;
  for (const auto& named : kNamedColours) {
    const int distance = squaredDistance(named.rgb, rgb);
    if (distance >= least) continue;
    least = distance;
    name = named.name;
  }
  return name;
}

std::string colourNumber(int colour) {
  const auto rgb = rgbOf(colour);
  return fmt::format("#{:02X}{:02X}{:02X}", rgb[0], rgb[1], rgb[2]);
}

int settingsColour(int red, int green, int blue) { return blue << 16 | green << 8 | red; }

ScaleFields scaleFieldsOf(Kind kind, bool iceOption) {
  const auto& instrument = instrumentOf(kind);
  return {.inphase = instrument.inphaseScale,
          .ice = instrument.hasIce() && iceOption,
          .firstIsThickness = instrument.firstAxisIsThickness};
}

ScaleEnds limitedScale(ScaleEnds typed) {
  const ScaleEnds ends = numbersOnly(typed);
  return apart({std::clamp(ends.minimum, -kFarthest, kFarthest), std::clamp(ends.maximum, -kFarthest, kFarthest)},
               kLeastSpan);
}

ScaleEnds limitedThickness(ScaleEnds typed) {
  ScaleEnds ends = numbersOnly(typed);
  ends.minimum = ends.minimum > kThickest ? kThickestMinimum : std::max(ends.minimum, 0.0F);
  ends.maximum = std::clamp(ends.maximum, 0.0F, kThickest);
  return apart(ends, kLeastThicknessSpan);
}

void takeScales(const Settings& from, Settings& to) {
  to.conductivityMinimum = from.conductivityMinimum;
  to.conductivityMaximum = from.conductivityMaximum;
  to.inphaseMinimum = from.inphaseMinimum;
  to.inphaseMaximum = from.inphaseMaximum;
  to.iceMinimum = from.iceMinimum;
  to.iceMaximum = from.iceMaximum;
}

}  // namespace kalmira
