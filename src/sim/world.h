#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

// Chance without state: every number is a function of the seed, the use it is for and an index. So any record of a run
// can be worked out by itself, and one more draw in one place changes nothing elsewhere.
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

// The ground under the survey line: two layers whose conductivity and depth change slowly along the line, with a buried
// thing every 30 m or so. A function of the seed and the place alone.

struct Response {
  double conductivity = 0;  // apparent, mS/m
  double inphase = 0;       // parts per thousand
};

// What an instrument with that coil separation reads `distance_m` (0 or more) along the line.
Response groundResponse(std::uint64_t seed, double distance_m, double separation_m, bool vertical);

// Sea ice along the line, 0.5 to 6 m thick.
double seaIce(std::uint64_t seed, double distance_m);

// The GPS receiver that walks along with the instrument. Its clock starts at a fixed date, so that one seed always
// gives the same sentences.

// The operator's pace along the line, which runs north-east.
inline constexpr double kWalk_mPerS = 1.2;

// The text between "$" and "*" of sentence `number` (counted from 0) of GGA, GSA, RMC, GGA ..., for a position fix
// `time_s` after the start. The fix is a plain one for the first five seconds, differential from then on.
std::string nmeaBody(std::uint64_t seed, std::uint64_t number, double time_s);

// The sentence from "$" to its checksum, which `error` (0 for the right one, else 1 to 255) is exclusive-ored into.
std::string withChecksum(std::string_view body, unsigned error);

}  // namespace kalmira::sim
