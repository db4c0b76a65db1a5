#include <fmt/format.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>

#include "end_to_end/programs.h"

namespace kalmira {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

// The simulator and the devices it made.
struct Simulator : Program {
  std::string instrument, gps;

  explicit Simulator(const std::vector<std::string>& options)
      : Program([&] {
          std::vector<std::string> command{KALMIRA_SIM, "--seconds", "100"};
          command.insert(command.end(), options.begin(), options.end());
          return command;
        }()) {
    instrument = nextLine("instrument ").substr(11);
    gps = nextLine("gps ").substr(4);
  }
};

int lineCount(const std::string& text) {
  return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

TEST(Simulated, OrlaWithGpsIsLoggedForTheSecondsAskedFor) {
  const TempFolder folder;
  const Simulator sim({"--kind", "ORLA", "--gps-rate", "10"});
  Logger logger("ORLA", sim.instrument, folder.path(),
                {"--gps", sim.gps, "--seconds", "3", "--set", "readingsInterval=0.2"});
  const auto path = logger.file();
  ASSERT_EQ(logger.end(), 0) << logger.errors();
  const auto content = readFile(path);
  EXPECT_EQ(content.size() % 24, 0U);
  const int readings = countRecords(content, 24, "Tt");
  const int sentences = countRecords(content, 24, "@");
  EXPECT_THAT(logger.output(), EndsWith(fmt::format("summary readings={} gps={} events=2 bytes={}\n",
                                                    readings, sentences, content.size())));
  // Three seconds at five readings and ten sentences a second; a loaded machine may start late.
  EXPECT_GE(readings, 5);
  EXPECT_LE(readings, 17);
  EXPECT_GE(sentences, 10);
  EXPECT_EQ(countRecords(content, 24, "!"), sentences);
  EXPECT_EQ(countRecords(content, 24, "?"), 0);
  EXPECT_THAT(content, testing::AllOf(HasSubstr("@$GPGGA,"), HasSubstr("@$GPGSA,"), HasSubstr("@$GPRMC,")));
  const auto table = run({KALMIRA_EXPORT, path});
  EXPECT_EQ(table.status, 0) << table.errors;
  EXPECT_EQ(lineCount(table.output), readings + 1);
}

class NoisyLine : public testing::TestWithParam<const char*> {};

// Every record that gets into the file stays whole, whatever its bytes were on the line.
TEST_P(NoisyLine, GivesWholeRecordsOnly) {
  const TempFolder folder;
  const std::string kind = GetParam();
  const std::size_t length = kind == "TESK2" ? 26 : 24;
  const Simulator sim(
      {"--kind", kind, "--rate", "100", "--noise", "0.05", "--gps-rate", "20", "--bad-checksum", "0.2"});
  Logger logger(
      kind, sim.instrument, folder.path(),
      {"--gps", sim.gps, "--seconds", "2", "--set", "surveyMode=1", "--set", "readingsInterval=60"});
  const auto path = logger.file();
  ASSERT_EQ(logger.end(), 0) << logger.errors();
  const auto content = readFile(path);
  ASSERT_EQ(content.size() % length, 0U);
  for (auto at = length; at <= content.size(); at += length) ASSERT_EQ(content[at - 1], '\n') << at;
  const int readings = countRecords(content, length, "Tt");
  EXPECT_GT(readings, 20);
  EXPECT_GT(countRecords(content, length, "?"), 0);
  const auto table = run({KALMIRA_EXPORT, path});
  EXPECT_EQ(table.status, 0) << table.errors;
  EXPECT_EQ(lineCount(table.output), readings + 1);
}

// One kind a framing.
INSTANTIATE_TEST_SUITE_P(Framings, NoisyLine, testing::Values("MIRKA", "GLACO", "TESK2"),
                         [](const auto& row) { return std::string(row.param); });

TEST(Simulated, KilledInFullFlowLeavesAReadableFile) {
  const TempFolder folder;
  const Simulator sim({"--kind", "TESK2", "--rate", "200"});
  Logger logger("TESK2", sim.instrument, folder.path(),
                {"--set", "surveyMode=1", "--set", "readingsInterval=60", "--gps", sim.gps});
  const auto path = logger.file();
  ASSERT_EQ(logger.answer("go"), "ok");
  ASSERT_TRUE(logger.counted("readings", 60));
  logger.signal(SIGKILL);
  EXPECT_EQ(logger.end(), 128 + SIGKILL);
  const auto content = readFile(path);
  EXPECT_EQ(content.size() % 26, 0U);
  const int readings = countRecords(content, 26, "Tt");
  EXPECT_GE(readings, 60);
  const auto table = run({KALMIRA_EXPORT, path});
  EXPECT_EQ(table.status, 0) << table.errors;
  EXPECT_EQ(lineCount(table.output), readings + 1);
}

}  // namespace
}  // namespace kalmira
