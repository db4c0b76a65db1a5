#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>

#include "datafile/record_text.h"
#include "end_to_end/programs.h"

namespace kalmira {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

struct Recording : Survey {
  explicit Recording(const std::string& more = "") : Survey("ORLA", more) { EXPECT_EQ(logger.answer("go"), "ok"); }
  bool readings(int from, int to) {
    for (int i = from; i <= to; ++i) EXPECT_TRUE(send(fmt::format("T${:+05d}-0800\r", i)));
    return logger.counted("readings", to);
  }
};

std::string readingRecords(int from, int to) {
  std::string out;
  for (int i = from; i <= to; ++i) out += records24({withTick(24, fmt::format("T${:+05d}-0800", i))});
  return out;
}

const std::string kStarted = records24({withTick(24, "X$STARTED")});
const std::string kPaused = records24({withTick(24, "X$PAUSED")});

TEST(Signal, LosesNoRecordAndPausesBeforeTheEndWhereItCan) {
  for (const int number : {SIGKILL, SIGTERM, SIGINT}) {
    const bool killed = number == SIGKILL;
    Recording survey;
    ASSERT_TRUE(survey.readings(1, 25));
    survey.logger.signal(number);
    EXPECT_EQ(survey.logger.end(), killed ? 128 + SIGKILL : 0);
    EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 25) + (killed ? "" : kPaused)));
    EXPECT_EQ(survey.logger.output().ends_with("summary readings=25 gps=0 events=2 bytes=816\n"), !killed);
  }
}

// Asked after six silent periods, and answered no.
TEST(Silence, EndsTheSurveyWithStatusOneWhenToldSo) {
  Recording survey("--set readingsInterval=1 --on-silence exit");
  ASSERT_TRUE(survey.readings(1, 1));
  for (const auto* line : {"Please Wait...", "No Connection/Instrument OFF", "answered NO"})
    survey.logger.nextLine(std::string("notice ") + line);
  EXPECT_EQ(survey.logger.end(), 1);
  EXPECT_THAT(survey.content(),
              EndsWith(readingRecords(1, 1) + records24({withTick(24, "X$CONN BREAK"), withTick(24, "X$CONN END")})));
}

// How large a file a running program may make.
void limitFiles(const Logger& logger, rlim_t bytes) {
  rlimit limit{};
  ASSERT_EQ(::prlimit(logger.process(), RLIMIT_FSIZE, nullptr, &limit), 0);
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  ASSERT_EQ(::prlimit(logger.process(), RLIMIT_FSIZE, &limit, nullptr), 0);
}

TEST(FullDisk, KeepsTheRecordsUntilThereIsRoomOrSavesThemElsewhere) {
  for (const bool roomAgain : {true, false}) {
    Recording survey;
    ASSERT_TRUE(survey.readings(1, 2));
    // Room for three records and ten bytes.
    limitFiles(survey.logger, std::filesystem::file_size(survey.path) + 82);
    for (int i = 3; i <= 7; ++i) ASSERT_TRUE(survey.send(fmt::format("T${:+05d}-0800\r", i)));
    survey.logger.nextLine("notice Disk full");
    ASSERT_TRUE(survey.logger.counted("readings", 7));
    EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 5)));
    const auto rest = survey.folder.path() / (survey.path.filename().string() + ".REST");
    if (roomAgain) {
      limitFiles(survey.logger, RLIM_INFINITY);
      ASSERT_TRUE(survey.readings(8, 8));
      survey.logger.leave();
      EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 8) + kPaused));
      EXPECT_FALSE(std::filesystem::exists(rest));
    } else {
      survey.logger.leave();
      EXPECT_THAT(survey.logger.output(), HasSubstr("They were saved as " + rest.string()));
      // Put together they are the survey.
      EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 5)));
      const auto saved = wiped(std::string(24, ' ') + readFile(rest), 24).substr(24);
      EXPECT_EQ(saved, readingRecords(6, 7) + kPaused);
    }
  }
}

TEST(Start, FailsWithTheKindsTextAndTheReasonBehindIt) {
  const TempFolder folder;
  const Device device;
  const auto root = folder.path().string();
  const auto fails = [&](const char* kind, const std::string& port, const std::string& errors, const char* more = "") {
    Logger logger(kind, port, folder.path(), more);
    EXPECT_EQ(logger.end(), 1) << errors;
    EXPECT_THAT(logger.errors(), StartsWith(errors));
    EXPECT_EQ(logger.output().find("file "), std::string::npos);
  };
  fails("TESKDD", root + "/none", "Cannot open TESKD port\nThere is no device " + root + "/none");
  fails("GLACO", root, "Cannot open GLACO port\n" + root + " is a folder");
  fails("MIRKA", "/dev/null", "Cannot open MIRKA port\n/dev/null is a file, not a serial port");
  fails("ORLA", device.name, "Same Port Assigned\n", ("--gps " + device.name).c_str());
  fails("TESK", device.name, "Instrument OFF or Disconnected\n");
  const auto mine = folder.path() / "Storage/DATAORLA/MINE.ROR";
  writeFile(mine, "a day's work");
  fails("ORLA", device.name, "The file already exisits. Please enter another name\n", "--name MINE");
  EXPECT_EQ(readFile(mine), "a day's work");
  {
    // A receiver that is not there is told, and the survey goes on; the end of the commands ends it.
    Logger first("ORLA", device.name, folder.path(), "--gps /dev/kalmira-none");
    EXPECT_FALSE(first.file().empty());
    fails("TESKB", device.name,
          fmt::format("Cannot open TESKB port\n{} is held by kalmira-log (process {})", device.name, first.process()));
    first.closeInput();
    EXPECT_EQ(first.end(), 0);
    EXPECT_THAT(first.errors(), StartsWith("Cannot open GPS port\nThere is no device /dev/kalmira-none"));
  }
  std::filesystem::remove_all(folder.path() / "Storage");
  writeFile(folder.path() / "Storage", "in the way");
  fails("VARDO", device.name, "File not created. Potential disk problem.");
}

struct Stream {
  const char* kind;
  bool killed = false;
};
void PrintTo(const Stream& stream, std::ostream* out) { *out << stream.kind << stream.killed; }
class Simulated : public testing::TestWithParam<Stream> {};

// Every record that gets into the file stays whole, whatever its bytes were on the line and however it ends.
TEST_P(Simulated, GivesWholeRecordsOnly) {
  const auto& stream = GetParam();
  const std::size_t length = stream.kind == std::string("TESK2") ? 26 : 24;
  const TempFolder folder;
  Program sim(KALMIRA_SIM,
              std::string("--seconds 100 --kind ") + stream.kind +
                  (stream.killed ? " --rate 200" : " --rate 100 --noise 0.05 --gps-rate 20 --bad-checksum 0.2"));
  const auto instrument = sim.nextLine("instrument ").substr(11);
  Logger logger(stream.kind, instrument, folder.path(),
                "--set surveyMode=1 --set readingsInterval=60 --gps " + sim.nextLine("gps ").substr(4) +
                    (stream.killed ? "" : " --seconds 1"));
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
  EXPECT_GE(readings, 5) << "a loaded machine may start late";
  EXPECT_EQ(countRecords(content, length, "!"), countRecords(content, length, "@?"));
  EXPECT_EQ(countRecords(content, length, "?") > 0, !stream.killed);
  const auto table = run(KALMIRA_EXPORT, path);
  EXPECT_EQ(table.status, 0) << table.errors;
  EXPECT_EQ(std::count(table.output.begin(), table.output.end(), '\n'), readings + 1);
}

// One kind a framing.
INSTANTIATE_TEST_SUITE_P(Streams, Simulated,
                         testing::Values(Stream{"MIRKA"}, Stream{"GLACO"}, Stream{"TESK2"}, Stream{"TESK2", true}),
                         [](const auto& row) {
                           return row.param.kind + std::string(row.param.killed ? "Killed" : "");
                         });

}  // namespace
}  // namespace kalmira
