#pragma once

#include <cstdint>

// The ground under the survey line: two layers whose conductivity and depth change slowly along the line,
// with a buried thing every 30 m or so. A function of the seed and the place alone.
namespace kalmira::sim {

struct Response {
  double conductivity = 0;  // apparent, mS/m
  double inphase = 0;       // parts per thousand
};

// What an instrument with that coil separation reads `distance_m` (0 or more) along the line.
Response groundResponse(std::uint64_t seed, double distance_m, double separation_m, bool vertical);

// Sea ice along the line, 0.5 to 6 m thick.
double iceThickness(std::uint64_t seed, double distance_m);

}  // namespace kalmira::sim
