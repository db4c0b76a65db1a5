#pragma once

#include <cmath>
#include <cstdint>

// Chance without state: every number is a function of the seed, the use it is for and an index. So any record
// of a run can be worked out by itself, and one more draw in one place changes nothing elsewhere.
namespace kalmira::sim {

enum class Use : std::uint64_t { ground = 1, anomaly, reading, position, checksum, noise };

inline std::uint64_t scramble(std::uint64_t x) {
  x += 0x9E3779B97F4A7C15ULL;
  x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9ULL;
  x = (x ^ (x >> 27U)) * 0x94D049BB133111EBULL;
  return x ^ (x >> 31U);
}

inline std::uint64_t draw(std::uint64_t seed, Use use, std::uint64_t index, std::uint64_t salt = 0) {
  return scramble(scramble(scramble(seed ^ scramble(static_cast<std::uint64_t>(use))) ^ index) ^ scramble(salt));
}

// 0 up to, not including, 1.
inline double fraction(std::uint64_t seed, Use use, std::uint64_t index, std::uint64_t salt = 0) {
  return static_cast<double>(draw(seed, use, index, salt) >> 11U) * 0x1.0p-53;
}

// Mean 0, standard deviation 1, never beyond 3.5: the sum of four even draws is bell-shaped enough for noise.
inline double bell(std::uint64_t seed, Use use, std::uint64_t index, std::uint64_t salt = 0) {
  double sum = -2.0;
  for (std::uint64_t i = 0; i < 4; ++i) sum += fraction(seed, use, index, salt * 4 + i);
  return sum * std::sqrt(3.0);
}

}  // namespace kalmira::sim
