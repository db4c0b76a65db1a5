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
using testing::Not;

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

TEST(Kill, LosesNoRecord) {
  Recording survey;
  ASSERT_TRUE(survey.readings(1, 25));
  survey.logger.signal(SIGKILL);
  EXPECT_EQ(survey.logger.end(), 128 + SIGKILL);
  EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 25)));
  EXPECT_THAT(run(KALMIRA_EXPORT, survey.path).output, EndsWith(",V,0,100,-0.62500,,2.00000,\n"));
}

TEST(Terminate, PausesClosesAndEnds) {
  for (const int number : {SIGTERM, SIGINT}) {
    Recording survey;
    ASSERT_TRUE(survey.readings(1, 2));
    survey.logger.signal(number);
    EXPECT_EQ(survey.logger.end(), 0);
    EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 2) + kPaused));
    EXPECT_THAT(survey.logger.output(), EndsWith("summary readings=2 gps=0 events=2 bytes=264\n"));
  }
}

// The periods are of two seconds: five of them leave time enough on a slow machine.
TEST(PulledCable, ResumesWithoutAQuestion) {
  const TempFolder folder;
  const auto link = folder.path() / "port";
  auto cable = std::make_unique<Device>();
  std::filesystem::create_symlink(cable->name, link);
  Logger logger("ORLA", link, folder.path(), "--show --set surveyMode=1 --set readingsInterval=2");
  const auto path = logger.file();
  cable->wakeUp(logger, kOrlaRecord, "value1 C:-10.00");
  ASSERT_EQ(logger.answer("go"), "ok");
  const auto sendAgain = [&] { ASSERT_TRUE(cable->send(kOrlaRecord)); };
  ASSERT_TRUE(logger.counted("readings", 1, sendAgain));

  cable->unplug();
  logger.nextLine("notice Please Wait...");
  cable = std::make_unique<Device>();
  std::filesystem::remove(link);
  std::filesystem::create_symlink(cable->name, link);
  ASSERT_TRUE(logger.counted("readings", countRecords(readFile(path), 24, "T") + 2, sendAgain));
  logger.leave();
  EXPECT_THAT(logger.output(), Not(HasSubstr("notice No Connection")));
  const auto content = wiped(readFile(path), 24);
  EXPECT_EQ(countRecords(content, 24, "X"), 3);
  EXPECT_THAT(content, HasSubstr("\n" + withTick(24, "X$CONN BREAK") + "\nT$"));
}

// What the operator is asked after six silent periods, line by line.
TEST(Silence, EndsTheSurveyWhenToldSo) {
  Recording survey("--set readingsInterval=1 --on-silence exit");
  ASSERT_TRUE(survey.readings(1, 1));
  for (const auto* line : {"Please Wait...", "No Connection/Instrument OFF", "Fix the problem and", "press YES to try.",
                           "Press NO to exit Logging Mode.", "answered NO"}) {
    survey.logger.nextLine(std::string("notice ") + line);
  }
  EXPECT_EQ(survey.logger.end(), 1);
  EXPECT_THAT(survey.content(),
              EndsWith(readingRecords(1, 1) + records24({withTick(24, "X$CONN BREAK"), withTick(24, "X$CONN END")})));
  EXPECT_THAT(survey.logger.output(), EndsWith("summary readings=1 gps=0 events=3 bytes=264\n"));
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

}  // namespace
}  // namespace kalmira
