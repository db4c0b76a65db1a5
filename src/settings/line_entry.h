#pragma once

#include <string>
#include <string_view>

#include "settings/settings.h"

namespace kalmira {

// The fields of the new line dialog.
struct LineEntry {
  std::string lineName;  // UTF-8
  float lineIncrement = 0;
  int sequenceMode = 0;
  int direction = 0;
  double startStation = 0;
  float stationIncrement = 0;
};

inline constexpr int kSequenceAlternate = 0;
inline constexpr int kSequenceOneWay = 1;

// The opposite of West, South, North, East (0 to 3).
constexpr int oppositeDirection(int direction) { return 3 - direction; }

// The next line as the dialog proposes it, `station` being the last one: its number one line increment on and, where
// lines are walked to and fro, back from there in the opposite direction.
LineEntry proposeLine(const Settings& settings, double station);

// As the data file will hold them: a station with two decimals, an increment with three. What is walked by is
// what is written down, or the two drift apart.
double stationInFile(double station);
double incrementInFile(double increment);
void takeAsFile(Settings& settings);  // the station to start from and the increment in use
// Columns of header 2 for a wheel's increment.
inline constexpr int kWheelColumns = 7;

// Makes a confirmed entry the current line.
void takeLine(const LineEntry& entry, Settings& settings);

// Characters of a comment that its record holds; the rest of what is typed is not kept.
inline constexpr std::size_t kCommentCharactersKept = 11;

// What the operator is told beneath the comment while typing it: how much more fits or, when it is too long, what will
// be read in the file. `comment` is UTF-8.
std::string commentHint(std::string_view comment);

}  // namespace kalmira
