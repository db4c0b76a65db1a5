#include "chart/scale_fit.h"

#include <algorithm>
#include <cmath>

namespace kalmira {
namespace {

constexpr double kMargin = 0.04;  // of the span, so that no trace runs along the edge
constexpr double kSteps = 5;      // about so many in a scale

// 1, 2 or 5 times a power of ten, not below `value`.
double roundStep(double value) {
  const double power = std::pow(10.0, std::floor(std::log10(value)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= value * (1 - 1e-9)) return factor * power;
  }
  return 10 * power;
}

using Side = std::bitset<kProfilePoints> ShownColumn::*;

// One look at each column: this is done with every reading.
void addArrows(const std::deque<ShownColumn>& shown, int spacing, Side side, std::vector<EdgeArrow>& arrows) {
  std::bitset<kProfilePoints> told;  // in this stretch of columns
  int back = 0;
  for (auto column = shown.rbegin(); column != shown.rend(); ++column, ++back) {
    if (back % spacing == 0) told.reset();
    const auto fresh = (*column).*side & ~told;
    if (fresh.none()) continue;
    for (std::size_t trace = 0; trace < kProfilePoints; ++trace) {
      if (!fresh[trace]) continue;
      const int rank = static_cast<int>(told.count());
      arrows.push_back({.trace = trace, .above = side == &ShownColumn::above, .columns = back, .rank = rank});
      told.set(trace);
    }
  }
}

}  // namespace

std::vector<EdgeArrow> edgeArrows(const std::deque<ShownColumn>& shown, int spacing) {
  std::vector<EdgeArrow> arrows;
  addArrows(shown, std::max(spacing, 1), &ShownColumn::above, arrows);
  addArrows(shown, std::max(spacing, 1), &ShownColumn::below, arrows);
  return arrows;
}

void drawEdgeArrow(ChartCanvas& canvas, const ProfileSetup& setup, const EdgeArrow& arrow, int x, int size) {
  const int colour = traceColourOf(setup, arrow.trace);
  for (int row = 0; row < size; ++row) {
    const int y = arrow.above ? row : setup.height - 1 - row;
    canvas.line(x - row, y, x + row, y, colour, 1);
  }
}

bool anyOffScale(const std::deque<ShownColumn>& shown) {
  return std::any_of(shown.begin(), shown.end(),
                     [](const ShownColumn& column) { return column.above.any() || column.below.any(); });
}

ScaleEnds fittedEnds(const ValueSpan& span, double leastStep) {
  const double least = span.least;
  const double largest = span.largest;
  const double margin = kMargin * (largest - least);
  const double step = roundStep(std::max((largest - least) / kSteps, leastStep));
  double minimum = std::floor((least - margin) / step) * step;
  double maximum = std::ceil((largest + margin) / step) * step;
  // Nothing below zero needs no room there, unless it lies on the edge itself.
  if (least > 0) minimum = std::max(minimum, 0.0);
  if (largest < 0) maximum = std::min(maximum, 0.0);
  if (least <= minimum) minimum -= step;
  if (largest >= maximum) maximum += step;
  return {static_cast<float>(minimum), static_cast<float>(maximum)};
}

std::optional<Settings> fittedScales(Kind kind, const Settings& settings, const std::deque<ShownColumn>& shown) {
  std::array<ValueSpan, 3> spans;
  for (const auto& column : shown) {
    for (std::size_t axis = 0; axis < spans.size(); ++axis) spans[axis].take(column.spans[axis]);
  }
  if (std::none_of(spans.begin(), spans.end(), [](const ValueSpan& span) { return span.any; })) return std::nullopt;
  constexpr double kWhole = 1.0;  // as the scale dialog shows them
  constexpr double kTenth = 0.1;
  const bool thickness = instrumentOf(kind).firstAxisIsThickness;
  Settings fitted = settings;
  const auto take = [&spans](int axis, double step, auto limited, float& minimum, float& maximum) {
    const auto& span = spans.at(static_cast<std::size_t>(axis));
    if (!span.any) return;
    const auto ends = limited(fittedEnds(span, step));
    minimum = ends.minimum;
    maximum = ends.maximum;
  };
  take(kConductivityAxis, thickness ? kTenth : kWhole, thickness ? limitedThickness : limitedScale,
       fitted.conductivityMinimum, fitted.conductivityMaximum);
  take(kInphaseAxis, kWhole, limitedScale, fitted.inphaseMinimum, fitted.inphaseMaximum);
  take(kIceAxis, kWhole, limitedThickness, fitted.iceMinimum, fitted.iceMaximum);
  return fitted;
}

}  // namespace kalmira
