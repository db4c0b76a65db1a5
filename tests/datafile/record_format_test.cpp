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

}  // namespace
}  // namespace kalmira
