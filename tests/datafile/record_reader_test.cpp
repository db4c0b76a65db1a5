#include "datafile/record_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <utility>

#include "datafile/reading_context.h"
#include "datafile/record_text.h"

namespace kalmira {
namespace {

const std::string kHeader = "ORLA2   W230GRD0000    \n";
using Texts = std::vector<std::string>;

std::string reading(unsigned number, std::string_view text = "T$+0001+0002") { return formatReading(24, text, number); }

struct ReadBytes : RecordReader {
  explicit ReadBytes(const std::string& bytes) {
    EXPECT_EQ(open(std::make_unique<std::istringstream>(bytes)).kind, FileErrorKind::none);
  }
  Texts forwards() {
    Texts all;
    for (Record record; next(record);) all.emplace_back(record.bytes);
    return all;
  }
  Texts backwards() {
    Texts all;
    for (Record record; previous(record);) all.emplace_back(record.bytes);
    std::reverse(all.begin(), all.end());
    return all;
  }
};

TEST(RecordReader, NamesWhatIsNoDataFile) {
  using Case = std::pair<std::string, FileErrorKind>;
  for (const auto& [bytes, kind] : {Case{"", FileErrorKind::empty}, Case{"ORLA2   W230GR", FileErrorKind::notADataFile},
                                    Case{std::string(4096, '\0'), FileErrorKind::notADataFile},
                                    Case{"ORLA2   W222GRD0000    \n", FileErrorKind::notADataFile}}) {
    EXPECT_EQ(RecordReader().open(std::make_unique<std::istringstream>(bytes)).kind, kind) << bytes.size();
  }
  RecordReader reader;
  EXPECT_EQ(reader.open(testing::TempDir()).kind, FileErrorKind::notAFile);
  const auto missing = reader.open(testing::TempDir() + "no such file");
  EXPECT_EQ(missing.kind, FileErrorKind::cannotOpen);
  EXPECT_EQ(missing.text, "cannot be opened: No such file or directory");
}

TEST(RecordReader, GivesTheSameRecordsBothWaysWhateverTheyHold) {
  // More than one window of the reader, and none of its sizes a multiple of the record length.
  Texts many;
  for (unsigned i = 0; i < 9000; ++i) many.push_back(reading(i));
  // A mode byte may be a line feed, and a TESK2's record all of them.
  Texts feeds;
  for (const auto* text : {"T\n-0400+0800", "T$-0400+0800", "T\n-0400+0800", "T\r-0400+0800"})
    feeds.push_back(reading(81250, text));
  const Texts long26{formatReading(26, std::string("T\n\n\n\n\n\n\n\n\n\n\n\n\n", 14), 1),
                     formatReading(26, std::string("t\x04\0\n\0\n\0\n\0\n\0\n\0\n", 14), 2)};
  for (const auto& [header, records] :
       {std::pair{kHeader, many}, {kHeader, feeds}, {formatHeader1({.kind = Kind::tesk2}), long26}}) {
    std::string bytes = header;
    for (const auto& each : records) bytes += each;
    ReadBytes reader(bytes + "T$+00");
    EXPECT_EQ(static_cast<std::size_t>(reader.recordLength()), header.size());
    EXPECT_EQ(reader.forwards(), records);
    EXPECT_EQ(reader.tornBytes(), 5U);
    reader.seekToEnd();
    EXPECT_EQ(reader.tornBytes(), 5U);
    auto all = records;
    all.insert(all.begin(), header);
    EXPECT_EQ(reader.backwards(), all);
    EXPECT_EQ(reader.skippedBytes(), 0U);
  }
}

TEST(RecordReader, GoesOnBehindDamageInBothDirections) {
  using Case = std::pair<std::string, std::uint64_t>;  // between the readings 1 and 2; bytes skipped
  for (const auto& [middle, skipped] :
       {Case{std::string(72, '\0'), 72}, Case{"T$+0001+002          9\n", 23}, Case{"T$+0001+\n", 9},
        Case{"Q                      \n", 24}, Case{"\n", 1}, Case{"C 1234\n 1234          5\n", 24},
        Case{std::string(30, 'x') + "\n", 31}}) {
    SCOPED_TRACE(middle);
    const std::string bytes = kHeader + reading(1) + middle + reading(2) + reading(3);
    ReadBytes reader(bytes);
    EXPECT_EQ(reader.forwards(), (Texts{reading(1), reading(2), reading(3)}));
    EXPECT_EQ(reader.skippedBytes(), skipped);
    EXPECT_EQ(reader.tornBytes(), 0U);
    reader.seek(bytes.size());
    EXPECT_EQ(reader.backwards(), (Texts{kHeader, reading(1), reading(2), reading(3)}));
  }
}

TEST(RecordReader, TellsThatAReadFailed) {
  // A device that gives its first block and then an error.
  struct FailingBuffer : std::streambuf {
    std::string left = kHeader + reading(1);
    std::streamsize xsgetn(char* to, std::streamsize) override {
      if (left.empty()) throw std::ios_base::failure("input/output error");
      left.copy(to, left.size());
      return static_cast<std::streamsize>(std::exchange(left, {}).size());
    }
  };
  struct FailingStream : FailingBuffer, std::istream {
    FailingStream() : std::istream(static_cast<FailingBuffer*>(this)) {}
  };
  RecordReader failing;
  ASSERT_EQ(failing.open(std::make_unique<FailingStream>()).kind, FileErrorKind::none);
  Record record;
  EXPECT_FALSE(failing.next(record));
  EXPECT_EQ(failing.error().kind, FileErrorKind::readFailed);
  EXPECT_EQ(failing.error().text.substr(0, 30), "cannot be read at byte 48: Inp");
}

constexpr std::uint32_t kHour = 3600000;
constexpr std::uint32_t kDay = 24 * kHour;

constexpr std::uint32_t at(std::uint32_t hour, std::uint32_t minute = 0) { return hour * kHour + minute * 60000; }

// A date record and marks of the eighth of March 2024, day 19790, and what a tick is then.
struct TimesCase {
  int dateHour, dateMinute;
  std::vector<TimeMark> marks;  // time of day, tick
  std::uint32_t tick;
  std::int64_t day;  // behind the eighth
  std::uint32_t timeOfDayMs;
};

TEST(RecordTimes, CountFromTheMarkOnTheDayOfTheDateRecordAndItsTicks) {
  const std::vector<TimeMark> ten{{at(10), 500}};
  const TimeMark night{at(22), 0}, one{at(1), 3 * kHour}, wintertime{at(0, 30), 3 * kHour + kHour / 2};
  for (const auto& item : std::initializer_list<TimesCase>{
           {10, 0, ten, 500, 0, at(10)},
           {10, 0, ten, 501, 0, at(10) + 1},
           {10, 0, ten, 0, 0, at(10) - 500},
           {10, 0, ten, 500 + 3 * kDay, 3, at(10)},
           {10, 0, ten, 500 + 49 * kDay, 49, at(10)},            // not 17 hours before
           {10, 0, {{at(10), 4294967290U}}, 4, 0, at(10) + 10},  // the counter wraps
           {10, 0, {{at(9, 30), 1}}, 1, 0, at(9, 30)},           // the clock was put back
           {8, 0, {{at(22), 1}}, 1, 0, at(22)},                  // hours later on the same day
           {23, 59, {{at(0), 1}}, 1, 1, at(0)},
           {23, 59, {{at(22, 0), 1}}, 1, 1, at(22, 0)},
           {0, 0, {{at(23, 50), 1}}, 1, -1, at(23, 50)},
           {22, 0, {night, one}, 3 * kHour, 1, at(1)},
           {22, 0, {night, one, wintertime}, wintertime.tick, 1, at(0, 30)},
           {22, 0, {night, one, {at(5), 8 * kHour + 5 * kDay}}, 8 * kHour + 5 * kDay, 6, at(5)}}) {
    RecordTimes times;
    times.takeDate({.year = 2024, .month = 3, .day = 8, .hour = item.dateHour, .minute = item.dateMinute});
    EXPECT_FALSE(times.at(item.tick).has_value());
    for (const auto& mark : item.marks) times.takeMark(mark);
    const auto moment = times.at(item.tick);
    ASSERT_TRUE(moment.has_value());
    EXPECT_EQ(moment->day, 19790 + item.day) << item.dateHour << " to " << item.timeOfDayMs;
    EXPECT_EQ(moment->timeOfDayMs, item.timeOfDayMs);
  }
}

}  // namespace
}  // namespace kalmira
