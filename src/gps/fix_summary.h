#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kalmira {

// What a receiver's sentences say about where it is and how well it knows, for a person to read.
class FixSummary {
 public:
  // A line as it came, and the tick (ms) at which it did. One without a right checksum counts as bad, and no more.
  void take(std::string_view line, bool checksumOk, std::uint32_t tick);
  // Short texts, as many as there is something to say of, the most important first: "AGPS", "10:13:07 UTC",
  // "50.965000 N 6.985000 E", "Sat: 9 of 14", "HDOP 1.0", "age 0.4 s". `tick` is now.
  std::vector<std::string> texts(std::uint32_t tick) const;
  // Whether a receiver has said anything about a position yet.
  bool heard() const { return heard_.has_value(); }

 private:
  void takeGga(std::string_view line, std::uint32_t tick);

  std::optional<std::uint32_t> heard_;  // the tick of the latest GGA
  std::string fix_, time_, place_, used_, hdop_, correction_age_;
  std::map<std::string, int> seen_;  // by constellation
  int bad_ = 0;
};

// "5057.90000", "N" as "50.965000 N"; empty when it is none. Minutes have two digits before the point.
std::string degreesText(std::string_view degreesAndMinutes, std::string_view hemisphere);

}  // namespace kalmira
