#include "positions/clock_line.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "positions/sentences.h"

namespace kalmira {
namespace {

// Serial lines jitter by less; a clock that is put right moves by more (a leap second by 1).
constexpr double kJump_s = 0.25;
constexpr double kBlock_s = 10;
// So long a sentence may be late again and again before the clock is taken to have changed for good; and so long at a
// file's end.
constexpr double kForGood_s = 60;
constexpr double kForGoodAtEnd_s = 5;
constexpr int kFew = 4;          // sentences that agree with each other are no strays
constexpr int kFewest = 3;       // of a piece, where there are larger ones
constexpr double kDrift = 2e-4;  // seconds a second, more than two clocks ever differ by
constexpr std::size_t kMostDays = 8;

double wholeDays(double seconds) { return kDay_s * std::round(seconds / kDay_s); }

}  // namespace

const ClockPiece* ClockLine::pieceOf(std::uint64_t order) const {
  const auto after = std::upper_bound(pieces_.begin(), pieces_.end(), order,
                                      [](std::uint64_t at, const ClockPiece& piece) { return at < piece.firstOrder; });
  return after == pieces_.begin() ? nullptr : &*std::prev(after);
}

std::optional<double> ClockLine::utcOf(const ClockPiece& piece, double tick_s, double timeOfDay_s) {
  const double latest = piece.utcAt(tick_s);
  const double utc = timeOfDay_s + wholeDays(latest - timeOfDay_s);
  return utc > latest + kJump_s ? std::nullopt : std::optional(utc);
}

const ClockPiece* ClockLine::pieceNear(double tick_s, std::uint64_t order) const {
  if (pieces_.empty()) return nullptr;
  const auto* at = pieceOf(order);
  if (at == nullptr) at = &pieces_.front();
  const auto distance = [tick_s](const ClockPiece& piece) {
    return std::max({0.0, piece.firstTick_s - tick_s, tick_s - piece.lastTick_s});
  };
  const auto* nearest = at;
  if (at != &pieces_.front() && distance(at[-1]) < distance(*nearest)) nearest = at - 1;
  if (at != &pieces_.back() && distance(at[1]) < distance(*nearest)) nearest = at + 1;
  return nearest;
}

void ClockFitter::Making::add(const Point& point) {
  ++count;
  tickSum += point.tick - firstTick;
  lastTick = std::max(lastTick, point.tick);
  highest = std::max(highest, point.offset);
  if (point.tick - blockStart >= kBlock_s) {
    lowestBefore = std::exchange(lowest, point.offset);
    blockStart = point.tick;
  }
  lowest = std::min(lowest, point.offset);
  if (!hull.empty() && point.tick < hull.back().tick) return;
  if (!hull.empty() && point.tick == hull.back().tick) {
    if (point.offset >= hull.back().offset) return;
    hull.pop_back();
  }
  const auto turnsUp = [&] {
    const auto& a = hull[hull.size() - 2];
    const auto& b = hull.back();
    return (b.tick - a.tick) * (point.offset - a.offset) > (b.offset - a.offset) * (point.tick - a.tick);
  };
  while (hull.size() > 1 && !turnsUp()) hull.pop_back();
  hull.push_back(point);
}

ClockFitter::Making ClockFitter::beginning(std::uint64_t order, const Point& point) {
  Making making{.first = order,
                .firstTick = point.tick,
                .lastTick = point.tick,
                .hull = {},
                .blockStart = point.tick,
                .lowest = point.offset,
                .lowestBefore = point.offset,
                .highest = point.offset,
                .days = {}};
  making.add(point);
  return making;
}

// The time of day on the day that makes it fit best.
double ClockFitter::unwrapped(double tick, double timeOfDay) const {
  return timeOfDay + wholeDays(tick - current_->reference() - timeOfDay);
}

void ClockFitter::take(std::uint64_t order, double tick_s, double timeOfDay_s) {
  if (!current_) {
    current_ = beginning(order, {tick_s, tick_s - timeOfDay_s});
    if (first_date_) takeDate(first_date_->tick, first_date_->timeOfDay, first_date_->day);
    return;
  }
  const Point point{tick_s, tick_s - unwrapped(tick_s, timeOfDay_s)};
  const double late = point.offset - current_->reference();
  if (late < -kJump_s) return takeEarly(order, point);
  if (late > kJump_s) return takeLate(order, point);
  current_->add(point);
  latest_ = std::max({latest_, late, late_ ? late_->highest - current_->reference() : 0.0});
  early_.reset();
  late_.reset();
}

// No sentence comes before it is sent: either it is a stray, or the clock has changed.
void ClockFitter::takeEarly(std::uint64_t order, const Point& point) {
  if (early_ && std::abs(point.offset - early_->reference()) <= kJump_s) {
    early_->add(point);
  } else {
    early_ = beginning(order, point);
  }
  if (early_->count >= kFew) replaceBy(std::move(*early_));
}

// A stall is made up for: what was held up comes in one go, ever less late.
void ClockFitter::takeLate(std::uint64_t order, const Point& point) {
  const double beyond = late_ ? point.offset - late_->reference() : -1;
  if (beyond < -kJump_s) {
    if (late_) latest_ = std::max(latest_, late_->highest - current_->reference());
    late_ = beginning(order, point);
  } else if (beyond > kJump_s) {
    late_->highest = std::max(late_->highest, point.offset);
  } else {
    late_->add(point);
  }
  if (late_->count >= kFew && late_->span() >= kForGood_s) replaceBy(std::move(*late_));
}

void ClockFitter::replaceBy(Making next) {
  done_.push_back(madeFrom(*current_));
  latest_ = std::max(latest_, next.highest - next.lowest);
  current_ = std::move(next);
  early_.reset();
  late_.reset();
}

void ClockFitter::takeDate(double tick_s, double timeOfDay_s, std::int64_t day) {
  if (!current_) {
    first_date_ = {tick_s, timeOfDay_s, day};
    return;
  }
  const auto days = static_cast<std::int64_t>(std::round((unwrapped(tick_s, timeOfDay_s) - timeOfDay_s) / kDay_s));
  auto& votes = current_->days;
  if (votes.size() < kMostDays || votes.contains(day - days)) ++votes[day - days];
}

// The line below all points that comes nearest to them.
ClockFitter::Made ClockFitter::madeFrom(const Making& making) {
  const double middle = making.firstTick + making.tickSum / making.count;
  double slope = 0;
  for (std::size_t i = 1; i < making.hull.size(); ++i) {
    const auto& a = making.hull[i - 1];
    const auto& b = making.hull[i];
    if (b.tick < middle && i + 1 < making.hull.size()) continue;
    slope = std::clamp((b.offset - a.offset) / (b.tick - a.tick), -kDrift, kDrift);
    break;
  }
  double offset = making.hull.front().offset;
  for (const auto& point : making.hull)
    offset = std::min(offset, point.offset - slope * (point.tick - making.firstTick));
  Made made{.piece = {.firstOrder = making.first,
                      .firstTick_s = making.firstTick,
                      .lastTick_s = making.lastTick,
                      .offset = offset,
                      .slope = slope},
            .count = making.count,
            .day = std::nullopt};
  const auto voted = std::ranges::max_element(making.days, {}, [](const auto& vote) { return vote.second; });
  if (voted != making.days.end()) made.day = voted->first;
  return made;
}

// A piece whose receiver told no date has the one that is nearest to what another piece, or the device, says.
void ClockFitter::dateAll(std::vector<Made>& made) const {
  std::optional<ClockPiece> known;
  const auto date = [&](Made& each) {
    auto& piece = each.piece;
    if (each.day) {
      piece.offset -= static_cast<double>(*each.day) * kDay_s;
    } else if (known) {
      piece.offset -= wholeDays(known->utcAt(piece.firstTick_s) - piece.utcAt(piece.firstTick_s));
    } else if (device_) {
      piece.offset -= wholeDays(device_->second - piece.utcAt(device_->first));
    } else {
      return;
    }
    piece.dated = true;
    known = piece;
  };
  const auto first = std::ranges::find_if(made, [](const Made& each) { return each.day.has_value(); });
  const auto begin = first == made.end() ? made.begin() : first;
  for (auto each = begin; each != made.end(); ++each) date(*each);
  known.reset();
  if (begin != made.end() && begin->piece.dated) known = begin->piece;
  for (auto each = begin; each != made.begin();) date(*--each);
}

ClockLine ClockFitter::finish() {
  if (!current_) return {};
  if (late_ && late_->count >= kFew && late_->span() >= kForGoodAtEnd_s) {
    replaceBy(std::move(*late_));
  } else if (late_) {
    latest_ = std::max(latest_, late_->highest - current_->reference());
  }
  done_.push_back(madeFrom(*current_));
  const bool anyLarge = std::ranges::any_of(done_, [](const Made& made) { return made.count >= kFewest; });
  if (anyLarge) std::erase_if(done_, [](const Made& made) { return made.count < kFewest; });
  dateAll(done_);
  std::vector<ClockPiece> pieces;
  pieces.reserve(done_.size());
  for (const auto& made : done_) pieces.push_back(made.piece);
  return {std::move(pieces), latest_};
}

}  // namespace kalmira
