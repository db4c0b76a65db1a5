#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What goes wrong on purpose. Pure functions of the seed and the time.
namespace kalmira::sim {

// From `at_s` after the start up to, not including, `at_s + for_s`.
struct Window {
  double at_s = 0;
  double for_s = 0;
};

struct Faults {
  std::uint64_t seed = 1;
  double noise = 0;  // probability that a byte is replaced by another, 0 to 1
  std::vector<Window> silence{};
  std::vector<Window> unplug{};
};

// Whether the time is inside one of the windows.
bool within(const std::vector<Window>& windows, double time_s);

// All beginnings and ends, in order of time.
std::vector<double> windowEdges(const std::vector<Window>& windows);

// Corrupts transmission `number` (counted from 0 over both ports).
void addNoise(std::string& bytes, const Faults& faults, std::uint64_t number);

}  // namespace kalmira::sim
