#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

// The machine's ticks against the receiver's clock. A sentence arrives late, by a delay that jitters, never early: the
// earliest arrivals draw the line, and a position stands where its own time falls on it, not where its sentence came.
// Not bound to a thread.
namespace kalmira {

// A stretch in which both clocks ran on.
struct ClockPiece {
  std::uint64_t firstOrder = 0;            // its first sentence, as they were counted
  double firstTick_s = 0, lastTick_s = 0;  // when its first and last came
  // tick - UTC = offset + slope * (tick - firstTick), seconds; UTC since 1970 where `dated`, else of some day.
  double offset = 0, slope = 0;
  bool dated = false;

  double utcAt(double tick_s) const { return tick_s - offset - slope * (tick_s - firstTick_s); }
  double tickAt(double utc) const { return firstTick_s + (utc + offset - firstTick_s) / (1 - slope); }
};

// What the sentences of a file are held against.
class ClockLine {
 public:
  ClockLine() = default;
  ClockLine(std::vector<ClockPiece> pieces, double latest_s) : pieces_(std::move(pieces)), latest_(latest_s) {}

  const std::vector<ClockPiece>& pieces() const { return pieces_; }
  // The piece that the position sentence counted `order` belongs to; nullptr where it has none.
  const ClockPiece* pieceOf(std::uint64_t order) const;
  // The sentence's own time, in its piece's terms. Nothing when it is a stray's: it would have come before it was sent.
  static std::optional<double> utcOf(const ClockPiece& piece, double tick_s, double timeOfDay_s);
  // The piece nearest to a tick, of the last one that begins up to `order` and those beside it.
  const ClockPiece* pieceNear(double tick_s, std::uint64_t order) const;
  // By how much a sentence was late at most, seconds.
  double latest() const { return latest_; }

 private:
  std::vector<ClockPiece> pieces_;
  double latest_ = 0;
};

// Makes the line of sentences as they come. Holds a few hundred numbers, however long the file.
class ClockFitter {
 public:
  // A good position sentence: counted, with the tick of its first letter and the time of day it gives.
  void take(std::uint64_t order, double tick_s, double timeOfDay_s);
  // What else says which day it is.
  void takeDate(double tick_s, double timeOfDay_s, std::int64_t day);

  // What the device itself says: its own local time at a tick, seconds since 1970 as if it were UTC, less its offset
  // from UTC. For files whose receiver tells no date.
  void takeDevice(double tick_s, double utc) { device_ = {tick_s, utc}; }

  ClockLine finish();

 private:
  struct Point {
    double tick = 0, offset = 0;
  };
  struct Making {
    std::uint64_t first = 0;
    double firstTick = 0, lastTick = 0;
    double tickSum = 0;  // behind firstTick
    int count = 0;
    std::vector<Point> hull;              // lower, ticks rising
    double blockStart = 0;                // of the window that `lowest` is of
    double lowest = 0, lowestBefore = 0;  // offsets, of it and of the one before
    double highest = 0;
    std::map<std::int64_t, int> days;  // votes for the day that time 0 is in

    double reference() const { return lowest < lowestBefore ? lowest : lowestBefore; }
    double span() const { return lastTick - firstTick; }
    void add(const Point& point);
  };
  struct Made {
    ClockPiece piece;
    int count = 0;
    std::optional<std::int64_t> day;
  };

  double unwrapped(double tick, double timeOfDay) const;
  static Making beginning(std::uint64_t order, const Point& point);
  void takeEarly(std::uint64_t order, const Point& point);
  void takeLate(std::uint64_t order, const Point& point);
  void replaceBy(Making next);
  static Made madeFrom(const Making& making);
  void dateAll(std::vector<Made>& made) const;

  std::vector<Made> done_;
  std::optional<Making> current_;
  std::optional<Making> early_, late_;  // what may become the next piece
  double latest_ = 0;
  struct DateSeen {
    double tick = 0, timeOfDay = 0;
    std::int64_t day = 0;
  };
  std::optional<DateSeen> first_date_;  // before the first position
  std::optional<std::pair<double, double>> device_;
};

}  // namespace kalmira
