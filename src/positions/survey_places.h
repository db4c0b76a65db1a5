#pragma once

#include <deque>
#include <functional>
#include <optional>

#include "datafile/reading_context.h"
#include "datafile/record_reader.h"
#include "positions/track.h"

// A place and a time for every reading of a data file. The file is gone over twice: first for the clocks, then for the
// places. Memory does not grow with it. Not bound to a thread.
namespace kalmira {

// The ticks of a file counted on past the end of their 32 bits, seconds. Both ways over it begin with the same one.
class CountedTicks {
 public:
  double take(std::uint32_t tick) {
    if (!any_) last_ = tick;
    any_ = true;
    last_ += static_cast<std::int32_t>(tick - static_cast<std::uint32_t>(last_));
    return static_cast<double>(last_) / 1000.0;
  }

 private:
  std::int64_t last_ = 0;
  bool any_ = false;
};

// What the first way over a file has found.
struct PositionScan {
  ClockLine line;
  std::optional<std::uint32_t> firstTick;  // from which the ticks were counted on
  std::uint64_t sentences = 0;             // position sentences with a right checksum
  std::optional<double> firstHeading;      // where the antenna's place asks for one
};

// Reads all of the file; its error, if any, is the reader's. `utcOffset_s`: of the device's clock, from the survey's
// notes; without them its local time is taken for UTC where only a date is missing.
PositionScan scanPositions(RecordReader& reader, const PositionOptions& options, std::optional<double> utcOffset_s);

// Where a reading was taken.
struct Place {
  GeoPoint at;
  PlanePoint plane;                // in the zone of the whole
  std::optional<double> altitude;  // of the instrument, metres above the geoid
  int fix = 0;                     // the GGA digit of the worse of the two fixes, see worseFix
  std::optional<int> satellites;   // the fewer
  std::optional<double> hdop;      // the larger
  std::optional<double> accuracy;  // the larger
  double gap_s = 0;                // between the two fixes; in Manual mode between reading and sentence
};

// Of two GGA digits the one that says less: 4 before 5 before 2 before 1.
int worseFix(int a, int b);

// Of one reading or moment: nullptr where it has no place; UTC, seconds since 1970, wherever the file has a clock.
using TakePlace = std::function<void(const Place* place, std::optional<double> utc)>;

struct PlaceTakers {
  TakePlace reading;                      // once a reading, in their order
  TakePlace moment;                       // once a moment, in their order
  std::function<void(const Fix&)> fix{};  // each good fix
};

// Finds the places of a file's readings, in their order.
class PlaceFinder {
 public:
  // `zone` is set by the first position where it is not set yet.
  PlaceFinder(const PositionScan& scan, const PositionOptions& options, bool manual, std::optional<MapZone>& zone,
              PlaceTakers takers);

  // Any record, of its type, in file order. The place of a reading is told now or later.
  void take(RecordType type, const Record& record);
  // Something else that happened at a tick, where that is known. In Manual mode it has the place of the sentence held
  // last, where that is no older than the longest gap.
  void takeMoment(std::optional<std::uint32_t> tick);
  // Tells the places of all readings so far: there are no further records.
  void finish();

  const LeftOut& leftOut() const { return track_.leftOut(); }
  // Position sentences taken, by which fixes are counted.
  std::uint64_t sentences() const { return order_; }

 private:
  struct Waiting {
    double tick = 0;  // no number: it has none
    bool reading = true;
  };
  struct Stand {  // the instrument at the moment of a fix
    Fix fix;
    GeoPoint at;
    PlanePoint plane;
  };

  void takeSentence(const SentenceAssembler::Sentence& sentence);
  void takeFix(const Fix& fix);
  void takeHeld(const PositionSentence* position, double tick);
  void takeReading(std::string_view record);
  std::optional<double> utcAt(double tick_s) const;
  double countedTick(std::optional<std::uint32_t> tick);
  void tell(const std::optional<Place>& place, const Waiting& waiting);
  void resolve(bool all);
  bool resolveFirst(bool all);
  Stand standOf(const Fix& fix) const;
  Place between(const Stand& a, const Stand& b, double moment) const;
  Place placeAt(const Stand& stand, double gap_s) const;

  const PositionScan& scan_;
  PositionOptions options_;
  bool manual_;
  std::optional<MapZone>& zone_;
  PlaceTakers takers_;
  Track track_;
  SentenceAssembler assembler_;
  CountedTicks ticks_;
  double tick_ = 0;  // of the reading taken last; no number: it has none
  double now_ = 0;
  std::uint64_t order_ = 0;
  std::optional<double> accuracy_;
  std::deque<Waiting> waiting_;  // whose places are not known yet
  std::deque<Stand> stands_;
  // Manual mode.
  bool reading_waits_ = false;
  bool held_any_ = false;
  std::optional<Stand> held_;
  double held_tick_ = 0, last_held_tick_ = 0;
  std::optional<Stand> last_held_, anchor_;
};

}  // namespace kalmira
