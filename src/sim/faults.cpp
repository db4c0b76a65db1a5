#include "sim/faults.h"

#include <algorithm>

#include "sim/chance.h"

namespace kalmira::sim {

bool within(const std::vector<Window>& windows, double time_s) {
  return std::any_of(windows.begin(), windows.end(), [time_s](const Window& window) {
    return time_s >= window.at_s && time_s < window.at_s + window.for_s;
  });
}

std::vector<double> windowEdges(const std::vector<Window>& windows) {
  std::vector<double> edges;
  for (const auto& window : windows) {
    edges.push_back(window.at_s);
    edges.push_back(window.at_s + window.for_s);
  }
  std::sort(edges.begin(), edges.end());
  return edges;
}

void addNoise(std::string& bytes, const Faults& faults, std::uint64_t number) {
  if (faults.noise <= 0) return;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (fraction(faults.seed, Use::noise, number, 2 * i) >= faults.noise) continue;
    // Exclusive-or with 1 to 255: never the byte itself.
    const auto change = 1 + draw(faults.seed, Use::noise, number, 2 * i + 1) % 255;
    bytes[i] = static_cast<char>(static_cast<unsigned char>(bytes[i]) ^ change);
  }
}

}  // namespace kalmira::sim
