#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

#include "positions/clock_line.h"
#include "positions/projection.h"
#include "positions/sentences.h"

// From a receiver's sentences to the way it went.
namespace kalmira {

// Seconds, metres a second and metres.
struct PositionOptions {
  double lag_s = 0;           // by which the fastest sentence comes after the moment of its fix
  double maxGap_s = 5;        // no position is made up across a longer one
  double maxSpeed_mps = 15;   // what is farther from the fix before it than this allows is none
  std::optional<int> zone{};  // of the transverse Mercator grid, 1 to 60, in place of the first position's own
  // Where the antenna is, from the middle of the instrument.
  double ahead_m = 0, right_m = 0, up_m = 0;

  bool turnsAntenna() const { return ahead_m != 0 || right_m != 0; }
};

// A good fix.
struct Fix {
  double moment_s = 0;  // on the tick clock
  double utc = 0;       // seconds since 1970 where it is dated, else of some day
  bool dated = false;
  PositionSentence position;
  std::optional<double> accuracy;  // metres, where the receiver tells it
  std::optional<double> heading;   // degrees clockwise from north, in which the receiver moves or has last moved
  std::uint64_t order = 0;         // of its sentence
  std::uint64_t stretch = 0;       // one on at each break of the receiver
  double sentenceTick_s = 0;

  GeoPoint place() const { return {position.latitude, position.longitude}; }
};

// What a good position sentence, counted `order`, is on the clock's line. Nothing when it came at a time that cannot
// be.
std::optional<Fix> fixOf(const ClockLine& line, const PositionOptions& options, const PositionSentence& position,
                         std::uint64_t order, double tick_s, std::optional<double> accuracy);

// Degrees clockwise from north.
double headingBetween(const GeoPoint& from, const GeoPoint& to);

// What was left out, and why.
struct LeftOut {
  std::uint64_t badChecksum = 0;
  std::uint64_t noFix = 0;
  std::uint64_t unreadable = 0;
  std::uint64_t untimely = 0;  // at a time that cannot be, or not after the one before
  std::uint64_t jumps = 0;

  std::uint64_t all() const { return badChecksum + noFix + unreadable + untimely + jumps; }
};

// Takes position sentences in file order and hands out the good fixes of them, a little later: whether the first of a
// stretch is the one that jumps only the next ones show, and where the way leads only those do that are some metres on.
class Track {
 public:
  Track(const ClockLine& line, const PositionOptions& options, std::function<void(const Fix&)> take)
      : line_(line), options_(options), take_(std::move(take)) {}

  void takeSentence(const PositionSentence& position, std::uint64_t order, double tick_s,
                    std::optional<double> accuracy);
  // There is no further sentence.
  void finish();
  // The heading that holds until one is known.
  void setFirstHeading(std::optional<double> heading) { heading_ = heading; }
  const LeftOut& leftOut() const { return left_out_; }
  LeftOut& leftOut() { return left_out_; }

 private:
  bool reaches(const Fix& from, const Fix& to) const;
  void takeFix(const Fix& fix);
  void begin(const Fix& fix);
  void breakOff();
  void accept(const Fix& fix);
  void handOut(bool all);
  std::optional<double> headingOf(std::size_t index) const;

  const ClockLine& line_;
  PositionOptions options_;
  std::function<void(const Fix&)> take_;
  LeftOut left_out_;
  std::uint64_t stretch_ = 0;
  const ClockPiece* piece_ = nullptr;
  std::optional<Fix> last_;         // accepted
  bool last_is_alone_ = false;      // the first of its stretch, and not yet handed on
  std::optional<Fix> other_first_;  // too far from it
  std::deque<Fix> way_;             // handed out up to next_, as far back as headings need
  std::size_t next_ = 0;
  std::optional<double> heading_;
};

}  // namespace kalmira
