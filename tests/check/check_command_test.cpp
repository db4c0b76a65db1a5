#include "check/check_command.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <random>

#include "datafile/record_format.h"
#include "datafile/record_text.h"
#include "support/command_line_case.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr std::string_view kGga = "$GPGGA,101308,5057.9,N,00659.1,E,2,08,1.0,50.0,M,,M,,*6D";

std::string sentence(std::string_view text, char first, char more) {
  return formatGpsSentence(24, text, 83300, first, more);
}
// Records of the sound file, by their places: four of the header and the line, then these.
const std::string kHeader = records24({"ORLA2   W230GPS0000   3"});
const std::string kHead =
    kHeader + records24({"H 030810A    2.000", "L12N", "B     100.00", "AN            2.500", "Z08032024 10:13:07",
                         "*10:13:07.250     81250", "X$STARTED         83100"});
const std::string kFirst = records24({"T$-0400+0800      83150"});
const std::string kPosition = sentence(kGga, '@', '#');  // four records: @ # # and the tick
const std::string kSecond = records24({"Td-0412+0796      83650"});
const std::string kEnd = records24({"X$PAUSED          83900"});
const std::string kSound = kHead + kFirst + kPosition + kSecond + kEnd;

struct CheckCommand : testing::Test {
  std::string path(const std::string& name) const { return (folder.path() / name).string(); }
  std::string content(const std::string& name) const { return readFile(path(name)); }
  // A file's report is in `printed`, messages in `said`.
  int run(const std::string& arguments) {
    printed.clear();
    said.clear();
    const auto request = optionsOf(checkCommandLine, arguments);
    const auto take = [](std::string& to) { return [&to](std::string_view text) { return to += text, true; }; };
    return runCheck(request, take(printed), take(said), goOn);
  }
  int repair(const std::string& bytes, const std::string& name = "a.ROR") {
    fs::remove(path("out"));
    writeFile(path(name), bytes);
    return run(path(name) + " --repair " + path("out"));
  }

  TempFolder folder;
  std::string printed, said;
  GoOn goOn = [](std::string_view, std::uint64_t, std::uint64_t) { return true; };
};

TEST_F(CheckCommand, SaysWhatASoundFileHolds) {
  const auto more = kFirst + kPosition + records24({"2$-0400+0800      83160"}) + sentence("$GPGSA,A,3*3E", '?', '"') +
                    sentence("noise", '?', '"') +
                    records24({"T$-0400+0800      88000", "X$CONN BREAK      89000", "T$-0400+0800      91500",
                               "X$PAUSED          92000", "LX", "B       5.00", "AS            1.000",
                               "Z08032024 23:59:59", "*00:00:00.500    101000", "X$STARTED        101100",
                               "t$-0400+0800     102000", "S       9.00 10140208", "T$-0400+0800     103000"});
  EXPECT_EQ(repair(kHead + more), kCheckSound);
  EXPECT_EQ(content("out"), kHead + more);
  EXPECT_EQ(printed, path("a.ROR") + "\n" + R"(  state: sound
  instrument: ORLA, with a GPS receiver
  settings: Auto, 2.000 readings a second, Display Cond./Inphase, Dipole Mode Vertical, metres
  size: 792 bytes, 33 sound records of 24
  lines: 2
  line: "12N", stations 100.00 to 105.00, 4 readings
  line: "X", stations 5.00 to 9.00, 2 readings
  readings: 6
  times: 2024-03-08 10:13:07.250 to 2024-03-09 00:00:02.500
  gaps: 1 pause, 1 broken connection, 1 unmarked silence
  gap: silence, 4.8 s, from 2024-03-08 10:13:09.160, byte 480, record 21
  gap: broken connection, 2.5 s, from 2024-03-08 10:13:15.000, byte 504, record 22
  gap: pause, 10.0 s, from 2024-03-08 10:13:18.000, byte 552, record 24
  end: without "$PAUSED", which is no damage: something ended the logger
  positions: 1 GGA sentence with a right checksum
  fix: 1 of quality 2 (DGPS)
  wrong checksums: 1
  other texts of the GPS port: 1
  repaired: )" + path("out") +
                         ", 33 records\n");
}

TEST_F(CheckCommand, SaysWhereAFileIsDamagedAndWritesWhatIsSoundOfIt) {
  struct Case {
    std::string bytes;
    std::string said;
    std::string repaired;
  };
  const auto without = [](std::size_t at, std::size_t count) { return std::string(kSound).erase(at, count); };
  const auto with = [](std::size_t at, const std::string& bytes) {
    return std::string(kSound).replace(at, bytes.size(), bytes);
  };
  const std::string zeros(48, '\0');
  const auto noPosition = kHead + kFirst + kSecond + kEnd;
  constexpr std::size_t kAt = 216;  // of the position, record 10
  const std::string lost = "of quality 2";
  for (const auto& [bytes, wanted, repaired] :
       {Case{kSound + "T$-00", "tear: byte 360, record 16, 5 bytes: a record that is not whole\n", kSound},
        Case{without(350, 10), "tear: byte 336, record 15, 14 bytes: a", kSound.substr(0, 336)},
        Case{kHead + kFirst + zeros + kSecond, "damage: byte 216, record 10, 48 bytes: no record\n",
             kHead + kFirst + kSecond},
        Case{without(200, 3), "damage: byte 192, record 9, 21 bytes: no record\n", kHead + kPosition + kSecond + kEnd},
        Case{with(kAt + 30, "\1\n"),
             "damage: byte 216, record 10, 24 bytes: a GPS sentence that is not whole\n  "
             "damage: byte 240, record 11, 24 bytes: no record\n  damage: byte 264, record 12, "
             "48 bytes: a GPS sentence that is not whole\n",
             noPosition},
        Case{without(kAt, 24), "damage: byte 216, record 10, 72 bytes: a GPS sentence that is not whole\n", noPosition},
        Case{without(kAt + 24, 24), "72 bytes: a GPS sentence that no longer fits its checksum\n", noPosition},
        Case{without(kAt + 72, 24), "72 bytes: a GPS sentence that is not whole\n", noPosition},
        Case{with(kAt + 40, "9"), "96 bytes: a GPS sentence that no longer fits its checksum\n", noPosition},
        Case{kHead + kFirst + kPosition.substr(0, 48), "48 bytes: a GPS sentence that is not whole\n", kHead + kFirst},
        // What stands behind a station depends on it: one that cannot be read stays.
        Case{with(80, "x"), "damage: byte 72, record 4, 24 bytes: a station that cannot be read\n", with(80, "x")},
        Case{with(210, "x"), "damage: byte 192, record 9, 24 bytes: a tick that cannot be read\n", with(210, "x")},
        // A first record that is damaged is made anew of what it still says.
        Case{with(21, "\1"), "header: damaged: the settings are taken as far as they can be read\n",
             records24({"ORLA2   W230GPS0000"}).substr(0, 22) + kSound.substr(22)},
        Case{with(23, "x"), "header: damaged: the settings are taken as far as they can be read\n", kSound}}) {
    SCOPED_TRACE(wanted);
    EXPECT_EQ(repair(bytes), kCheckDamaged);
    EXPECT_THAT(printed, AllOf(HasSubstr("  state: damaged, "), HasSubstr("  instrument: ORLA"), HasSubstr(wanted)));
    EXPECT_EQ(content("out"), repaired);
  }
}

TEST_F(CheckCommand, WritesAFileThatIsSoundWhateverWasDamaged) {
  std::mt19937 random(20241108);
  const auto upTo = [&random](std::size_t most) { return static_cast<std::size_t>(random() % (most + 1)); };
  std::string sound = kSound;
  for (int i = 0; i < 5; ++i) sound += kFirst + kPosition + sentence("short", '?', '"') + kSecond;
  for (int round = 0; round < 80; ++round) {
    auto bytes = sound;
    for (auto faults = upTo(3) + 1; faults > 0; --faults) {
      const auto at = upTo(bytes.size() - 1), count = upTo(60);
      const std::string with(upTo(1) * count, "\n\0@#!T"[upTo(5)]);
      bytes.replace(at, upTo(1) * count, with);
    }
    repair(bytes);
    if (!fs::exists(path("out"))) continue;  // nothing was left
    const auto repaired = content("out");
    repair(repaired);
    EXPECT_EQ(content("out"), repaired) << round;
    EXPECT_THAT(printed, AllOf(Not(HasSubstr("no record")), Not(HasSubstr("sentence that")), Not(HasSubstr("tear: "))));
  }
}

TEST_F(CheckCommand, TakesTheKindFromTheEndingWhereTheFirstPageIsGone) {
  const auto made = formatHeader1({.kind = Kind::orla});
  for (const auto& bytes : {std::string(192, '\0') + kSound.substr(192), kSound.substr(192), kSound.substr(180)}) {
    EXPECT_EQ(repair(bytes, "a.ror"), kCheckDamaged);
    EXPECT_THAT(printed,
                AllOf(HasSubstr("instrument: ORLA, by the ending of the name\n  header: missing"),
                      Not(HasSubstr("settings: ")), HasSubstr("readings: 2\n"), HasSubstr("header 1 was made anew")));
    EXPECT_EQ(content("out"), made + kSound.substr(192));
  }
  // Bytes before a header that is sound: it tells more than the ending does.
  EXPECT_EQ(repair("ab\n" + kSound), kCheckDamaged);
  EXPECT_EQ(content("out"), kSound);
  for (const auto& [bytes, name, wanted] :
       {std::tuple{std::string(1000, '\0'), "a.ROR", "nothing was written: there is no sound record"},
        {std::string(1000, '\0'), "a.doc", "no instrument's header stands at its start, and its ending names none"},
        {std::string(), "a.ROR", "error: is empty"},
        {kSecond, "a.ROR.REST", "error: has records without a header: check the data file that they belong to"}}) {
    EXPECT_EQ(repair(bytes, name), kCheckDamaged);
    EXPECT_THAT(printed, HasSubstr(wanted));
    EXPECT_FALSE(fs::exists(path("out")));
  }
}

TEST_F(CheckCommand, PutsRecordsThatFoundNoRoomAtTheEnd) {
  struct Case {
    std::string file, rest, rest2;
    int status;
    std::string said;
  };
  const auto middle = kFirst + kPosition.substr(0, 48);
  const std::string zeros(24, '\0');
  for (const auto& [file, rest, rest2, status, wanted] :
       {Case{kHead + middle, kPosition.substr(48) + kSecond, kEnd, kCheckDamaged,
             "rest: a.ROR.REST, 3 records that found no room in the file, 0 of them in it already\n"},
        Case{kHead + kFirst, kPosition + kSecond + kEnd, "", kCheckDamaged, "state: not complete\n"},
        Case{kHead + middle + "#,7", kPosition.substr(48) + kSecond + kEnd, "", kCheckDamaged, "tear: byte 264"},
        // After a medium that failed: the file ends with what the rest begins with, or with damage in its place.
        Case{kHead + kFirst + kPosition, kFirst + kPosition + kSecond, kPosition.substr(72) + kSecond + kEnd,
             kCheckDamaged, "6 records that found no room in the file, 5 of them in it already\n"},
        Case{kHead + zeros + kPosition.substr(0, 24) + zeros + kPosition.substr(48), kFirst + kPosition + kSecond, kEnd,
             kCheckDamaged, "6 records that found no room in the file, 3 of them in it already\n"},
        Case{kSound, kSecond + kEnd, "", kCheckSound, "  end: paused\n"}}) {
    SCOPED_TRACE(wanted);
    writeFile(path("a.ROR.REST"), rest);
    writeFile(path("a.ROR.REST2"), rest2);
    EXPECT_EQ(repair(file), status);
    EXPECT_THAT(printed, HasSubstr(wanted));
    EXPECT_EQ(content("out"), kSound);
  }
  // The same sentence comes twice: all but the first record of the rest would fit on what is there.
  writeFile(path("a.ROR.REST"), kPosition.substr(72) + kPosition + kSecond + kEnd);
  writeFile(path("a.ROR.REST2"), "");
  EXPECT_EQ(repair(kHead + kFirst + kPosition.substr(0, 72)), kCheckDamaged);
  EXPECT_EQ(content("out"), kHead + kFirst + kPosition + kPosition + kSecond + kEnd);

  fs::remove(path("a.ROR.REST"));
  fs::create_directory(path("a.ROR.REST"));
  EXPECT_EQ(repair(kSound), kCheckDamaged);
  EXPECT_THAT(printed, AllOf(HasSubstr("rest: a.ROR.REST is a folder"), HasSubstr("nothing was written: the rest")));
  EXPECT_FALSE(fs::exists(path("out")));
}

TEST_F(CheckCommand, OverwritesNothingAndLeavesNothingHalf) {
  writeFile(path("a.ROR"), kSound);
  fs::create_hard_link(path("a.ROR"), path("b"));
  fs::create_symlink(path("nowhere"), path("c"));
  for (const auto* out : {"a.ROR", "b", "c", "."}) {
    EXPECT_EQ(run(path("a.ROR") + " --repair " + path(out)), kCheckUsage) << out;
    EXPECT_THAT(said, HasSubstr("is there already, and is not overwritten"));
  }
  EXPECT_EQ(content("a.ROR"), kSound);
  EXPECT_EQ(run(path("a.ROR") + " --repair " + path("none/out")), kCheckDamaged);
  EXPECT_THAT(printed, HasSubstr("none/out cannot be written: No such file or directory\n"));
  {
    const SmallFiles full(100);
    EXPECT_EQ(run(path("a.ROR") + " --repair " + path("out")), kCheckDamaged);
    EXPECT_THAT(printed, HasSubstr("out cannot be written: File too large\n"));
  }
  // Left, cut or come to exist while it is read.
  std::string many = kSound;
  for (int i = 0; i < 20000; ++i) many += kSecond;
  const std::pair<std::function<bool()>, std::string> meanwhile[] = {
      {[] { return false; }, "nothing was written: the file cannot be read to its end"},
      {[&] { return fs::resize_file(path("a.ROR"), 200000), true; }, "error: has become shorter while it was read"},
      {[&] { return writeFile(path("out"), "mine"), true; }, "out has come to exist meanwhile"}};
  for (const auto& [happens, wanted] : meanwhile) {
    goOn = [&, happens = happens](std::string_view, std::uint64_t done, std::uint64_t) {
      return done < 300000 || happens();
    };
    EXPECT_EQ(repair(many), kCheckDamaged);
    EXPECT_THAT(printed, HasSubstr(wanted));
    EXPECT_EQ(fs::exists(path("out")) ? content("out") : "mine", "mine");
    EXPECT_FALSE(fs::exists(path("out.new")));
  }
}

TEST_F(CheckCommand, GoesOnBehindFilesThatCannotBeReadAndTellsWrongUsage) {
  writeFile(path("a.ROR"), kSound);
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(run(path("") + " " + path("none") + " " + path("pipe") + " /dev/zero " + path("a.ROR")), kCheckDamaged);
  EXPECT_EQ(printed.substr(0, printed.find("  state: sound")),
            fmt::format("{0}\n  state: unreadable\n  error: is a folder\n"
                        "{0}none\n  state: unreadable\n  error: cannot be opened: No such file or directory\n"
                        "{0}pipe\n  state: unreadable\n  error: is no regular file\n"
                        "/dev/zero\n  state: unreadable\n  error: is no regular file\n{0}a.ROR\n",
                        path("")));
  for (const auto& [arguments, wanted] : {std::pair{"", "no data file was named"},
                                          {"a b --repair c", "--repair works on one file"},
                                          {"a --repair", "--repair wants a file name"},
                                          {"a --repair b --repair c", "--repair was given twice"},
                                          {"a --mend b", "unknown option --mend"}}) {
    optionsOf(checkCommandLine, arguments, wanted);
  }
}

}  // namespace
}  // namespace kalmira
