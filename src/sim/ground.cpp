#include "sim/ground.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "sim/chance.h"

namespace kalmira::sim {
namespace {

// One buried thing in each stretch, never nearer to its ends than 8 m. A walker meets the first within 20 s.
constexpr double kStretch_m = 30;
constexpr double kMargin_m = 8;

struct Buried {
  double halfWidth_m;
  double conductivity;  // at its middle, mS/m
  double inphase;       // parts per thousand
  bool flanked;         // conductivity falls over it and rises on both sides
};
constexpr std::array<Buried, 3> kBuried{{
    {.halfWidth_m = 4.0, .conductivity = 75, .inphase = 1.2, .flanked = false},   // landfill
    {.halfWidth_m = 0.8, .conductivity = -45, .inphase = 5.0, .flanked = true},   // pipe
    {.halfWidth_m = 2.0, .conductivity = 220, .inphase = 7.0, .flanked = false},  // metal sheet
}};

double wave(std::uint64_t seed, double distance_m, double length_m, std::uint64_t which) {
  const double phase = fraction(seed, Use::ground, which);
  return std::sin(2 * std::numbers::pi * (distance_m / length_m + phase));
}

double hump(double offset_m, double halfWidth_m) {
  const double scaled = offset_m / halfWidth_m;
  return std::exp(-scaled * scaled);
}

// The share of the response that comes from below `depth`, a fraction of the coil separation: the standard
// cumulative responses of the two dipoles at low induction numbers.
double shareBelow(double depth, bool vertical) {
  const double root = std::sqrt(4 * depth * depth + 1);
  return vertical ? 1 / root : root - 2 * depth;
}

void addBuried(std::uint64_t seed, std::uint64_t stretch, double distance_m, double separation_m, Response& response) {
  const auto& thing = kBuried[draw(seed, Use::anomaly, stretch) % kBuried.size()];
  const double span_m = kStretch_m - 2 * kMargin_m;
  const double middle_m =
      static_cast<double>(stretch) * kStretch_m + kMargin_m + span_m * fraction(seed, Use::anomaly, stretch, 1);
  const double strength = 0.7 + 0.3 * fraction(seed, Use::anomaly, stretch, 2);
  // Coils further apart see it wider and weaker.
  const double width_m = thing.halfWidth_m + 0.1 * separation_m;
  const double scale = strength * thing.halfWidth_m / width_m;
  const double offset_m = distance_m - middle_m;
  double shape = hump(offset_m, width_m);
  response.inphase += scale * thing.inphase * shape;
  if (thing.flanked) shape -= 0.5 * hump(std::abs(offset_m) - 2 * width_m, width_m);
  response.conductivity += scale * thing.conductivity * shape;
}

}  // namespace

Response groundResponse(std::uint64_t seed, double distance_m, double separation_m, bool vertical) {
  const double upper = 14 + 5 * wave(seed, distance_m, 170, 0);
  const double lower = 38 + 12 * wave(seed, distance_m, 430, 1);
  const double depth_m = 1.5 + 0.7 * wave(seed, distance_m, 95, 2);
  const double below = shareBelow(depth_m / separation_m, vertical);
  Response response{.conductivity = upper + (lower - upper) * below,
                    .inphase = 0.4 + 0.3 * wave(seed, distance_m, 250, 3)};
  const auto stretch = static_cast<std::uint64_t>(distance_m / kStretch_m);
  const std::uint64_t first = stretch == 0 ? 0 : stretch - 1;
  for (auto near = first; near <= stretch + 1; ++near) {
    addBuried(seed, near, distance_m, separation_m, response);
  }
  if (!vertical) response.inphase *= 0.6;
  return response;
}

double iceThickness(std::uint64_t seed, double distance_m) {
  const double level = 1.8 + 0.5 * wave(seed, distance_m, 310, 4) + 0.2 * wave(seed, distance_m, 37, 5);
  const double ridge = std::max(0.0, wave(seed, distance_m, 120, 6) - 0.7) * 10;
  return std::clamp(level + ridge, 0.5, 6.0);
}

}  // namespace kalmira::sim
