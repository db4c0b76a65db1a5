#include "datafile/record_format.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace kalmira {
namespace {

constexpr int kShort = 24;
constexpr int kLong = 26;

constexpr LocalTime kMorning{
    .year = 2024, .month = 3, .day = 7, .hour = 9, .minute = 5, .second = 4, .millisecond = 89};

Header1 iceHeader(int quantity, int seaWater) {
  return {.kind = Kind::orla, .iceOption = true, .iceQuantity = quantity, .seaWaterChoice = seaWater};
}

TEST(Header1Record, HasTheKindsColumns) {
  const std::vector<std::pair<Header1, std::string>> cases{
      {{.lengthUnits = 1, .listB = 2, .surveyMode = 1, .listA = 1, .screenMark = '3'},
       "ORLA2   W230GRD1211   3\n"},
      {{.shortInstrument = true, .gps = true}, "ORLAS   W230GPS0000    \n"},
      {iceHeader(1, 9), "ORLA2  iW230GRD000019  \n"},
      {iceHeader(0, 10), "ORLA2  iW230GRD00000A  \n"},
      {iceHeader(10, 11), "ORLA2  iW230GRD000000  \n"},
      {{.kind = Kind::mirka, .gps = true, .lengthUnits = 10, .listB = -1, .surveyMode = 2, .listA = 300},
       "MIRKA   W210GPS0020    \n"},
      {{.kind = Kind::glaco, .iceOption = true, .iceQuantity = 1, .seaWaterChoice = 3},
       "GLACO   W210GRD0000    \n"},
      {{.kind = Kind::tesk2, .gps = true, .listB = 1, .listA = 1, .tesk2Variant = 2, .screenMark = '2'},
       "TESK2   W230GPS01012    2\n"},
      {{.kind = Kind::tesk, .screenMark = '\n'}, "TESKS   W222GRD0000    \n"}};
  for (const auto& [header, record] : cases) EXPECT_EQ(formatHeader1(header), record);
}

TEST(DataRecord, HasTheStatedBytesAtBothLengths) {
  struct Row {
    std::string shortRecord, longRecord, formatted;
  };
  for (const int length : {kShort, kLong}) {
    const std::vector<Row> rows{
        {"H 030709Alo0010.00     \n", "H 030709Alo0010.00       \n",
         formatHeader2(length, "030709Alonger", "0010.00")},
        {"H A.B           12     \n", "H A.B           12       \n", formatHeader2(length, "A.B", "     12")},
        {"LNorth sh              \n", "LNorth sh                \n", formatLineName(length, "North shore")},
        {"L?hrental              \n", "L?hrental                \n",
         formatLineName(length, "\xC3\x84hrental 1")},
        {"B     -12.35           \n", "B     -12.35             \n", formatStartStation(length, -12.346)},
        {"B12345678901           \n", "B12345678901             \n",
         formatStartStation(length, 12345678901.25)},
        {"B       0.00           \n", "B       0.00             \n",
         formatStartStation(length, std::numeric_limits<double>::quiet_NaN())},
        {"AE            2.500    \n", "AE            2.500      \n", formatDirection(length, 3, 2.5)},
        {"AW           -1.000    \n", "AW           -1.000      \n", formatDirection(length, -1, -1.0)},
        {"Z07032024 09:05:04     \n", "Z07032024 09:05:04       \n", formatDate(length, kMorning)},
        {"*09:05:04.089        42\n", "*09:05:04.089          42\n", formatTimeMark(length, kMorning, 42)},
        {"S      10.50 09050408  \n", "S      10.50 09050408    \n", formatStation(length, 10.5, kMorning)},
        {"CFence cross 4294967295\n", "CFence cross   4294967295\n",
         formatNote(length, tag::kComment, "Fence crossing", 4294967295U)},
        {"C                     7\n", "C                       7\n",
         formatNote(length, tag::kComment, "", 7)},
        {"X$CONN END         1234\n", "X$CONN END           1234\n",
         formatNote(length, tag::kEvent, "$CONN END  ", 1234)}};
    for (const auto& row : rows)
      EXPECT_EQ(row.formatted, length == kShort ? row.shortRecord : row.longRecord);
  }
}

TEST(ReadingRecord, KeepsTheInstrumentsBytes) {
  EXPECT_EQ(formatReading(kShort, "TH+0123-0456 ", 99), "TH+0123-0456         99\n");
  EXPECT_EQ(formatReading(kShort, "TH+0123", 99), "TH+0123              99\n");
  const std::string binary("t\x06\n\0\xFF\x80\x01\x02\x03\x04\x05\x06\x07\x08", 14);
  EXPECT_EQ(formatReading(kLong, binary, 2147483648U), binary + " 2147483648\n");
}

TEST(CalibrationRecord, HoldsTheNewAndTheReplacedFactor) {
  EXPECT_EQ(formatCalibration(26, 6, -12.3456, 0.5), "O6   -12.346      0.500  \n");
}

TEST(GpsSentence, IsCutIntoRecords) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"$GPGSV*53", "@$GPGSV*53             \n#$GPGSV*53             \n!                  5000\n"},
      {"$GPAAA,12345678,ABC*00",
       "@$GPAAA,12345678,ABC*00\n#                      \n!                  5000\n"},
      {"$GPAAA,12345678,ABCDEF*00",
       "@$GPAAA,12345678,ABCDEF\n#*00                   \n!                  5000\n"},
      {"$GPAAA,12345678,ABCDEF,87654321,GHIJKLMN*000",
       "@$GPAAA,12345678,ABCDEF\n#,87654321,GHIJKLMN*000\n"
       "#                      \n!                  5000\n"},
      {"", "@                      \n#                      \n!                  5000\n"},
      {"$GP\r\n\xC3\xBC", "@$GP????               \n#$GP????               \n!                  5000\n"}};
  for (const auto& [sentence, records] : cases) {
    EXPECT_EQ(formatGpsSentence(kShort, sentence, 5000, '@', '#'), records);
  }
}

TEST(GpsSentence, Tesk2HasChunksOfTwentyFour) {
  EXPECT_EQ(formatGpsSentence(kLong, "no sentence of a receiver", 1, '?', '"'),
            "?no sentence of a receive\n\"r                       \n!                       1\n");
}

struct StationCase {
  Kind kind;
  int surveyMode, listA, listB, expected;
};

TEST(ReadingsPerStation, FollowKindAndLists) {
  for (const auto& [kind, mode, listA, listB, expected] :
       {StationCase{Kind::orla, 2, 0, 2, 2}, StationCase{Kind::orla, 2, 0, 1, 1},
        StationCase{Kind::orla, 0, 0, 2, 1}, StationCase{Kind::teskb, 2, 0, 2, 2},
        StationCase{Kind::tesk2, 2, 1, 2, 2}, StationCase{Kind::tesk2, 1, 0, 2, 1},
        StationCase{Kind::teskdd, 2, 0, 0, 2}, StationCase{Kind::teskdd, 2, 1, 2, 1},
        StationCase{Kind::tesk, 2, 0, 2, 4}, StationCase{Kind::tesk, 2, 1, 2, 2},
        StationCase{Kind::tesk, 2, 2, 2, 2}, StationCase{Kind::tesk, 2, 0, 0, 1},
        StationCase{Kind::vardo, 2, 0, 5, 6}, StationCase{Kind::vardo, 2, 0, 9, 1},
        StationCase{Kind::vardo, 1, 0, 5, 1}, StationCase{Kind::mirka, 2, 0, 2, 1},
        StationCase{Kind::glaco, 2, 0, 2, 1}}) {
    EXPECT_EQ(readingsPerStationOf(kind, mode, listA, listB), expected)
        << instrumentOf(kind).name << " mode " << mode << " lists " << listA << ' ' << listB;
  }
}

}  // namespace
}  // namespace kalmira
