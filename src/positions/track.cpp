#include "positions/track.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace kalmira {
namespace {

// A heading is that of the way from so far behind to so far ahead: noise does not turn it. What takes longer than this
// is no way but standing still, and keeps the heading that was.
constexpr double kHalfBaseline_m = 2;
constexpr double kLongest_s = 10;

}  // namespace

double headingBetween(const GeoPoint& from, const GeoPoint& to) {
  constexpr double kRadian = std::numbers::pi / 180;
  const double east =
      wrappedLongitude(to.longitude - from.longitude) * std::cos((from.latitude + to.latitude) / 2 * kRadian);
  return std::atan2(east, to.latitude - from.latitude) / kRadian;
}

std::optional<Fix> fixOf(const ClockLine& line, const PositionOptions& options, const PositionSentence& position,
                         std::uint64_t order, double tick_s, std::optional<double> accuracy) {
  const auto* piece = line.pieceOf(order);
  const auto utc = piece == nullptr ? std::nullopt : ClockLine::utcOf(*piece, tick_s, position.timeOfDay_s);
  if (!utc) return std::nullopt;
  return Fix{.moment_s = piece->tickAt(*utc) - options.lag_s,
             .utc = *utc,
             .dated = piece->dated,
             .position = position,
             .accuracy = accuracy,
             .heading = std::nullopt,
             .order = order,
             .stretch = 0,
             .sentenceTick_s = tick_s};
}

void Track::takeSentence(const PositionSentence& position, std::uint64_t order, double tick_s,
                         std::optional<double> accuracy) {
  const auto fix = fixOf(line_, options_, position, order, tick_s, accuracy);
  if (!fix) {
    ++left_out_.untimely;
    return;
  }
  if (const auto* piece = line_.pieceOf(order); std::exchange(piece_, piece) != piece && last_) breakOff();
  takeFix(*fix);
}

bool Track::reaches(const Fix& from, const Fix& to) const {
  return nearbyLength(from.place(), to.place()) <= options_.maxSpeed_mps * std::abs(to.moment_s - from.moment_s);
}

void Track::takeFix(const Fix& fix) {
  if (!last_) return begin(fix);
  const double passed = fix.moment_s - last_->moment_s;
  if (passed <= 0) {
    ++left_out_.untimely;
    return;
  }
  if (passed > options_.maxGap_s) {
    const auto other = std::exchange(other_first_, std::nullopt);
    breakOff();
    if (!other) return begin(fix);
    begin(*other);
    return takeFix(fix);
  }
  if (reaches(*last_, fix)) {
    if (std::exchange(other_first_, std::nullopt)) ++left_out_.jumps;
    if (std::exchange(last_is_alone_, false)) accept(*last_);
    return accept(fix);
  }
  if (last_is_alone_ && other_first_ && reaches(*other_first_, fix)) {
    const auto first = *std::exchange(other_first_, std::nullopt);
    last_is_alone_ = false;
    ++left_out_.jumps;
    accept(first);
    return accept(fix);
  }
  if (!last_is_alone_ || other_first_) ++left_out_.jumps;
  if (last_is_alone_) other_first_ = fix;
}

void Track::begin(const Fix& fix) {
  last_ = fix;
  last_is_alone_ = true;
}

void Track::breakOff() {
  if (std::exchange(other_first_, std::nullopt)) ++left_out_.jumps;
  if (last_is_alone_) accept(*last_);
  last_is_alone_ = false;
  last_.reset();
  ++stretch_;
}

void Track::accept(const Fix& fix) {
  last_ = fix;
  way_.push_back(fix);
  way_.back().stretch = stretch_;
  handOut(false);
}

void Track::handOut(bool all) {
  const auto& newest = way_.back();
  for (; next_ < way_.size(); ++next_) {
    auto& fix = way_[next_];
    if (options_.turnsAntenna()) {
      const bool seenAhead = newest.stretch != fix.stretch || newest.moment_s - fix.moment_s > kLongest_s;
      if (!all && !seenAhead && nearbyLength(fix.place(), newest.place()) < kHalfBaseline_m) break;
      if (const auto heading = headingOf(next_)) heading_ = heading;
      fix.heading = heading_;
    }
    take_(fix);
  }
  const auto done = [&] {
    return !options_.turnsAntenna() || way_[next_ - 1].moment_s - way_.front().moment_s > kLongest_s;
  };
  while (next_ > 1 && done()) {
    way_.pop_front();
    --next_;
  }
}

// From the last fix far enough behind to the first one far enough ahead.
std::optional<double> Track::headingOf(std::size_t index) const {
  const auto& fix = way_[index];
  const auto reachable = [&fix](const Fix& other) {
    return other.stretch == fix.stretch && std::abs(other.moment_s - fix.moment_s) <= kLongest_s;
  };
  const auto far = [&fix](const Fix& other) { return nearbyLength(fix.place(), other.place()) >= kHalfBaseline_m; };
  const Fix* behind = nullptr;
  for (auto i = index; behind == nullptr && i-- > 0 && reachable(way_[i]);) {
    if (far(way_[i])) behind = &way_[i];
  }
  const Fix* ahead = nullptr;
  for (auto i = index + 1; ahead == nullptr && i < way_.size() && reachable(way_[i]); ++i) {
    if (far(way_[i])) ahead = &way_[i];
  }
  if (behind == nullptr && ahead == nullptr) return std::nullopt;
  return headingBetween(behind == nullptr ? fix.place() : behind->place(),
                        ahead == nullptr ? fix.place() : ahead->place());
}

void Track::finish() {
  if (last_) breakOff();
  if (!way_.empty()) handOut(true);
}

}  // namespace kalmira
