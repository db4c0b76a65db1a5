#include "datafile/record_format.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <limits>

#include "datafile/reading_context.h"
#include "datafile/record_parse.h"
#include "datafile/record_text.h"

namespace kalmira {
namespace {

using testing::Optional;

constexpr LocalTime kMorning{
    .year = 2024, .month = 3, .day = 7, .hour = 9, .minute = 5, .second = 4, .millisecond = 89};

Header1 iceHeader(int quantity, int seaWater) {
  return {.kind = Kind::orla, .iceOption = true, .iceQuantity = quantity, .seaWaterChoice = seaWater};
}

TEST(Header1Record, HasTheKindsColumns) {
  for (const auto& [header, record] : std::initializer_list<std::pair<Header1, std::string>>{
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
           {{.kind = Kind::tesk, .screenMark = '\n'}, "TESKS   W222GRD0000    \n"}}) {
    EXPECT_EQ(formatHeader1(header), record);
  }
  // Columns that are no digits are zero.
  EXPECT_EQ(formatHeader1(parseHeader1("ORLA2  iW230GRD??x-;Q  \n").value()), "ORLA2  iW230GRD000000  \n");
}

TEST(DataRecord, HasTheStatedBytesAtBothLengths) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  const std::string binary("t\x06\n\0\xFF\x80\x01\x02\x03\x04\x05\x06\x07\x08", 14);
  struct Row {
    std::string text, tick, formatted;
  };
  for (const int length : {24, 26}) {
    for (const auto& [text, tick, formatted] : std::initializer_list<Row>{
             {"H 030709Alo0010.00", "", formatHeader2(length, "030709Alonger", "0010.00")},
             {"H A.B           12", "", formatHeader2(length, "A.B", "     12")},
             {"LNorth sh", "", formatLineName(length, "North shore")},
             {"L?hrental", "", formatLineName(length, "\xC3\x84hrental 1")},
             {"B     -12.35", "", formatStartStation(length, -12.346)},
             {"B12345678901", "", formatStartStation(length, 12345678901.25)},
             {"B       0.00", "", formatStartStation(length, kNan)},
             {"AE            2.500", "", formatDirection(length, 3, 2.5)},
             {"AW           -1.000", "", formatDirection(length, -1, -1.0)},
             {"Z07032024 09:05:04", "", formatDate(length, kMorning)},
             {"*09:05:04.089", "42", formatTimeMark(length, kMorning, 42)},
             {"S      10.50 09050408", "", formatStation(length, 10.5, kMorning)},
             {"CFence cross", "4294967295", formatNote(length, tag::kComment, "Fence crossing", 4294967295U)},
             {"C", "7", formatNote(length, tag::kComment, "", 7)},
             {"X$CONN END", "1234", formatNote(length, tag::kEvent, "$CONN END  ", 1234)},
             {"TH+0123-0456", "99", formatReading(length, "TH+0123-0456 ", 99)},
             {"TH+0123", "99", formatReading(length, "TH+0123", 99)}}) {
      const auto width = static_cast<std::size_t>(length);
      EXPECT_EQ(formatted, records(width, {tick.empty() ? text : fmt::format("{:{}}{:>10}", text, length - 11, tick)}));
    }
  }
  EXPECT_EQ(formatReading(26, binary, 2147483648U), binary + " 2147483648\n");
  EXPECT_EQ(formatCalibration(26, 6, -12.3456, 0.5), "O6   -12.346      0.500  \n");
}

TEST(GpsSentence, IsCutIntoRecords) {
  for (const auto& [sentence, bytes] : std::initializer_list<std::pair<std::string, std::string>>{
           {"$GPGSV*53", records24({"@$GPGSV*53", "#$GPGSV*53"})},
           {"$GPAAA,12345678,ABC*00", records24({"@$GPAAA,12345678,ABC*00", "#"})},
           {"$GPAAA,12345678,ABCDEF*00", records24({"@$GPAAA,12345678,ABCDEF", "#*00"})},
           {"$GPAAA,12345678,ABCDEF,87654321,GHIJKLMN*000",
            records24({"@$GPAAA,12345678,ABCDEF", "#,87654321,GHIJKLMN*000", "#"})},
           {"", records24({"@", "#"})},
           {"$GP\r\n\xC3\xBC", records24({"@$GP????", "#$GP????"})}}) {
    EXPECT_EQ(formatGpsSentence(24, sentence, 5000, '@', '#'), bytes + records24({"!                  5000"}));
  }
  EXPECT_EQ(formatGpsSentence(26, "no sentence of a receiver", 1, '?', '"'),
            records(26, {"?no sentence of a receive", "\"r", "!                       1"}));
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
  for (const auto* text :
       {"B                      \n", "B        nan           \n", "S    12.5x             \n", "B\n"})
    EXPECT_EQ(parseStation(text), std::nullopt) << text;
  EXPECT_EQ(parseDirection("AE            2.500    \n").value().increment, 2.5);
  EXPECT_EQ(parseDirection("AE\n"), std::nullopt);
  const auto calibration = parseCalibration("O6   -12.346      0.500  \n").value();
  EXPECT_EQ(calibration.channel, 6);
  EXPECT_EQ(calibration.factor, -12.346);
  EXPECT_EQ(calibration.replaced, 0.5);
  for (const auto* text : {"O7     1.000      0.000  \n", "O0     1.000      0.000  \n"})
    EXPECT_EQ(parseCalibration(text), std::nullopt);

  EXPECT_THAT(parseTick("TH+0001+0002 4294967295\n"), Optional(4294967295U));
  EXPECT_THAT(parseTick("TH+0001+0002         -1\n"), Optional(4294967295U));  // of a signed counter
  for (const auto* text : {"TH+0001+0002 4294967296\n", "TH+0001+0002       1 2 \n", "TH+0001+0002           \n"})
    EXPECT_EQ(parseTick(text), std::nullopt) << text;
  const auto date = parseDate("Z29022024 23:59:58     \n").value();
  EXPECT_EQ(date.day, 29);
  EXPECT_EQ(date.second, 58);
  for (const auto* text : {"Z29022023 23:59:58     \n", "Z00012023 23:59:58     \n", "Z01012023 24:00:00     \n",
                           "Z01012023 23.59.58     \n"})
    EXPECT_EQ(parseDate(text), std::nullopt) << text;
  const auto mark = parseTimeMark("*10:13:07.250        42\n").value();
  EXPECT_EQ(mark.timeOfDayMs, 36787250U);
  EXPECT_EQ(mark.tick, 42U);
  for (const auto* text : {"*10:13:07,250        42\n", "*10:13:07.250          \n"})
    EXPECT_EQ(parseTimeMark(text), std::nullopt) << text;
}

TEST(SentenceAssembler, GivesBackSentencesOfEveryLength) {
  for (const std::size_t step : {24U, 26U}) {
    for (std::size_t length = 1; length < 80; ++length) {
      std::string sentence;
      for (std::size_t i = 0; i < length; ++i) sentence += static_cast<char>('!' + (i * 7) % 90);
      const auto bytes = formatGpsSentence(static_cast<int>(step), sentence, 77, '@', '#');
      SentenceAssembler assembler;
      std::optional<SentenceAssembler::Sentence> got;
      for (std::size_t at = 0; at < bytes.size(); at += step) {
        ASSERT_FALSE(got.has_value());
        got = assembler.feed(std::string_view(bytes).substr(at, step));
      }
      ASSERT_TRUE(got.has_value()) << length;
      EXPECT_EQ(got->text, sentence);
      EXPECT_EQ(got->tick, 77U);
      EXPECT_TRUE(got->checksumRight);
    }
  }
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

}  // namespace
}  // namespace kalmira
