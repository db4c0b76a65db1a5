#include "sim/player.h"

#include <algorithm>
#include <limits>

namespace kalmira::sim {

std::string play(const TransmissionSource& next, const Faults& faults, double end_s, Pace& pace, Outlet& outlet) {
  const auto edges = windowEdges(faults.unplug);
  auto edge = edges.begin();
  bool plugged = true;
  std::uint64_t number = 0;
  for (auto transmission = next(); transmission;) {
    const double due_s = std::min(transmission->time_s, end_s);
    if (edge != edges.end() && *edge <= due_s) {
      if (!pace.waitUntil(*edge)) return {};
      const bool wanted = !within(faults.unplug, *edge);
      if (plugged && !wanted) outlet.unplug();
      if (!plugged && wanted) {
        if (auto error = outlet.plug(); !error.empty()) return error;
      }
      plugged = wanted;
      ++edge;
      continue;
    }
    if (!pace.waitUntil(due_s) || transmission->time_s >= end_s) return {};
    if (plugged && !within(faults.silence, due_s)) {
      addNoise(transmission->bytes, faults, number);
      outlet.send(transmission->port, transmission->bytes, due_s);
    }
    ++number;
    transmission = next();
  }
  return {};
}

}  // namespace kalmira::sim
