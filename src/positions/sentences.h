#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// What a receiver's sentences say of a position and its time, for whichever satellites they speak: the two letters of
// the talker are not looked at.
namespace kalmira {

inline constexpr double kDay_s = 86400;

// A GGA sentence.
struct PositionSentence {
  double timeOfDay_s = 0;                 // UTC, below 86401
  double latitude = 0;                    // degrees on WGS 84, north positive
  double longitude = 0;                   // degrees, east positive, -180 to 180
  int quality = 0;                        // the digit that the sentence gives the fix; 0: none
  std::optional<double> altitude;         // metres above the geoid
  std::optional<double> geoidSeparation;  // metres, of the geoid above the ellipsoid
  std::optional<int> satellites;
  std::optional<double> hdop;
  std::optional<double> correctionAge_s;  // of differential data
};

enum class PositionFault { none, noFix, unreadable };

// A time of a day that is known: RMC, of a receiver that has a fix, or ZDA, which does not say whether it has one.
struct DatedTime {
  std::int64_t day = 0;  // since 1970-01-01, UTC
  double timeOfDay_s = 0;
  bool whileFixed = false;
};

// "$GPGGA" is one; proprietary sentences are none.
bool isPositionSentence(std::string_view sentence);
// Of a position sentence with a right checksum: unreadable, where a field that a fix needs is empty or no number.
PositionFault parsePosition(std::string_view sentence, PositionSentence& position);
// The time of day of the same, where parsePosition finds no fault; the fields that a fix does without are not looked
// at.
std::optional<double> fixTimeOfDay(std::string_view sentence);
std::optional<DatedTime> parseDatedTime(std::string_view sentence);
// GST: standard deviation of the horizontal position, metres.
std::optional<double> parseAccuracy(std::string_view sentence);

}  // namespace kalmira
