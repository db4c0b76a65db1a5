#include <gmock/gmock.h>

#include "datafile/record_text.h"
#include "end_to_end/programs.h"

namespace kalmira {
namespace {

constexpr std::string_view kGga = "$GPGGA,101308.00,5057.90,N,00659.10,E,1,08,1.1,50.0,M,46.0,M,,*5D\r\n";
constexpr std::string_view kLaterGga =
    "$GPGGA,101310.00,5057.91,N,00659.10,E,2,09,1.0,50.0,M,46.0,M,,*56\r\n";
constexpr std::string_view kGsa = "$GPGSA,A,3,10,07,05,02,29,04,08,13,,,,,1.72,1.03,1.38*0A\r\n";

// The records of each, 22 bytes a piece.
const std::string kTick = withTick(24, "!");
const std::string kGgaRecords =
    records24({"@$GPGGA,101308.00,5057.", "#90,N,00659.10,E,1,08,1", "#.1,50.0,M,46.0,M,,*5D", kTick});
const std::string kLaterGgaRecords =
    records24({"@$GPGGA,101310.00,5057.", "#91,N,00659.10,E,2,09,1", "#.0,50.0,M,46.0,M,,*56", kTick});
const std::string kGsaRecords =
    records24({"@$GPGSA,A,3,10,07,05,02", "#,29,04,08,13,,,,,1.72,", "#1.03,1.38*0A", kTick});

struct Survey {
  TempFolder folder;
  Device instrument;
  Device receiver;
  Logger logger;
  std::filesystem::path path;

  explicit Survey(std::vector<std::string> settings)
      : logger("ORLA", instrument.name, folder.path(), [&] {
          settings.insert(settings.end(), {"--gps", receiver.name, "--show", "--set", "readingsInterval=60"});
          return settings;
        }()) {
    path = logger.file();
    instrument.wakeUp(logger, "T$+0400-0800\r", "value1 C:-10.00");
    // A receiver is heard once its fix is shown.
    receiver.wakeUp(logger, kGsa, "pdop");
  }
  void position(std::string_view sentence, std::string_view satellites) {
    EXPECT_TRUE(receiver.send(sentence));
    logger.nextLine(std::string("show satellites ") + std::string(satellites));
  }
  std::string afterStart() {
    EXPECT_EQ(logger.answer("exit"), "ok");
    EXPECT_EQ(logger.end(), 0);
    const auto content = wiped(readFile(path), 24);
    EXPECT_EQ(content.substr(8, 7), "W230GPS");
    return content.substr(std::min(content.size(), content.find("X$STARTED") + 24));
  }
};

TEST(Gps, WritesEverySentenceAsItComesOutsideManualMode) {
  Survey survey({"--set", "surveyMode=1"});
  ASSERT_EQ(survey.logger.answer("go"), "ok");
  ASSERT_TRUE(survey.receiver.send(kGga));
  ASSERT_TRUE(survey.logger.counted("gps", 1));
  ASSERT_TRUE(survey.instrument.send("T$+0400-0800\r"));
  ASSERT_TRUE(survey.logger.counted("readings", 1));
  // A wrong checksum, none, text of another kind, a short sentence that is right, and a line that never seems
  // to end: its buffer of 201 bytes is begun anew again and again, 182 bytes are left of it.
  ASSERT_TRUE(
      survey.receiver.send("$GPGSA,A,3*00\r\n$GPRMC,101309.00,A,5057.90,N\r\nhello Jo\xFF\r\n$A*41\r\n"));
  ASSERT_TRUE(survey.receiver.send("$" + std::string(4000, 'x') + "\r\n"));
  ASSERT_TRUE(survey.logger.counted("gps", 6));
  const std::string chunk(22, 'x');
  std::string endless = records24({"?" + chunk});
  for (int i = 1; i < 8; ++i) endless += records24({"\"" + chunk});
  EXPECT_EQ(survey.afterStart(), kGgaRecords +
                                     records24({withTick(24, "T$+0400-0800"),                  //
                                                "?$GPGSA,A,3*00", "\"$GPGSA,A,3*00", kTick,    //
                                                "?$GPRMC,101309.00,A,505", "\"7.90,N", kTick,  //
                                                "?hello Jo?", "\"hello Jo?", kTick,            //
                                                "@$A*41", "#$A*41", kTick}) +
                                     endless + records24({"\"xxxxxx", kTick, withTick(24, "X$PAUSED")}));
}

// Two readings a station, one press of the trigger each; positions are kept for the readings they belong to.
TEST(Gps, WritesOnePositionAReadingInManualMode) {
  Survey survey({"--set", "surveyMode=2", "--set", "surveyListB=2"});
  ASSERT_EQ(survey.logger.answer("go"), "ok");
  survey.position(kGga, " 8");
  const auto send = [&](std::string_view record) { ASSERT_TRUE(survey.instrument.send(record)); };
  for (const auto* record : {"T$+0001-0800\r", "Td+0002-0800\r", "Td+0003-0800\r"}) send(record);
  ASSERT_TRUE(survey.logger.counted("readings", 1));
  survey.position(kGga, " 8");
  survey.position(kLaterGga, " 9");
  for (const auto* record : {"T$+0004-0800\r", "Td+0005-0800\r", "T$+0006-0800\r"}) send(record);
  ASSERT_TRUE(survey.logger.counted("readings", 2));
  ASSERT_TRUE(survey.receiver.send(kGsa));
  ASSERT_TRUE(survey.logger.counted("gps", 4));
  EXPECT_EQ(survey.afterStart(), kGgaRecords + kGsaRecords +
                                     records24({withTick(24, "Td+0002-0800"), withTick(24, "2d+0005-0800")}) +
                                     kLaterGgaRecords + kGsaRecords + records24({withTick(24, "X$PAUSED")}));
  const auto table = run({KALMIRA_EXPORT, survey.path});
  EXPECT_THAT(table.output, testing::ContainsRegex("\n1,0.000,1,.*,V,1,100,-0.05000,,2.00000,\n1,0.000,2,"));
}

TEST(Gps, PortThatCannotBeOpenedIsToldAndTheSurveyGoesOn) {
  const TempFolder folder;
  const Device instrument;
  Logger logger("ORLA", instrument.name, folder.path(), {"--gps", folder.path() / "none"});
  const auto path = logger.file();
  EXPECT_EQ(logger.answer("exit"), "ok");
  EXPECT_EQ(logger.end(), 0);
  EXPECT_TRUE(
      logger.errors().starts_with("Cannot open GPS port\nThere is no device " + folder.path().string()))
      << logger.errors();
}

}  // namespace
}  // namespace kalmira
