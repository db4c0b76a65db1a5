#include "datafile/reading_context.h"

namespace kalmira {
namespace {

constexpr std::int64_t kHourMs = 3600000;
constexpr std::int64_t kDayMs = 24 * kHourMs;

std::int64_t dayOf(std::int64_t ms) { return ms >= 0 ? ms / kDayMs : (ms + 1) / kDayMs - 1; }

// Milliseconds from `then` to `now`, negative for up to an hour.
std::int64_t elapsedMs(std::uint32_t now, std::uint32_t then) {
  const std::uint32_t before = ticksSince(then, now);
  return before <= kHourMs ? -static_cast<std::int64_t>(before) : std::int64_t{ticksSince(now, then)};
}

// The moment with that time of day that lies in the day from `earliest` on.
std::int64_t firstFrom(std::int64_t earliest, std::uint32_t timeOfDayMs) {
  const std::int64_t moment = dayOf(earliest) * kDayMs + timeOfDayMs;
  return moment < earliest ? moment + kDayMs : moment;
}

constexpr std::size_t kConductivityHorizontal = 1;

}  // namespace

bool SurveyPosition::take(std::string_view record) {
  switch (recordTypeOf(record)) {
    case RecordType::lineName:
      line_name_ = parseLineName(record);
      increment_.reset();
      standOn(std::nullopt);
      return true;
    case RecordType::startStation:
    case RecordType::station: standOn(parseStation(record)); return stated_.has_value();
    case RecordType::direction: {
      const auto direction = parseDirection(record);
      increment_ = direction ? std::optional(direction->increment) : std::nullopt;
      return direction.has_value();
    }
    case RecordType::reading:
      if (reading_seen_ && readingRepeat(record) == 1) ++steps_;
      reading_seen_ = true;
      return true;
    default: return true;
  }
}

std::optional<double> SurveyPosition::station() const { return stationAfter(steps_); }

std::optional<double> SurveyPosition::nextStation() const { return stationAfter(steps_ + (reading_seen_ ? 1 : 0)); }

std::optional<double> SurveyPosition::stationAfter(std::int64_t steps) const {
  if (!stated_ || steps == 0) return stated_;
  if (!increment_) return std::nullopt;
  // Multiplied, not added up: a thousand increments of 0.1 stay exact to the last place that is shown.
  return *stated_ + static_cast<double>(steps) * *increment_;
}

void SurveyPosition::standOn(std::optional<double> station) {
  stated_ = station;
  steps_ = 0;
  reading_seen_ = false;
}

void RecordTimes::takeDate(const LocalTime& date) { date_ms_ = msSince1970(date); }

void RecordTimes::takeMark(const TimeMark& mark) {
  if (date_ms_) {
    // The clock may have been put back a little between the two records.
    mark_ms_ = firstFrom(*date_ms_ - kHourMs, mark.timeOfDayMs);
    dated_ = true;
  } else if (marked_) {
    const std::int64_t expected = mark_ms_ + elapsedMs(mark.tick, mark_tick_);
    mark_ms_ = firstFrom(expected - kDayMs / 2, mark.timeOfDayMs);
  } else {
    mark_ms_ = mark.timeOfDayMs;
  }
  date_ms_.reset();
  mark_tick_ = mark.tick;
  marked_ = true;
}

std::optional<RecordTimes::Moment> RecordTimes::at(std::uint32_t tick) const {
  if (!marked_) return std::nullopt;
  const std::int64_t ms = mark_ms_ + elapsedMs(tick, mark_tick_);
  Moment moment;
  moment.timeOfDayMs = static_cast<std::uint32_t>(ms - dayOf(ms) * kDayMs);
  if (dated_) moment.day = dayOf(ms);
  return moment;
}

ReadingDecoder::ReadingDecoder(const Header1& header, bool teskRangeTimes10) : instrument_(&instrumentOf(header.kind)) {
  options_.teskRangeTimes10 = teskRangeTimes10 && instrument_->rangeTimes10;
  options_.orlaModelOption = header.shortInstrument;
  options_.listA = header.listA;
  if (instrument_->hasIce() && header.iceOption && header.iceQuantity == 1) {
    ice_.emplace();
    LoadIceTable(header.seaWaterChoice, header.shortInstrument, *ice_);
  }
}

void ReadingDecoder::takeCalibration(const CalibrationPair& calibration) {
  options_.calibration.at(static_cast<std::size_t>(calibration.channel - 1)) = static_cast<float>(calibration.factor);
}

Reading ReadingDecoder::decode(std::string_view text) const {
  Reading reading = instrument_->decode(text, options_);
  // The model is made for horizontal dipoles.
  if (ice_ && reading.channels.present[kConductivityHorizontal] != 0) {
    reading.thickness = IceThickness(static_cast<double>(reading.conductivity), *ice_, &reading.channels);
  }
  return reading;
}

}  // namespace kalmira
