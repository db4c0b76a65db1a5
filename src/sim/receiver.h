#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The GPS receiver that walks along with the instrument. Its clock starts at a fixed date, so that one seed
// always gives the same sentences.
namespace kalmira::sim {

// The operator's pace along the line, which runs north-east.
inline constexpr double kWalk_mPerS = 1.2;

// The text between "$" and "*" of sentence `number` (counted from 0) of GGA, GSA, RMC, GGA ..., for a
// position fix `time_s` after the start. The fix is a plain one for the first five seconds, differential from
// then on.
std::string nmeaBody(std::uint64_t seed, std::uint64_t number, double time_s);

// The sentence from "$" to its checksum, which `error` (0 for the right one, else 1 to 255) is exclusive-ored
// into.
std::string withChecksum(std::string_view body, unsigned error);

}  // namespace kalmira::sim
