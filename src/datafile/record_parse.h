#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "datafile/record_format.h"

// The way back from a data file's records to what they say: the counterpart of record_format.h. Every function takes
// one whole record with its line feed, of either length; any bytes may be handed in. No value means that the record's
// columns do not hold what the tag promises.
namespace kalmira {

// A sentence with a right checksum is "gps", any other line of the GPS port "text".
enum class RecordType {
  header1,
  header2,
  lineName,
  startStation,
  direction,
  date,
  calibration,
  timeMark,
  station,
  reading,
  comment,
  event,
  gpsFirst,
  gpsMore,
  textFirst,
  textMore,
  gpsTick,
  unknown,
};

// By the tag. Header 1 has none and is known by its model and program tags: an ORLA's begins with the letter of a
// calibration record, a TESK's with that of a reading.
RecordType recordTypeOf(std::string_view record);

// Whether bytes of a record's length are one. A line feed inside means that they begin in one record and end in
// another; only the instrument's bytes of a reading may hold one (any mode byte is possible). Those readings are known
// by their tick.
bool isRecord(std::string_view bytes);

// Nothing when no instrument's tags open the record. A column that is no digit counts as 0.
std::optional<Header1> parseHeader1(std::string_view record);

// Columns 2 to 9 without the blanks that pad them. The viewer's list shows it up to its first blank.
std::string parseLineName(std::string_view record);

// Of a start station ("B") or new station ("S") record.
std::optional<double> parseStation(std::string_view record);

struct LineDirection {
  char letter = 'N';  // W, S, N or E
  double increment = 0;
};
std::optional<LineDirection> parseDirection(std::string_view record);

// Date and time of day, to the second.
std::optional<LocalTime> parseDate(std::string_view record);

// The tick that ends time marks, readings, comments, events and the trailer of a GPS sentence.
std::optional<std::uint32_t> parseTick(std::string_view record);

struct TimeMark {
  std::uint32_t timeOfDayMs = 0;  // since local midnight
  std::uint32_t tick = 0;
};
std::optional<TimeMark> parseTimeMark(std::string_view record);

struct CalibrationPair {
  int channel = 1;  // 1 to 6
  double factor = 0;
  double replaced = 0;
};
std::optional<CalibrationPair> parseCalibration(std::string_view record);

// The instrument's bytes: 12, of a TESK2 14, some of which may be line feeds. A view into `record`.
std::string_view readingText(std::string_view record);

// "T" or "t" gives 1: the first reading at its station; "2" to "6" their number. 0 for any other record.
int readingRepeat(std::string_view record);

// Text of a comment or an event without the blanks that pad it.
std::string parseNote(std::string_view record);

// Puts the records of a GPS sentence together again.
class SentenceAssembler {
 public:
  struct Sentence {
    std::string_view text;  // valid until the next record is fed
    bool checksumRight = false;
    std::uint32_t tick = 0;
  };
  // Takes the records in file order, of whatever type; returns a sentence at its trailer.
  std::optional<Sentence> feed(std::string_view record);

 private:
  std::string text_;
  std::size_t chunks_ = 0;  // 0 while no sentence is open
  bool checksum_right_ = false;
};

}  // namespace kalmira
