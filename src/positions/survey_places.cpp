#include "positions/survey_places.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

namespace kalmira {
namespace {

// Readings wait so much longer than sentences are late, and for as long as a heading may take.
constexpr double kMargin_s = 1;
constexpr double kHeadingWait_s = 10;
// So near to a pole, degrees of longitude are no measure of a way.
constexpr double kPolar = 85;
constexpr double kLongWayAround = 1;

bool isSentenceTag(char tag) {
  return tag == tag::kGpsFirst || tag == tag::kGpsMore || tag == tag::kGpsTick || tag == tag::kTextFirst ||
         tag == tag::kTextMore;
}

// The device's own time, where the file has said the date.
std::optional<double> deviceTime(const RecordTimes& times, std::uint32_t tick) {
  const auto moment = times.at(tick);
  if (!moment || !moment->day) return std::nullopt;
  return static_cast<double>(*moment->day) * kDay_s + moment->timeOfDayMs / 1000.0;
}

template <typename Value>
std::optional<Value> worse(const std::optional<Value>& a, const std::optional<Value>& b, bool larger) {
  if (!a || !b) return a ? a : b;
  return larger ? std::max(*a, *b) : std::min(*a, *b);
}

std::optional<double> firstHeadingOf(RecordReader& reader, const PositionScan& scan, const PositionOptions& options) {
  std::optional<double> heading;
  Track track(scan.line, options, [&heading](const Fix& fix) {
    if (!heading) heading = fix.heading;
  });
  SentenceAssembler assembler;
  CountedTicks ticks;
  if (scan.firstTick) ticks.take(*scan.firstTick);
  std::uint64_t order = 0;
  Record record;
  while (!heading && reader.next(record)) {
    const auto sentence = assembler.feed(record.bytes);
    if (!sentence) continue;
    const double tick = ticks.take(sentence->tick);
    PositionSentence position;
    if (!sentence->checksumRight || !isPositionSentence(sentence->text)) continue;
    ++order;
    if (parsePosition(sentence->text, position) == PositionFault::none)
      track.takeSentence(position, order, tick, std::nullopt);
  }
  if (!heading) track.finish();
  return heading;
}

}  // namespace

PositionScan scanPositions(RecordReader& reader, const PositionOptions& options, std::optional<double> utcOffset_s) {
  PositionScan scan;
  ClockFitter fitter;
  SentenceAssembler assembler;
  CountedTicks ticks;
  RecordTimes times;
  bool deviceKnown = false;
  Record record;
  const auto begin = static_cast<std::uint64_t>(reader.recordLength());
  while (reader.next(record)) {
    const char tag = record.bytes[0];
    if (tag == tag::kDate) {
      if (const auto date = parseDate(record.bytes)) times.takeDate(*date);
    } else if (tag == tag::kTimeMark) {
      const auto mark = parseTimeMark(record.bytes);
      if (!mark) continue;
      times.takeMark(*mark);
      const auto local = deviceTime(times, mark->tick);
      const double tick = ticks.take(mark->tick);
      if (!scan.firstTick) scan.firstTick = mark->tick;
      if (local && !deviceKnown) fitter.takeDevice(tick, *local - utcOffset_s.value_or(0));
      deviceKnown = deviceKnown || local;
    } else if (isSentenceTag(tag)) {
      const auto sentence = assembler.feed(record.bytes);
      if (!sentence) continue;
      const double tick = ticks.take(sentence->tick);
      if (!scan.firstTick) scan.firstTick = sentence->tick;
      if (!sentence->checksumRight) continue;
      if (isPositionSentence(sentence->text)) {
        ++scan.sentences;
        if (const auto time = fixTimeOfDay(sentence->text)) fitter.take(scan.sentences, tick, *time);
      } else if (const auto dated = parseDatedTime(sentence->text)) {
        fitter.takeDate(tick, dated->timeOfDay_s, dated->day);
      }
    }
  }
  scan.line = fitter.finish();
  if (options.turnsAntenna() && !scan.line.pieces().empty() && reader.error().kind == FileErrorKind::none) {
    reader.seek(begin);
    scan.firstHeading = firstHeadingOf(reader, scan, options);
  }
  return scan;
}

int worseFix(int a, int b) {
  constexpr std::array kRanks{9, 5, 3, 4, 1, 2, 6, 7, 8, 10};  // by digit
  const auto rank = [&](int fix) { return kRanks.at(static_cast<std::size_t>(std::clamp(fix, 0, 9))); };
  return rank(a) >= rank(b) ? a : b;
}

PlaceFinder::PlaceFinder(const PositionScan& scan, const PositionOptions& options, bool manual,
                         std::optional<MapZone>& zone, PlaceTakers takers)
    : scan_(scan),
      options_(options),
      manual_(manual),
      zone_(zone),
      takers_(std::move(takers)),
      track_(scan.line, options, [this](const Fix& good) { takeFix(good); }) {
  track_.setFirstHeading(scan.firstHeading);
  if (scan.firstTick) ticks_.take(*scan.firstTick);
}

void PlaceFinder::take(RecordType type, const Record& record) {
  if (isSentenceTag(record.bytes[0])) {
    if (const auto sentence = assembler_.feed(record.bytes)) takeSentence(*sentence);
  } else if (type == RecordType::reading) {
    takeReading(record.bytes);
  }
}

void PlaceFinder::takeSentence(const SentenceAssembler::Sentence& sentence) {
  const double tick = ticks_.take(sentence.tick);
  now_ = std::max(now_, tick);
  if (!isPositionSentence(sentence.text)) {
    if (!sentence.checksumRight) return;
    if (const auto accuracy = parseAccuracy(sentence.text)) accuracy_ = accuracy;
    return;
  }
  auto& leftOut = track_.leftOut();
  if (!sentence.checksumRight) {
    ++leftOut.badChecksum;
    return;
  }
  ++order_;
  PositionSentence position;
  const auto fault = parsePosition(sentence.text, position);
  if (fault == PositionFault::noFix) ++leftOut.noFix;
  if (fault == PositionFault::unreadable) ++leftOut.unreadable;
  const bool good = fault == PositionFault::none;
  if (manual_) return takeHeld(good ? &position : nullptr, tick);
  if (good) track_.takeSentence(position, order_, tick, std::exchange(accuracy_, std::nullopt));
  resolve(false);
}

PlaceFinder::Stand PlaceFinder::standOf(const Fix& fix) const {
  Stand stand{.fix = fix, .at = fix.place(), .plane = {}};
  if (fix.heading) {
    const double turn = *fix.heading * std::numbers::pi / 180;
    stand.at = movedBy(stand.at, -options_.ahead_m * std::sin(turn) - options_.right_m * std::cos(turn),
                       -options_.ahead_m * std::cos(turn) + options_.right_m * std::sin(turn));
  }
  if (!zone_) zone_ = options_.zone ? MapZone{*options_.zone, stand.at.latitude >= 0} : zoneOf(stand.at);
  stand.plane = project(*zone_, stand.at);
  return stand;
}

void PlaceFinder::takeFix(const Fix& fix) {
  stands_.push_back(standOf(fix));
  if (takers_.fix) takers_.fix(fix);
}

Place PlaceFinder::placeAt(const Stand& stand, double gap_s) const {
  const auto& position = stand.fix.position;
  Place place{.at = stand.at,
              .plane = stand.plane,
              .altitude = position.altitude,
              .fix = position.quality,
              .satellites = position.satellites,
              .hdop = position.hdop,
              .accuracy = stand.fix.accuracy,
              .gap_s = gap_s};
  if (place.altitude) *place.altitude -= options_.up_m;
  return place;
}

Place PlaceFinder::between(const Stand& a, const Stand& b, double moment) const {
  const double gap = b.fix.moment_s - a.fix.moment_s;
  const double part = gap > 0 ? (moment - a.fix.moment_s) / gap : 1;
  const auto mix = [part](double from, double to) { return from + (to - from) * part; };
  Place place = placeAt(b, gap);
  const auto first = placeAt(a, gap);
  const double east = wrappedLongitude(b.at.longitude - a.at.longitude);
  place.plane = {mix(a.plane.easting, b.plane.easting), mix(a.plane.northing, b.plane.northing)};
  if (std::abs(a.at.latitude) > kPolar || std::abs(east) > kLongWayAround) {
    place.at = unproject(*zone_, place.plane);
  } else {
    place.at = {mix(a.at.latitude, b.at.latitude), wrappedLongitude(a.at.longitude + east * part)};
  }
  if (first.altitude && place.altitude) {
    place.altitude = mix(*first.altitude, *place.altitude);
  } else {
    place.altitude.reset();
  }
  place.fix = worseFix(first.fix, place.fix);
  place.satellites = worse(first.satellites, place.satellites, false);
  place.hdop = worse(first.hdop, place.hdop, true);
  place.accuracy = worse(first.accuracy, place.accuracy, true);
  return place;
}

double PlaceFinder::countedTick(std::optional<std::uint32_t> tick) {
  if (!tick) return std::nan("");
  const double counted = ticks_.take(*tick);
  now_ = std::max(now_, counted);
  return counted;
}

void PlaceFinder::tell(const std::optional<Place>& place, const Waiting& waiting) {
  (waiting.reading ? takers_.reading : takers_.moment)(place ? &*place : nullptr, utcAt(waiting.tick));
}

void PlaceFinder::takeMoment(std::optional<std::uint32_t> tick) {
  const Waiting moment{.tick = countedTick(tick), .reading = false};
  if (!manual_) {
    waiting_.push_back(moment);
    return resolve(false);
  }
  const double gap = std::abs(moment.tick - last_held_tick_);
  tell(last_held_ && gap <= options_.maxGap_s ? std::optional(placeAt(*last_held_, gap)) : std::nullopt, moment);
}

void PlaceFinder::takeReading(std::string_view record) {
  if (reading_waits_) tell(std::nullopt, {tick_});
  reading_waits_ = false;
  tick_ = countedTick(parseTick(record));
  if (!manual_) {
    waiting_.push_back({tick_});
    return resolve(false);
  }
  reading_waits_ = !std::exchange(held_any_, false);
  if (reading_waits_) return;
  tell(held_ ? std::optional(placeAt(*held_, std::abs(tick_ - held_tick_))) : std::nullopt, {tick_});
}

// A sentence that was held for a reading stands beside it.
void PlaceFinder::takeHeld(const PositionSentence* position, double tick) {
  held_.reset();
  const auto made = position == nullptr
                        ? std::nullopt
                        : fixOf(scan_.line, options_, *position, order_, tick, std::exchange(accuracy_, std::nullopt));
  if (position != nullptr && !made) ++track_.leftOut().untimely;
  if (made) {
    constexpr double kBaseline_m = 4;
    Fix fix = *made;
    const double passed = last_held_ ? std::abs(fix.moment_s - last_held_->fix.moment_s) : 0;
    const bool jumps = last_held_ && passed <= options_.maxGap_s &&
                       nearbyLength(last_held_->fix.place(), fix.place()) > options_.maxSpeed_mps * passed;
    if (jumps) {
      ++track_.leftOut().jumps;
    } else {
      if (options_.turnsAntenna()) {
        fix.heading = anchor_ ? anchor_->fix.heading : scan_.firstHeading;
        if (anchor_ && nearbyLength(anchor_->fix.place(), fix.place()) >= kBaseline_m)
          fix.heading = headingBetween(anchor_->fix.place(), fix.place());
      }
      held_ = standOf(fix);
      if (!anchor_ || nearbyLength(anchor_->fix.place(), fix.place()) >= kBaseline_m) anchor_ = held_;
      last_held_ = held_;
      last_held_tick_ = tick;
      if (takers_.fix) takers_.fix(fix);
    }
  }
  if (!std::exchange(reading_waits_, false)) {
    held_any_ = true;
    held_tick_ = tick;
    return;
  }
  tell(held_ ? std::optional(placeAt(*held_, std::abs(tick - tick_))) : std::nullopt, {tick_});
}

void PlaceFinder::resolve(bool all) {
  while (!waiting_.empty() && resolveFirst(all)) waiting_.pop_front();
  // Of fixes behind all readings one is needed, for the next.
  while (waiting_.empty() && stands_.size() > 1 && stands_[1].fix.moment_s <= now_ - kMargin_s) stands_.pop_front();
}

// False when a fix may still come that is wanted.
bool PlaceFinder::resolveFirst(bool all) {
  const double moment = waiting_.front().tick;
  while (stands_.size() > 1 && stands_[1].fix.moment_s <= moment) stands_.pop_front();
  const bool begun = !stands_.empty() && stands_.front().fix.moment_s <= moment;
  std::optional<Place> place;
  if (begun && stands_.front().fix.moment_s == moment) place = placeAt(stands_.front(), 0);
  if (begun && stands_.size() > 1) {
    const auto& a = stands_[0];
    const auto& b = stands_[1];
    if (a.fix.stretch == b.fix.stretch && b.fix.moment_s - a.fix.moment_s <= options_.maxGap_s)
      place = between(a, b, moment);
  } else if (!all && (begun || stands_.empty())) {
    const double patience = scan_.line.latest() + options_.maxGap_s + std::max(0.0, -options_.lag_s) + kMargin_s +
                            (options_.turnsAntenna() ? kHeadingWait_s : 0);
    if (moment + patience > now_ && !scan_.line.pieces().empty()) return false;
  }
  tell(place, waiting_.front());
  return true;
}

std::optional<double> PlaceFinder::utcAt(double tick_s) const {
  if (std::isnan(tick_s)) return std::nullopt;
  const auto* piece = scan_.line.pieceNear(tick_s, order_);
  if (piece == nullptr || !piece->dated) return std::nullopt;
  return piece->utcAt(tick_s) + options_.lag_s;
}

void PlaceFinder::finish() {
  track_.finish();
  if (std::exchange(reading_waits_, false)) tell(std::nullopt, {tick_});
  resolve(true);
}

}  // namespace kalmira
