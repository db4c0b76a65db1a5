#pragma once

#include <cstdint>
#include <optional>

#include "datafile/record_parse.h"

namespace kalmira {

// From the ticks of a data file to dates and times of day. The file ties the two together with time marks;
// dates stand only in the line blocks.
//
// A time mark's day is found from the date record before it (the mark may follow it by up to 23 hours) or,
// when a mark was seen since, from the time that its tick says has passed since that mark. So days go on past
// midnight, and a clock that was put right or changed to summer time does not cost a day.
class RecordTimes {
 public:
  struct Moment {
    std::optional<std::int64_t> day;  // since 1970-01-01 in the device's time zone; nothing without a date record
    std::uint32_t timeOfDayMs = 0;    // since midnight
  };

  void takeDate(const LocalTime& date);
  void takeMark(const TimeMark& mark);
  // Nothing before the first time mark. Ticks up to an hour before the last mark's are taken as earlier than
  // it, all others as later: the 32-bit counter wraps after 49.7 days.
  std::optional<Moment> at(std::uint32_t tick) const;

 private:
  std::optional<std::int64_t> date_ms_;  // date record since the last mark, as `mark_ms_`
  bool marked_ = false;
  bool dated_ = false;  // mark_ms_ counts from 1970, else from the midnight before the mark
  std::int64_t mark_ms_ = 0;
  std::uint32_t mark_tick_ = 0;
};

}  // namespace kalmira
