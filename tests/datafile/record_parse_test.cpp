#include "datafile/record_parse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "datafile/line_block.h"
#include "datafile/record_text.h"

namespace kalmira {
namespace {

using testing::Optional;

TEST(ParseHeader1, TakesColumnsThatAreNoDigitsAsZero) {
  const auto header = parseHeader1("ORLA2  iW230GRD??x-;Q  \n");
  ASSERT_TRUE(header.has_value());
  EXPECT_EQ(formatHeader1(*header), "ORLA2  iW230GRD000000  \n");
}

TEST(ParseRecords, RefuseWhatIsNone) {
  EXPECT_THAT(parseStation("B     -12.35           \n"), Optional(-12.35));
  for (const auto* text :
       {"B                      \n", "B        nan           \n", "S    12.5x             \n", "B\n"}) {
    EXPECT_EQ(parseStation(text), std::nullopt) << text;
  }
  EXPECT_EQ(parseDirection("AE            2.500    \n").value().increment, 2.5);
  EXPECT_EQ(parseDirection("AE\n"), std::nullopt);
  const auto calibration = parseCalibration("O6   -12.346      0.500  \n").value();
  EXPECT_EQ(calibration.channel, 6);
  EXPECT_EQ(calibration.factor, -12.346);
  EXPECT_EQ(calibration.replaced, 0.5);
  EXPECT_EQ(parseCalibration("O7     1.000      0.000  \n"), std::nullopt);
  EXPECT_EQ(parseCalibration("O0     1.000      0.000  \n"), std::nullopt);

  EXPECT_THAT(parseTick("TH+0001+0002 4294967295\n"), Optional(4294967295U));
  EXPECT_THAT(parseTick("TH+0001+0002         -1\n"), Optional(4294967295U));  // of a signed counter
  for (const auto* text :
       {"TH+0001+0002 4294967296\n", "TH+0001+0002       1 2 \n", "TH+0001+0002           \n"}) {
    EXPECT_EQ(parseTick(text), std::nullopt) << text;
  }
  const auto date = parseDate("Z29022024 23:59:58     \n").value();
  EXPECT_EQ(date.day, 29);
  EXPECT_EQ(date.second, 58);
  for (const auto* text : {"Z29022023 23:59:58     \n", "Z00012023 23:59:58     \n",
                           "Z01012023 24:00:00     \n", "Z01012023 23.59.58     \n"}) {
    EXPECT_EQ(parseDate(text), std::nullopt) << text;
  }
  const auto mark = parseTimeMark("*10:13:07.250        42\n").value();
  EXPECT_EQ(mark.timeOfDayMs, 36787250U);
  EXPECT_EQ(mark.tick, 42U);
  EXPECT_EQ(parseTimeMark("*10:13:07,250        42\n"), std::nullopt);
  EXPECT_EQ(parseTimeMark("*10:13:07.250          \n"), std::nullopt);
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

TEST(SurveyPosition, AdvancesByReadingNotByRepeat) {
  SurveyPosition position;
  struct Step {
    std::string_view record;
    std::optional<double> station;
  };
  for (const auto& [record, station] :
       {Step{"T", std::nullopt},  // before any line
        Step{"L1", std::nullopt}, Step{"B      10.00", 10.0}, Step{"AN           -0.100", 10.0},
        Step{"T", 10.0}, Step{"2", 10.0}, Step{"t", 9.9}, Step{"3", 9.9}, Step{"CNote", 9.9}, Step{"T", 9.8},
        Step{"S       0.50 10101010", 0.5},
        Step{"2", 0.5},  // a repeat of the station before: the first reading here all the same
        Step{"T", 0.4}, Step{"S       ?.?? 10101010", std::nullopt}, Step{"T", std::nullopt},
        Step{"L2", std::nullopt},
        Step{"B      50.00", 50.0},  // its direction record is damaged: no increment is known
        Step{"T", 50.0}, Step{"T", std::nullopt}}) {
    position.take(records24({record}));
    EXPECT_EQ(position.station(), station) << record;
  }
  EXPECT_EQ(position.lineName(), "2");
}

}  // namespace
}  // namespace kalmira
