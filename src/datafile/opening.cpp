#include "datafile/opening.h"

#include <fmt/format.h>

#include "datafile/record_format.h"
#include "datafile/record_parse.h"

namespace kalmira {
namespace {

// The repeat number of the first reading among the records; 1 when there is none.
int firstRepeat(std::string_view records, std::size_t length) {
  for (; records.size() >= length; records.remove_prefix(length)) {
    const auto record = records.substr(0, length);
    if (recordTypeOf(record) == RecordType::reading) return readingRepeat(record);
  }
  return 1;
}

}  // namespace

void Opening::take(std::string_view record) {
  switch (recordTypeOf(record)) {
    case RecordType::header1: headers_ = record; break;
    case RecordType::header2: headers_ += record; break;
    case RecordType::lineName: line_block_ = record; break;
    case RecordType::startStation:
    case RecordType::direction:
    case RecordType::date: line_block_ += record; break;
    case RecordType::calibration:
      if (const auto pair = parseCalibration(record); pair && pair->channel >= 1 && pair->channel <= 6) {
        calibrations_[static_cast<std::size_t>(pair->channel - 1)] = record;
      }
      break;
    case RecordType::timeMark: time_mark_ = record; break;
    default: break;
  }
  position_.take(record);
}

std::string Opening::records(std::string_view following, bool withHeaders) const {
  if (line_block_.empty()) return withHeaders ? headers_ : std::string{};
  std::string all = (withHeaders ? headers_ : std::string{}) + line_block_;
  for (const auto& record : calibrations_) all += record;
  const auto length = time_mark_.size();
  const auto station = firstRepeat(following, length) == 1 ? position_.nextStation() : position_.station();
  if (station) {
    const auto date = line_block_.size() >= length ? parseDate(line_block_.substr(line_block_.size() - length))
                                                   : std::optional<LocalTime>{};
    all += formatStation(static_cast<int>(length), *station, date.value_or(LocalTime{}));
  }
  return all + time_mark_;
}

}  // namespace kalmira
