#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "instruments/catalogue.h"
#include "platform/clock.h"

// The records of a data file, as text. A file is a sequence of records of one length, 24 bytes (26 for TESK2), each
// ended by a single line feed; the first byte is the tag. docs/data-file-format.md has every column with an example.
// Every function here returns exactly one record (or records) of that length: values too wide for their columns lose
// decimals or are brought to the widest number, text is cut, and characters that are not plain ASCII become "?".
namespace kalmira {

namespace tag {
inline constexpr char kHeader2 = 'H';
inline constexpr char kLine = 'L';
inline constexpr char kStart = 'B';
inline constexpr char kDirection = 'A';
inline constexpr char kDate = 'Z';
inline constexpr char kCalibration = 'O';
inline constexpr char kTimeMark = '*';
inline constexpr char kStation = 'S';
inline constexpr char kComment = 'C';
inline constexpr char kEvent = 'X';
inline constexpr char kGpsFirst = '@';
inline constexpr char kGpsMore = '#';
inline constexpr char kTextFirst = '?';
inline constexpr char kTextMore = '"';
inline constexpr char kGpsTick = '!';
}  // namespace tag

// What header 1 says about the file, one field a column.
struct Header1 {
  Kind kind = Kind::orla;
  bool shortInstrument = false;  // ORLA: "ORLAS"
  bool gps = false;              // "GPS" rather than "GRD"
  bool iceOption = false;        // ORLA: column 8 is "i"
  int lengthUnits = 0;           // column 16: 0 meters, 1 feet
  int listB = 0;                 // column 17
  int surveyMode = 0;            // column 18
  int listA = 0;                 // column 19
  int iceQuantity = 0;           // column 20, ORLA with the ice option: 1 ice thickness
  int seaWaterChoice = 0;        // column 21, ORLA with the ice option: 0 to 10, 10 written "A"
  int tesk2Variant = 1;          // column 20, TESK2
  char screenMark = ' ';         // column 23 (TESK2: 25): blank, "2" landscape, "3" portrait
};

std::string formatHeader1(const Header1& header);
// `surveyModeValue` is in the 7 columns of the survey mode: readings a second, station increment or count.
std::string formatHeader2(int recordLength, std::string_view baseName, std::string_view surveyModeValue);
std::string formatLineName(int recordLength, std::string_view lineName);
std::string formatStartStation(int recordLength, double station);
// `direction` 0 to 3: W, S, N, E.
std::string formatDirection(int recordLength, int direction, double increment);
std::string formatDate(int recordLength, const LocalTime& time);
// `channel` 1 to 6. TESK2 only.
std::string formatCalibration(int recordLength, int channel, double factor, double replaced);
std::string formatTimeMark(int recordLength, const LocalTime& time, std::uint32_t tick);
std::string formatStation(int recordLength, double station, const LocalTime& time);
// `text` gives 12 bytes (TESK2: 14), taken as they are.
std::string formatReading(int recordLength, std::string_view text, std::uint32_t tick);
// `tag` is kComment or kEvent.
std::string formatNote(int recordLength, char tag, std::string_view text, std::uint32_t tick);
// All records of one sentence with its trailer, one after the other.
std::string formatGpsSentence(int recordLength, std::string_view sentence, std::uint32_t tick, char first, char more);

inline constexpr std::array<char, 4> kDirectionLetters{'W', 'S', 'N', 'E'};

// Bytes of the reading text in a reading record: 12, for TESK2 14.
constexpr int readingTextLength(int recordLength) { return recordLength - 12; }

}  // namespace kalmira
