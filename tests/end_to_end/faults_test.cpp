#include <fmt/format.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>

#include "datafile/record_text.h"
#include "end_to_end/programs.h"

namespace kalmira {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

const std::string kRecord = "T$+0400-0800\r";

// A survey in Wheel mode, recording: every record is a reading.
struct Recording {
  TempFolder folder;
  Device device;
  Logger logger;
  std::filesystem::path path;

  explicit Recording(std::vector<std::string> more)
      : logger("ORLA", device.name, folder.path(), [&] {
          more.insert(more.end(), {"--show", "--set", "surveyMode=1"});
          return more;
        }()) {
    path = logger.file();
    device.wakeUp(logger, kRecord, "value1 C:-10.00");
    EXPECT_EQ(logger.answer("go"), "ok");
  }
  bool readings(int from, int to) {
    for (int i = from; i <= to; ++i) EXPECT_TRUE(device.send(fmt::format("T${:+05d}-0800\r", i)));
    return logger.counted("readings", to);
  }
  std::string content() { return wiped(readFile(path), 24); }
};

std::string readingRecords(int from, int to) {
  std::string out;
  for (int i = from; i <= to; ++i) out += withTick(24, fmt::format("T${:+05d}-0800", i)) + '\n';
  return out;
}

const std::string kStarted = withTick(24, "X$STARTED") + '\n';
const std::string kPaused = withTick(24, "X$PAUSED") + '\n';

TEST(Kill, LosesNoRecord) {
  Recording survey({"--set", "readingsInterval=60"});
  ASSERT_TRUE(survey.readings(1, 25));
  survey.logger.signal(SIGKILL);
  EXPECT_EQ(survey.logger.end(), 128 + SIGKILL);
  EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 25)));
  const auto table = run({KALMIRA_EXPORT, survey.path});
  EXPECT_EQ(table.status, 0) << table.errors;
  EXPECT_THAT(table.output, EndsWith(",V,0,100,-0.62500,,2.00000,\n"));
}

TEST(Terminate, PausesClosesAndEnds) {
  const auto recorded = kStarted + readingRecords(1, 2) + kPaused;
  for (const int number : {SIGTERM, SIGINT}) {
    Recording survey({"--set", "readingsInterval=60"});
    ASSERT_TRUE(survey.readings(1, 2));
    survey.logger.signal(number);
    EXPECT_EQ(survey.logger.end(), 0);
    EXPECT_THAT(survey.content(), EndsWith(recorded));
    EXPECT_THAT(survey.logger.output(), EndsWith("summary readings=2 gps=0 events=2 bytes=264\n"));
  }
}

// The periods are of two seconds: five of them leave time enough on a slow machine.
TEST(PulledCable, ResumesWithoutAQuestion) {
  const TempFolder folder;
  const auto link = folder.path() / "port";
  auto cable = std::make_unique<Device>();
  std::filesystem::create_symlink(cable->name, link);
  Logger logger("ORLA", link, folder.path(),
                {"--show", "--set", "surveyMode=1", "--set", "readingsInterval=2"});
  const auto path = logger.file();
  cable->wakeUp(logger, kRecord, "value1 C:-10.00");
  ASSERT_EQ(logger.answer("go"), "ok");
  const auto sendAgain = [&] { ASSERT_TRUE(cable->send(kRecord)); };
  ASSERT_TRUE(logger.counted("readings", 1, sendAgain));

  cable->unplug();
  logger.nextLine("notice Please Wait...");
  cable = std::make_unique<Device>();
  std::filesystem::remove(link);
  std::filesystem::create_symlink(cable->name, link);
  const int before = countRecords(readFile(path), 24, "T");
  ASSERT_TRUE(logger.counted("readings", before + 2, sendAgain));
  ASSERT_EQ(logger.answer("exit"), "ok");
  EXPECT_EQ(logger.end(), 0);
  EXPECT_THAT(logger.output(), Not(HasSubstr("notice No Connection")));
  const auto content = wiped(readFile(path), 24);
  EXPECT_EQ(countRecords(content, 24, "X"), 3);
  EXPECT_THAT(content, HasSubstr("\n" + withTick(24, "X$CONN BREAK") + "\nT$"));
}

// What the operator is asked after six silent periods, line by line.
void expectQuestion(Logger& logger, std::string_view answer) {
  for (const auto* line :
       {"notice Please Wait...", "notice No Connection/Instrument OFF", "notice Fix the problem and",
        "notice press YES to try.", "notice Press NO to exit Logging Mode."}) {
    logger.nextLine(line);
  }
  logger.nextLine(answer);
}

TEST(Silence, EndsTheSurveyWhenToldSo) {
  Recording survey({"--on-silence", "exit"});
  ASSERT_TRUE(survey.readings(1, 1));
  expectQuestion(survey.logger, "notice answered NO");
  EXPECT_EQ(survey.logger.end(), 1);
  EXPECT_THAT(survey.content(), EndsWith(readingRecords(1, 1) + withTick(24, "X$CONN BREAK") + '\n' +
                                         withTick(24, "X$CONN END") + '\n'));
  EXPECT_THAT(survey.logger.output(), EndsWith("summary readings=1 gps=0 events=3 bytes=264\n"));
}

TEST(Silence, IsWaitedThroughOtherwise) {
  Recording survey({});
  expectQuestion(survey.logger, "notice answered YES");
  const auto again = [&] { ASSERT_TRUE(survey.device.send(kRecord)); };
  ASSERT_TRUE(survey.logger.counted("readings", 1, again));
  EXPECT_EQ(survey.logger.answer("exit"), "ok");
  EXPECT_EQ(survey.logger.end(), 0);
  EXPECT_THAT(survey.content(), EndsWith(kPaused));
}

// How large a file a running program may make.
void limitFiles(const Logger& logger, rlim_t bytes) {
  rlimit limit{};
  ASSERT_EQ(::prlimit(logger.process(), RLIMIT_FSIZE, nullptr, &limit), 0);
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  ASSERT_EQ(::prlimit(logger.process(), RLIMIT_FSIZE, &limit, nullptr), 0);
}

TEST(FullDisk, KeepsTheRecordsUntilThereIsRoom) {
  Recording survey({"--set", "readingsInterval=60"});
  ASSERT_TRUE(survey.readings(1, 2));
  const auto whole = std::filesystem::file_size(survey.path);
  limitFiles(survey.logger, whole + 82);  // room for three records and ten bytes
  ASSERT_TRUE(survey.readings(3, 7));
  EXPECT_TRUE(survey.logger.printed("\nnotice Disk full\n")) << survey.logger.output();
  EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 5)));
  limitFiles(survey.logger, RLIM_INFINITY);
  ASSERT_TRUE(survey.readings(8, 8));
  EXPECT_EQ(survey.logger.answer("exit"), "ok");
  EXPECT_EQ(survey.logger.end(), 0);
  EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 8) + kPaused));
  EXPECT_FALSE(std::filesystem::exists(survey.folder.path() / (survey.path.filename().string() + ".REST")));
}

TEST(FullDisk, SavesWhatFoundNoRoomElsewhere) {
  Recording survey({"--set", "readingsInterval=60"});
  ASSERT_TRUE(survey.readings(1, 1));
  limitFiles(survey.logger, std::filesystem::file_size(survey.path) + 30);
  ASSERT_TRUE(survey.readings(2, 4));
  EXPECT_EQ(survey.logger.answer("exit"), "ok");
  EXPECT_EQ(survey.logger.end(), 0);
  const auto rest = survey.folder.path() / (survey.path.filename().string() + ".REST");
  EXPECT_THAT(survey.logger.output(), HasSubstr("They were saved as " + rest.string()));
  const auto content = readFile(survey.path);
  EXPECT_EQ(content.size() % 24, 0U);
  // Put together they are the survey.
  const auto saved = wiped(std::string(24, ' ') + readFile(rest), 24).substr(24);
  EXPECT_THAT(wiped(content, 24), EndsWith(kStarted + readingRecords(1, 2)));
  EXPECT_EQ(saved, readingRecords(3, 4) + kPaused);
}

}  // namespace
}  // namespace kalmira
