#include "settings/profile_scale.h"

#include <algorithm>
#include <cmath>

namespace kalmira {
namespace {

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
