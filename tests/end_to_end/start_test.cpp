#include <fmt/format.h>
#include <gmock/gmock.h>

#include "end_to_end/programs.h"

namespace kalmira {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Start : testing::Test {
  TempFolder folder;
  Device device;

  // Starts a logger that is expected to end by itself, in failure.
  void fails(const std::string& kind, const std::string& port, const std::string& errors,
             const std::string& more = "") {
    Logger logger(kind, port, folder.path(), more);
    EXPECT_EQ(logger.end(), 1) << errors;
    EXPECT_THAT(logger.errors(), StartsWith(errors));
    EXPECT_EQ(logger.output().find("file "), std::string::npos);
  }
};

TEST_F(Start, FailsWithTheKindsTextAndTheReasonBehindIt) {
  const auto missing = (folder.path() / "ttyNone").string();
  const auto plain = (folder.path() / "plain").string();
  const auto mine = folder.path() / "Storage/DATAORLA/MINE.ROR";
  writeFile(plain, "no port");
  fails("ORLA", missing, "Cannot open ORLA port\nThere is no device " + missing);
  fails("TESKDD", missing, "Cannot open TESKD port\nThere is no device " + missing);
  fails("TESK2", plain, "Cannot open TESK2 port\n" + plain + " is a file, not a serial port");
  fails("GLACO", folder.path(), "Cannot open GLACO port\n" + folder.path().string() + " is a folder");
  fails("MIRKA", "/dev/null", "Cannot open MIRKA port\n/dev/null is a file, not a serial port");
  fails("ORLA", device.name, "Same Port Assigned\n", "--gps " + device.name);
  fails("TESK", device.name, "Instrument OFF or Disconnected\n");
  writeFile(mine, "a day's work");
  fails("ORLA", device.name, "The file already exisits. Please enter another name\n", "--name MINE");
  EXPECT_EQ(readFile(mine), "a day's work");
  std::filesystem::remove_all(folder.path() / "Storage");
  writeFile(folder.path() / "Storage", "in the way");
  fails("VARDO", device.name,
        "File not created. Potential disk problem. Try different folder and check files often. Press OK,wait "
        "for program end and restart.\n");
}

TEST_F(Start, TakesAPortForItselfAlone) {
  Logger first("ORLA", device.name, folder.path());
  ASSERT_FALSE(first.file().empty());
  fails("TESKB", device.name,
        fmt::format("Cannot open TESKB port\n{} is held by kalmira-log (process {}): end that program\n", device.name,
                    first.process()));
  // Once it is free again, it can be had.
  first.leave();
  Logger third("TESKB", device.name, folder.path());
  EXPECT_FALSE(third.file().empty());
}

TEST_F(Start, RefusesRecordsOfAnotherLengthFromATesk) {
  Logger logger("TESK", device.name, folder.path());
  logger.closeInput();
  std::string records;
  for (int i = 0; i < 400; ++i) records += "T$+010+00\r";
  ASSERT_TRUE(device.send(records));
  EXPECT_EQ(logger.end(), 1);
  EXPECT_EQ(logger.errors(), "Instrument OFF or Disconnected\n");
}

TEST_F(Start, GivesTwoFilesOfAnHourTwoLetters) {
  std::vector<std::string> names;
  for (int i = 0; i < 2; ++i) {
    Logger logger("ORLA", device.name, folder.path());
    names.push_back(logger.file().filename());
    logger.leave();
  }
  EXPECT_THAT(names[0], testing::MatchesRegex("[01][0-9][0-3][0-9][0-2][0-9]A\\.ROR"));
  // Unless the hour has just changed.
  const bool sameHour = names[0].substr(0, 6) == names[1].substr(0, 6);
  EXPECT_EQ(names[1].substr(6), sameHour ? "B.ROR" : "A.ROR");
}

TEST(Usage, IsToldByEveryProgram) {
  using Case = std::array<std::string, 3>;
  for (const auto& [program, mistake, behind] :
       {Case{KALMIRA_LOG, "--kind is missing", "kalmira-log --help shows the usage\n"},
        Case{KALMIRA_SIM, "--kind is missing", "usage: kalmira-sim --kind NAME|0..7 [options]\n"},
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

}  // namespace
}  // namespace kalmira
