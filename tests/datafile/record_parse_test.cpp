#include "datafile/record_parse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "datafile/line_block.h"
#include "datafile/record_text.h"

namespace kalmira {
namespace {

using testing::Optional;

TEST(RecordType, IsToldByTheTag) {
  using enum RecordType;
  for (const auto& [text, type] :
       std::initializer_list<std::pair<std::string_view, RecordType>>{{"H X", header2},
                                                                      {"L1", lineName},
                                                                      {"B 1", startStation},
                                                                      {"AN", direction},
                                                                      {"Z", date},
                                                                      {"O1", calibration},
                                                                      {"*", timeMark},
                                                                      {"S", station},
                                                                      {"T!", reading},
                                                                      {"t!", reading},
                                                                      {"2!", reading},
                                                                      {"6!", reading},
                                                                      {"1!", unknown},
                                                                      {"7!", unknown},
                                                                      {"C", comment},
                                                                      {"X$PAUSED", event},
                                                                      {"@$GPGGA", gpsFirst},
                                                                      {"#,", gpsMore},
                                                                      {"?noise", textFirst},
                                                                      {"\"n", textMore},
                                                                      {"!", gpsTick},
                                                                      {"TESKB   W222GRD", header1},
                                                                      {"ORLA2   W230GPS", header1},
                                                                      {"ORLA2   W231GPS", calibration}}) {
    EXPECT_EQ(recordTypeOf(records24({text})), type) << text;
  }
  EXPECT_EQ(recordTypeOf(""), unknown);
  EXPECT_EQ(recordTypeOf(std::string(24, '\0')), unknown);
}

TEST(ParseHeader1, GivesBackWhatWasWritten) {
  for (const Header1& header : {Header1{.shortInstrument = true,
                               .gps = true,
                               .iceOption = true,
                               .lengthUnits = 1,
                               .listB = 2,
                               .surveyMode = 2,
                               .listA = 1,
                               .iceQuantity = 1,
                               .seaWaterChoice = 10,
                               .screenMark = '3'},
                                Header1{.kind = Kind::tesk2,
                                .listB = 2,
                                .surveyMode = 1,
                                .listA = 1,
                                .tesk2Variant = 2,
                                .screenMark = '2'},
                                Header1{.kind = Kind::vardo, .listB = 5}}) {
    const auto record = formatHeader1(header);
    const auto parsed = parseHeader1(record);
    ASSERT_TRUE(parsed.has_value()) << record;
    EXPECT_EQ(formatHeader1(*parsed), record);
    EXPECT_EQ(parsed->seaWaterChoice, header.seaWaterChoice);
    EXPECT_EQ(parsed->listA, header.listA);
  }
}

TEST(ParseHeader1, TakesColumnsThatAreNoDigitsAsZero) {
  const auto header = parseHeader1("ORLA2  iW230GRD??x-;Q  \n");
  ASSERT_TRUE(header.has_value());
  EXPECT_EQ(formatHeader1(*header), "ORLA2  iW230GRD000000  \n");
}

TEST(ParseNumbers, RefuseWhatIsNone) {
  EXPECT_THAT(parseStation("B     -12.35           \n"), Optional(-12.35));
  EXPECT_EQ(parseStation("B                      \n"), std::nullopt);
  EXPECT_EQ(parseStation("B        nan           \n"), std::nullopt);
  EXPECT_EQ(parseStation("S    12.5x             \n"), std::nullopt);
  EXPECT_EQ(parseStation("B\n"), std::nullopt);

  const auto direction = parseDirection("AE            2.500    \n");
  ASSERT_TRUE(direction.has_value());
  EXPECT_EQ(direction->letter, 'E');
  EXPECT_EQ(direction->increment, 2.5);
  EXPECT_EQ(parseDirection("AE\n"), std::nullopt);

  const auto calibration = parseCalibration("O6   -12.346      0.500  \n");
  ASSERT_TRUE(calibration.has_value());
  EXPECT_EQ(calibration->channel, 6);
  EXPECT_EQ(calibration->factor, -12.346);
  EXPECT_EQ(calibration->replaced, 0.5);
  EXPECT_EQ(parseCalibration("O7     1.000      0.000  \n"), std::nullopt);
  EXPECT_EQ(parseCalibration("O0     1.000      0.000  \n"), std::nullopt);
}

TEST(ParseTick, TakesAll32Bits) {
  EXPECT_THAT(parseTick("TH+0001+0002 4294967295\n"), Optional(4294967295U));
  EXPECT_THAT(parseTick("TH+0001+0002         -1\n"), Optional(4294967295U));  // of a signed counter
  EXPECT_EQ(parseTick("TH+0001+0002 4294967296\n"), std::nullopt);
  EXPECT_EQ(parseTick("TH+0001+0002       1 2 \n"), std::nullopt);
  EXPECT_EQ(parseTick("TH+0001+0002           \n"), std::nullopt);
}

TEST(ParseTimes, RefuseImpossibleOnes) {
  const auto date = parseDate("Z29022024 23:59:58     \n");
  ASSERT_TRUE(date.has_value());
  EXPECT_EQ(date->day, 29);
  EXPECT_EQ(date->second, 58);
  EXPECT_EQ(parseDate("Z29022023 23:59:58     \n"), std::nullopt);  // no leap year
  EXPECT_EQ(parseDate("Z00012023 23:59:58     \n"), std::nullopt);
  EXPECT_EQ(parseDate("Z01012023 24:00:00     \n"), std::nullopt);
  EXPECT_EQ(parseDate("Z01012023 23.59.58     \n"), std::nullopt);

  const auto mark = parseTimeMark("*10:13:07.250        42\n");
  ASSERT_TRUE(mark.has_value());
  EXPECT_EQ(mark->timeOfDayMs, 36787250U);
  EXPECT_EQ(mark->tick, 42U);
  EXPECT_EQ(parseTimeMark("*10:13:07,250        42\n"), std::nullopt);
  EXPECT_EQ(parseTimeMark("*10:13:07.250          \n"), std::nullopt);
}

TEST(ParseTexts, LeavePaddingBehind) {
  EXPECT_EQ(parseLineName("LA b                   \n"), "A b");
  EXPECT_EQ(parseNote("CFence cross         42\n"), "Fence cross");
  EXPECT_EQ(parseNote("X$PAUSED             42\n"), "$PAUSED");
  EXPECT_EQ(parseLineName("L\n"), "");
}

TEST(SentenceAssembler, GivesBackSentencesOfEveryLength) {
  for (const int recordLength : {24, 26}) {
    for (std::size_t length = 1; length < 80; ++length) {
      std::string sentence;
      for (std::size_t i = 0; i < length; ++i) sentence += static_cast<char>('!' + (i * 7) % 90);
      const auto bytes = formatGpsSentence(recordLength, sentence, 77, '@', '#');
      SentenceAssembler assembler;
      std::optional<SentenceAssembler::Sentence> got;
      const auto step = static_cast<std::size_t>(recordLength);
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

TEST(SentenceAssembler, DropsASentenceWithoutItsBeginning) {
  SentenceAssembler assembler;
  EXPECT_EQ(assembler.feed("#*00                   \n"), std::nullopt);
  EXPECT_EQ(assembler.feed("!                  5000\n"), std::nullopt);
}

TEST(SurveyPosition, AdvancesByReadingNotByRepeat) {
  SurveyPosition position;
  struct Step {
    std::string_view record;
    std::optional<double> station;
  };
  for (const auto& [record, station] : {
           Step{"T", std::nullopt},  // before any line
           Step{"L1", std::nullopt},
           Step{"B      10.00", 10.0},
           Step{"AN           -0.100", 10.0},
           Step{"T", 10.0},
           Step{"2", 10.0},
           Step{"t", 9.9},
           Step{"3", 9.9},
           Step{"CNote", 9.9},
           Step{"T", 9.8},
           Step{"S       0.50 10101010", 0.5},
           Step{"2", 0.5},  // a repeat of the station before: the first reading here all the same
           Step{"T", 0.4},
           Step{"S       ?.?? 10101010", std::nullopt},
           Step{"T", std::nullopt},
           Step{"L2", std::nullopt},
           Step{"B      50.00", 50.0},  // its direction record is damaged: no increment is known
           Step{"T", 50.0},
           Step{"T", std::nullopt},
       }) {
    position.take(records24({record}));
    EXPECT_EQ(position.station(), station) << record;
  }
  EXPECT_EQ(position.lineName(), "2");
}

}  // namespace
}  // namespace kalmira
