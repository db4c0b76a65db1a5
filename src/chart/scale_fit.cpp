#include "chart/scale_fit.h"

#include <algorithm>
#include <cmath>

namespace kalmira {
namespace {

constexpr double kRoom = 0.03;   // of the values' range, beyond each end
constexpr double kSteps = 10.0;  // that the scale is made of, about

// The smallest of 1, 2, 5, 10, 20 ... times `unit` that is not below `wanted`.
double roundStep(double wanted, double unit) {
  double step = unit;
  for (int turn = 0; step < wanted; ++turn) step *= turn % 3 == 1 ? 2.5 : 2.0;
  return step;
}

}  // namespace

ScaleEnds fittedScale(float least, float largest, bool thickness) {
  constexpr double kFarthest = 1e9;
  const double low = std::clamp(static_cast<double>(least), -kFarthest, kFarthest);
  const double high = std::clamp(static_cast<double>(largest), low, kFarthest);
  const double room = (high - low) * kRoom;
  const double step = roundStep((high - low) / kSteps, thickness ? 0.1 : 1.0);
  double minimum = std::floor((low - room) / step) * step;
  double maximum = std::ceil((high + room) / step) * step;
  if (maximum - minimum < 2.0 * step) minimum -= step, maximum += step;
  if (thickness) minimum = std::max(minimum, 0.0);
  return {static_cast<float>(minimum), static_cast<float>(maximum)};
}

}  // namespace kalmira
