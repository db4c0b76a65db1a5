#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>

#include "end_to_end/programs.h"

namespace kalmira {
namespace {

struct Stream {
  const char* test;
  std::string kind, simulator, logger;
  bool killed = false;
  std::string tag = "?";  // of sentences that must be there
};

void PrintTo(const Stream& stream, std::ostream* out) { *out << stream.test; }

class Simulated : public testing::TestWithParam<Stream> {};

// Every record that gets into the file stays whole, whatever its bytes were on the line and however it ends.
TEST_P(Simulated, GivesWholeRecordsOnly) {
  const auto& stream = GetParam();
  const std::size_t length = stream.kind == "TESK2" ? 26 : 24;
  const TempFolder folder;
  Program sim(KALMIRA_SIM, "--seconds 100 --kind " + stream.kind + ' ' + stream.simulator);
  const auto instrument = sim.nextLine("instrument ").substr(11);
  Logger logger(stream.kind, instrument, folder.path(),
                "--gps " + sim.nextLine("gps ").substr(4) + ' ' + stream.logger);
  const auto path = logger.file();
  if (stream.killed) {
    ASSERT_EQ(logger.answer("go"), "ok");
    ASSERT_TRUE(logger.counted("readings", 60));
    logger.signal(SIGKILL);
  }
  ASSERT_EQ(logger.end(), stream.killed ? 128 + SIGKILL : 0) << logger.errors();
  const auto content = readFile(path);
  ASSERT_EQ(content.size() % length, 0U);
  for (auto at = length; at <= content.size(); at += length) ASSERT_EQ(content[at - 1], '\n') << at;
  const int readings = countRecords(content, length, "Tt");
  // A loaded machine may start late.
  EXPECT_GE(readings, 5);
  EXPECT_EQ(countRecords(content, length, "!"), countRecords(content, length, "@?"));
  EXPECT_EQ(countRecords(content, length, stream.tag) > 0, !stream.tag.empty());
  if (stream.tag == "@") {
    EXPECT_EQ(countRecords(content, length, "?"), 0);
    EXPECT_LE(readings, 12) << "two seconds at five readings a second";
  }
  const auto table = run(KALMIRA_EXPORT, path);
  EXPECT_EQ(table.status, 0) << table.errors;
  EXPECT_EQ(std::count(table.output.begin(), table.output.end(), '\n'), readings + 1);
}

const std::string kWheel = "--set surveyMode=1 --set readingsInterval=60";
const std::string kNoise = "--rate 100 --noise 0.05 --gps-rate 20 --bad-checksum 0.2";

// One kind a framing.
INSTANTIATE_TEST_SUITE_P(Streams, Simulated,
                         testing::Values(Stream{"Clean", "ORLA", "--gps-rate 10",
                                                "--seconds 2 --set readingsInterval=0.2", false, "@"},
                                         Stream{"NoisyAscii", "MIRKA", kNoise, "--seconds 1 " + kWheel},
                                         Stream{"NoisyIce", "GLACO", kNoise, "--seconds 1 " + kWheel},
                                         Stream{"NoisyTesk2", "TESK2", kNoise, "--seconds 1 " + kWheel},
                                         Stream{"Killed", "TESK2", "--rate 200", kWheel, true, ""}),
                         [](const auto& row) { return row.param.test; });

}  // namespace
}  // namespace kalmira
