#include "datafile/record_times.h"

#include <gtest/gtest.h>

namespace kalmira {
namespace {

constexpr std::uint32_t kHour = 3600000;
constexpr std::uint32_t kDay = 24 * kHour;

std::uint32_t at(std::uint32_t hour, std::uint32_t minute = 0) {
  return hour * kHour + minute * 60000;
}

// Days since the date record's, and the time of day.
void expectMoment(const RecordTimes& times, std::uint32_t tick, std::int64_t day, std::uint32_t timeOfDayMs) {
  const auto moment = times.at(tick);
  ASSERT_TRUE(moment.has_value());
  EXPECT_EQ(moment->day, 19790 + day);  // 2024-03-08 is day 19790
  EXPECT_EQ(moment->timeOfDayMs, timeOfDayMs);
}

LocalTime eighthOfMarch(int hour, int minute) {
  return {.year = 2024, .month = 3, .day = 8, .hour = hour, .minute = minute};
}

TEST(RecordTimes, KnowNothingBeforeTheFirstMarkAndNoDayBeforeTheFirstDate) {
  RecordTimes times;
  times.takeDate(eighthOfMarch(10, 0));
  EXPECT_FALSE(times.at(5).has_value());

  RecordTimes dateless;
  dateless.takeMark({.timeOfDayMs = at(23, 59), .tick = 0});
  const auto moment = dateless.at(2 * 60000);
  ASSERT_TRUE(moment.has_value());
  EXPECT_EQ(moment->day, std::nullopt);
  EXPECT_EQ(moment->timeOfDayMs, at(0, 1));
}

TEST(RecordTimes, CountFromTheMarkForwardsAndALittleBack) {
  RecordTimes times;
  times.takeDate(eighthOfMarch(10, 0));
  times.takeMark({.timeOfDayMs = at(10), .tick = 500});
  expectMoment(times, 500, 0, at(10));
  expectMoment(times, 501, 0, at(10) + 1);
  expectMoment(times, 0, 0, at(10) - 500);
  expectMoment(times, 500 + 3 * kDay, 3, at(10));
  expectMoment(times, 500 + 49 * kDay, 49, at(10));  // not 17 hours before
}

TEST(RecordTimes, GoOnAcrossTheCountersWrap) {
  RecordTimes times;
  times.takeDate(eighthOfMarch(10, 0));
  times.takeMark({.timeOfDayMs = at(10), .tick = 4294967290U});
  expectMoment(times, 4, 0, at(10) + 10);
}

struct MarkCase {
  int dateHour, dateMinute;
  std::uint32_t mark;
  std::int64_t day;
};

TEST(RecordTimes, FindTheMarksDayFromTheDateRecord) {
  for (const auto& [hour, minute, mark, day] :
       {MarkCase{10, 0, at(10), 0}, MarkCase{10, 0, at(9, 30), 0},  // the clock was put back
        MarkCase{8, 0, at(22), 0},                                  // hours later on the same day
        MarkCase{23, 59, at(0), 1}, MarkCase{23, 59, at(22, 0), 1}, MarkCase{0, 0, at(23, 50), -1}}) {
    RecordTimes times;
    times.takeDate(eighthOfMarch(hour, minute));
    times.takeMark({.timeOfDayMs = mark, .tick = 1});
    expectMoment(times, 1, day, mark);
  }
}

TEST(RecordTimes, FindLaterMarksDaysFromTheirTicks) {
  RecordTimes times;
  times.takeDate(eighthOfMarch(22, 0));
  times.takeMark({.timeOfDayMs = at(22), .tick = 0});
  times.takeMark({.timeOfDayMs = at(1), .tick = 3 * kHour});
  expectMoment(times, 3 * kHour, 1, at(1));
  times.takeMark({.timeOfDayMs = at(0, 30), .tick = 3 * kHour + kHour / 2});  // summer time ended
  expectMoment(times, 3 * kHour + kHour / 2, 1, at(0, 30));
  times.takeMark({.timeOfDayMs = at(5), .tick = 8 * kHour + 5 * kDay});
  expectMoment(times, 8 * kHour + 5 * kDay, 6, at(5));
  times.takeDate(eighthOfMarch(12, 0));  // a new line says the date anew
  times.takeMark({.timeOfDayMs = at(12), .tick = 9 * kDay});
  expectMoment(times, 9 * kDay, 0, at(12));
}

}  // namespace
}  // namespace kalmira
