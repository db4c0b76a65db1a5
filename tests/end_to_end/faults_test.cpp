#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

#include "datafile/record_text.h"
#include "end_to_end/programs.h"

namespace kalmira {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
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
  writeFile(root + "/plain", "no port");
  fails("TESKDD", root + "/none", "Cannot open TESKD port\nThere is no device " + root + "/none");
  fails("TESK2", root + "/plain", "Cannot open TESK2 port\n" + root + "/plain is a file, not a serial port");
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

TEST(LargeFile, CanBeLeftAtAnyTimeAndLeavesNothingBehind) {
  const TempFolder folder;
  const auto file = folder.path() / "a.ROR", out = folder.path() / "out";
  // Enough rows that a table has begun, and then more zeros than anybody waits for.
  std::string records = records24({"ORLA2   W230GRD0000"});
  for (int i = 0; i < 5000; ++i) records += records24({"T$-0400+0800      83150"});
  writeFile(file, records);
  std::filesystem::resize_file(file, 10'000'000'000);
  for (const auto& [program, option] : {std::pair{KALMIRA_CHECK, " --repair "}, {KALMIRA_EXPORT, " -o "}}) {
    Program writing(program, file.string() + option + out.string());
    for (int waited = 0; waited < kPatienceMs && !std::filesystem::exists(out.string() + ".new"); waited += 10) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    writing.signal(SIGINT);
    EXPECT_EQ(writing.end(), 1);
    EXPECT_THAT(writing.output() + writing.errors(), HasSubstr("was read up to byte "));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    // What has nothing to tidy up ends by the signal itself.
    Program reading(program, file.string());
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    reading.signal(SIGINT);
    EXPECT_EQ(reading.end(), 128 + SIGINT);
  }
}

TEST(Usage, IsToldByEveryProgram) {
  using Case = std::array<std::string, 3>;
  for (const auto& [program, mistake, behind] :
       {Case{KALMIRA_LOG, "--kind is missing", "kalmira-log --help shows the usage\n"},
        Case{KALMIRA_SIM, "--kind is missing", "usage: kalmira-sim --kind NAME|0..7 [options]\n"},
        Case{KALMIRA_CHECK, "no data file was named",
             "kalmira-check: usage: kalmira-check FILE...\n       kalmira-check FILE --repair OUT\n"},
        Case{KALMIRA_EXPORT, "no data file was named",
             "kalmira-export: usage: kalmira-export FILE... [-o OUT] [--tesk-x10]\n"}}) {
    const auto name = std::filesystem::path(program).filename().string();
    const auto wrong = run(program);
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.output, "");
    EXPECT_THAT(wrong.errors, StartsWith(name + ": " + mistake + "\n" + behind));
    const auto help = run(program, "--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, StartsWith("usage: " + name + ' '));
    EXPECT_THAT(run(program, "--version").output, testing::MatchesRegex(name + " [0-9.]+\n"));
    EXPECT_NE(std::system((program + " --help > /dev/full 2> /dev/null").c_str()), 0);
  }
}

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
