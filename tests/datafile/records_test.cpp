#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <limits>
#include <sstream>
#include <utility>

#include "datafile/reading_context.h"
#include "datafile/record_format.h"
#include "datafile/record_parse.h"
#include "datafile/record_reader.h"
#include "datafile/record_text.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

using testing::Optional;

constexpr LocalTime kMorning{
    .year = 2024, .month = 3, .day = 7, .hour = 9, .minute = 5, .second = 4, .millisecond = 89};

// What the surveys of the kinds, end to end, do not show.
TEST(Header1Record, HasTheKindsColumns) {
  const auto ice = [](int quantity, int seaWater) {
    return Header1{.kind = Kind::orla, .iceOption = true, .iceQuantity = quantity, .seaWaterChoice = seaWater};
  };
  for (const auto& [header, record] : std::initializer_list<std::pair<Header1, std::string>>{
           {ice(1, 9), "ORLA2  iW230GRD000019  \n"},
           {ice(0, 10), "ORLA2  iW230GRD00000A  \n"},
           {ice(10, 11), "ORLA2  iW230GRD000000  \n"},
           {{.kind = Kind::mirka, .gps = true, .lengthUnits = 10, .listB = -1, .surveyMode = 2, .listA = 300},
            "MIRKA   W210GPS0020    \n"},
           {{.kind = Kind::glaco, .iceOption = true, .iceQuantity = 1}, "GLACO   W210GRD0000    \n"},
           {{.kind = Kind::tesk, .screenMark = '\n'}, "TESKS   W222GRD0000    \n"}}) {
    EXPECT_EQ(formatHeader1(header), record);
  }
  // Columns that are no digits are zero.
  EXPECT_EQ(formatHeader1(parseHeader1("ORLA2  iW230GRD??x-;Q  \n").value()), "ORLA2  iW230GRD000000  \n");
}

TEST(DataRecord, KeepsItsColumnsAtBothLengths) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  const std::string binary("t\x06\n\0\xFF\x80\x01\x02\x03\x04\x05\x06\x07\x08", 14);
  for (const int length : {24, 26}) {
    for (const auto& [text, formatted] : std::initializer_list<std::pair<std::string, std::string>>{
             {"H 030709Alo0010.00", formatHeader2(length, "030709Alonger", "0010.00")},
             {"L?hrental", formatLineName(length, "\xC3\x84hrental 1")},
             {"B12345678901", formatStartStation(length, 12345678901.25)},
             {"B       0.00", formatStartStation(length, kNan)},
             {"AW           -1.000", formatDirection(length, -1, -1.0)},
             {"Z07032024 09:05:04", formatDate(length, kMorning)},
             {"S      10.50 09050408", formatStation(length, 10.5, kMorning)}}) {
      EXPECT_EQ(formatted, records(static_cast<std::size_t>(length), {text}));
    }
  }
  EXPECT_EQ(formatTimeMark(24, kMorning, 42), "*09:05:04.089        42\n");
  EXPECT_EQ(formatNote(24, tag::kComment, "Fence crossing", 4294967295U), "CFence cross 4294967295\n");
  EXPECT_EQ(formatReading(26, binary, 2147483648U), binary + " 2147483648\n");
  EXPECT_EQ(formatCalibration(26, 6, -12.3456, 0.5), "O6   -12.346      0.500  \n");
}

TEST(ReadingsPerStation, FollowKindAndLists) {
  struct Case {
    Kind kind;
    int surveyMode, listA, listB, expected;
  };
  using enum Kind;
  for (const auto& [kind, mode, listA, listB, expected] :
       {Case{orla, 2, 0, 2, 2}, Case{orla, 2, 0, 1, 1}, Case{orla, 0, 0, 2, 1}, Case{teskb, 2, 0, 2, 2},
        Case{tesk2, 2, 1, 2, 2}, Case{tesk2, 1, 0, 2, 1}, Case{teskdd, 2, 0, 0, 2}, Case{teskdd, 2, 1, 2, 1},
        Case{tesk, 2, 0, 2, 4}, Case{tesk, 2, 1, 2, 2}, Case{tesk, 2, 2, 2, 2}, Case{tesk, 2, 0, 0, 1},
        Case{vardo, 2, 0, 5, 6}, Case{vardo, 2, 0, 9, 1}, Case{vardo, 1, 0, 5, 1}, Case{mirka, 2, 0, 2, 1},
        Case{glaco, 2, 0, 2, 1}}) {
    EXPECT_EQ(readingsPerStationOf(kind, mode, listA, listB), expected)
        << instrumentOf(kind).name << " mode " << mode << " lists " << listA << ' ' << listB;
  }
}

TEST(ParseRecords, RefuseWhatIsNone) {
  EXPECT_THAT(parseStation("B     -12.35           \n"), Optional(-12.35));
  EXPECT_EQ(parseDirection("AE            2.500    \n").value().increment, 2.5);
  const auto factor = parseCalibration("O6   -12.346      0.500  \n").value();
  EXPECT_EQ(std::tuple(factor.channel, factor.factor, factor.replaced), std::tuple(6, -12.346, 0.5));
  EXPECT_THAT(parseTick("TH+0001+0002 4294967295\n"), Optional(4294967295U));
  EXPECT_THAT(parseTick("TH+0001+0002         -1\n"), Optional(4294967295U));  // of a signed counter
  const auto date = parseDate("Z29022024 23:59:58     \n").value();
  EXPECT_EQ(std::tuple(date.day, date.month, date.year, date.second), std::tuple(29, 2, 2024, 58));
  const auto mark = parseTimeMark("*10:13:07.250        42\n").value();
  EXPECT_EQ(std::tuple(mark.timeOfDayMs, mark.tick), std::tuple(36787250U, 42U));
  const auto refused = [](const auto& parse, std::initializer_list<const char*> texts) {
    for (const auto* text : texts) EXPECT_FALSE(parse(text).has_value()) << text;
  };
  refused(parseStation, {"B                      \n", "B        nan           \n", "S    12.5x             \n", "B\n"});
  refused(parseDirection, {"AE\n"});
  refused(parseCalibration, {"O7     1.000      0.000  \n", "O0     1.000      0.000  \n"});
  refused(parseTick, {"TH+0001+0002 4294967296\n", "TH+0001+0002       1 2 \n", "TH+0001+0002           \n"});
  refused(parseDate, {"Z29022023 23:59:58     \n", "Z00012023 23:59:58     \n", "Z01012023 24:00:00     \n",
                      "Z01012023 23.59.58     \n"});
  refused(parseTimeMark, {"*10:13:07,250        42\n", "*10:13:07.250          \n"});
}

TEST(SurveyPosition, AdvancesByReadingNotByRepeat) {
  SurveyPosition position;
  using Step = std::pair<std::string_view, std::optional<double>>;  // record, station behind it
  for (const auto& [record, station] :
       {Step{"T", {}},  // before any line
        Step{"L1", {}}, Step{"B      10.00", 10.0}, Step{"AN           -0.100", 10.0}, Step{"T", 10.0}, Step{"2", 10.0},
        Step{"t", 9.9}, Step{"3", 9.9}, Step{"CNote", 9.9}, Step{"T", 9.8}, Step{"S       0.50 10101010", 0.5},
        Step{"2", 0.5},  // a repeat of the station before: the first reading here all the same
        Step{"T", 0.4}, Step{"S       ?.?? 10101010", {}}, Step{"T", {}}, Step{"L2", {}},
        Step{"B      50.00", 50.0},  // its direction record is damaged: no increment is known
        Step{"T", 50.0}, Step{"T", {}}}) {
    position.take(records24({record}));
    EXPECT_EQ(position.station(), station) << record;
  }
  EXPECT_EQ(position.lineName(), "2");
}

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
  // Neither waits for a writer nor reads without end.
  const TempFolder folder;
  const auto pipe = folder.path() / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const auto& path : {pipe, std::filesystem::path("/dev/zero")}) {
    EXPECT_EQ(reader.open(path).text, "is no regular file");
    EXPECT_EQ(reader.openWithoutHeader(path, Kind::orla).kind, FileErrorKind::notAFile);
  }
}

TEST(RecordReader, TellsWhereDamageIsAndAsksWhetherToGoOn) {
  using Places = std::vector<std::pair<std::uint64_t, std::uint64_t>>;
  Places places, backwards;
  ReadBytes reader(kHeader + reading(1) + std::string(48, '\0') + reading(2) + "T$+0001+\n" + reading(3));
  reader.watch({.damage = [&](std::uint64_t offset, std::uint64_t bytes) { places.emplace_back(offset, bytes); }});
  EXPECT_EQ(reader.forwards().size(), 3U);
  EXPECT_EQ(places, (Places{{48, 24}, {72, 24}, {120, 9}}));
  // With the damage that lets readers of a file without its first record find their places.
  const TempFolder folder;
  writeFile(folder.path() / "x", std::string(30, '\0') + '\n' + reading(1) + reading(2));
  RecordReader headless;
  ASSERT_EQ(headless.openWithoutHeader(folder.path() / "x", Kind::orla).kind, FileErrorKind::none);
  Record record;
  ASSERT_TRUE(headless.next(record));
  EXPECT_EQ(record.offset, 31U);
  EXPECT_FALSE(headless.headerWhole());

  std::vector<std::uint64_t> asked;
  ReadBytes zeros(kHeader + std::string(1000000, '\0'));
  zeros.watch({.goOn = [&](std::uint64_t offset) {
    asked.push_back(offset);
    return asked.size() < 3;
  }});
  EXPECT_FALSE(zeros.next(record));
  EXPECT_EQ(zeros.error().kind, FileErrorKind::left);
  EXPECT_EQ(zeros.error().text, fmt::format("was read up to byte {} only", asked.back()));
  EXPECT_EQ(asked.size(), 3U);
  EXPECT_LT(asked.back(), 300000U);
}

TEST(RecordReader, TellsThatTheFileHasBecomeShorter) {
  const TempFolder folder;
  const auto path = folder.path() / "x";
  std::string bytes = kHeader;
  for (unsigned i = 0; i < 9000; ++i) bytes += reading(i);
  writeFile(path, bytes);
  RecordReader reader;
  ASSERT_EQ(reader.open(path).kind, FileErrorKind::none);
  Record record;
  ASSERT_TRUE(reader.next(record));
  std::filesystem::resize_file(path, 100000);
  while (reader.next(record)) continue;
  EXPECT_EQ(reader.error().text,
            "has become shorter while it was read: it had 216024 bytes, and byte 100000 is no longer there");
  EXPECT_EQ(reader.error().kind, FileErrorKind::readFailed);
  // It grows, and a torn record is cut off again: that is how files are written.
  writeFile(path, bytes + "T$+0");
  ASSERT_EQ(reader.open(path).kind, FileErrorKind::none);
  std::filesystem::resize_file(path, bytes.size());
  while (reader.next(record)) continue;
  writeFile(path, bytes + reading(1));
  EXPECT_TRUE(reader.next(record));
  EXPECT_EQ(reader.error().kind, FileErrorKind::none);
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
