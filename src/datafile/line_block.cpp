#include "datafile/line_block.h"

#include "datafile/record_parse.h"

namespace kalmira {

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

}  // namespace kalmira
