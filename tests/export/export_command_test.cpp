#include "export/export_command.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "datafile/record_text.h"
#include "support/command_line_case.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

struct ExportCommand : testing::Test {
  std::string path(const std::string& name) const { return (folder.path() / name).string(); }
  std::string file(const std::string& name, const std::string& bytes) const {
    writeFile(path(name), bytes);
    return path(name);
  }
  std::string content(const std::string& name) const { return readFile(path(name)); }
  // Messages are kept in said, with the folder taken out.
  int run(const std::vector<std::string>& arguments) {
    said.clear();
    const auto request = optionsOf(exportCommandLine, fmt::format("{}", fmt::join(arguments, " ")));
    const auto say = [&](std::string_view line) {
      if (line.starts_with(path(""))) line.remove_prefix(path("").size());
      said.emplace_back(line);
    };
    return runExport(request, say, [&](std::string_view name, std::uint64_t done, std::uint64_t total) {
      return goOn(name, done, total);
    });
  }

  TempFolder folder;
  std::vector<std::string> said;
  GoOn goOn = [](std::string_view, std::uint64_t, std::uint64_t) { return true; };
};

const std::string kWhole = records24({"MIRKA   W210GRD0000", "H A", "L1", "B       0.00", "AN            1.000",
                                      "Z08032024 10:00:00", "*10:00:00.000      1000", "T$-0004-0040       1500"});
const std::string kRow = "1,0.000,1,2024-03-08,10:00:00.500,1500,V,0,100,10.00000,10.00000\n";
const std::string kTable = "line,station,repeat,date,time,tick,dipole,marker,range,cond,inph\n" + kRow;

TEST_F(ExportCommand, SaysWhatWasWrongWithAFileAndGivesWhatItCan) {
  struct Case {
    std::string bytes;
    int status;
    std::string said;
  };
  const auto torn = "ends in the middle of a record; its last ";
  for (const auto& [bytes, status, wanted] :
       {Case{"", kExportFailed, "is empty; nothing exported"},
        Case{"MIRKA", kExportFailed, "is too short to be a data file; nothing exported"},
        Case{std::string(1000, '\0'), kExportFailed,
             "is no data file: no instrument's header stands at its start; nothing exported"},
        Case{kWhole + "T$-00", kExportDone, torn + "5 bytes were left out|x: 1 reading exported"s},
        Case{kWhole.substr(0, 191), kExportFailed, torn + "23 bytes were left out|x: 0 readings exported"s},
        Case{kWhole.substr(0, 20), kExportFailed,
             "the first record is damaged; its settings are taken as far as they can be read|x: 0 readings exported"},
        Case{kWhole.substr(0, 168), kExportDone, "holds no reading"},
        Case{kWhole + std::string(24, '\0'), kExportDone, "24 damaged bytes were left out|x: 1 reading exported"},
        Case{kWhole.substr(0, 144) + kWhole.substr(168), kExportDone,
             "1 reading without a time: no time mark before them, or no readable tick"}}) {
    EXPECT_EQ(run({file("x", bytes), "-o", path("t.csv")}), status);
    EXPECT_EQ(fmt::format("{}", fmt::join(said, "|")), "x: " + wanted);
  }
}

TEST_F(ExportCommand, JoinsFilesOfOneKindUnderOneHeaderAndGoesOnAfterABadOne) {
  EXPECT_EQ(run({path("none"), "-o", path("t.csv")}), kExportFailed);
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  const auto other = file("o.IOR", records24({"GLACO   W210GRD0000", "T100I001           1500"}));
  const auto whole = file("a.RMI", kWhole);
  EXPECT_EQ(run({path("none"), folder.path().string(), whole, other, whole, "-o", path("t.csv")}), kExportFailed);
  EXPECT_EQ(content("t.csv"), kTable + kRow);
  EXPECT_THAT(said, ElementsAre("none: cannot be opened: No such file or directory; nothing exported",
                                folder.path().string() + ": is a folder; nothing exported",
                                "o.IOR: has other columns than the files before it; export it by itself"));
}

TEST_F(ExportCommand, ReplacesAnEarlierTableButNeverADataFile) {
  const auto input = file("a.RMI", kWhole);
  file("t.csv", "an earlier table");
  EXPECT_EQ(run({input, "-o", path("t.csv")}), kExportDone);
  EXPECT_EQ(content("t.csv"), kTable);
  EXPECT_FALSE(std::filesystem::exists(path("t.csv.new")));

  const auto damaged = file("b.RMI", "\1\2\3");
  EXPECT_EQ(run({input, damaged, "-o", path("./b.RMI")}), kExportUsage);
  EXPECT_EQ(content("b.RMI"), "\1\2\3");
  EXPECT_EQ(run({input, "-o", file("c.RMI", kWhole + "more")}), kExportUsage);
  EXPECT_THAT(said, ElementsAre("c.RMI: is a data file, which is never overwritten"));
  EXPECT_EQ(content("c.RMI"), kWhole + "more");
}

TEST_F(ExportCommand, LeavesNothingBehindWhenItIsLeftAndTellsOfAFileThatIsCutMeanwhile) {
  std::string many;
  for (int i = 0; i < 20000; ++i) many += kWhole.substr(168);
  const auto input = file("a.RMI", kWhole + many);
  file("t.csv", "an earlier table");
  goOn = [](std::string_view name, std::uint64_t done, std::uint64_t total) {
    EXPECT_EQ(name, "a.RMI");
    EXPECT_EQ(total, 192 + 480000U);
    return done < 300000;
  };
  EXPECT_EQ(run({input, "-o", path("t.csv")}), kExportFailed);
  EXPECT_THAT(said, ElementsAre(testing::MatchesRegex("a.RMI: was read up to byte 3.* only; there is no table")));
  EXPECT_EQ(content("t.csv"), "an earlier table");
  EXPECT_FALSE(std::filesystem::exists(path("t.csv.new")));

  goOn = [&](std::string_view, std::uint64_t done, std::uint64_t) {
    if (done > 300000) std::filesystem::resize_file(input, 200000);
    return true;
  };
  EXPECT_EQ(run({input, "-o", path("t.csv")}), kExportDone);
  EXPECT_THAT(said.at(0), testing::StartsWith("a.RMI: has become shorter while it was read"));
}

TEST_F(ExportCommand, TellsThatTheTableCouldNotBeWritten) {
  const auto input = file("a.RMI", kWhole);
  for (const auto& [to, why] : {std::pair{std::string("/dev/full"), "No space left on device"},
                                {path("nowhere/t.csv"), "No such file or directory"},
                                {folder.path().string(), "Is a directory"}}) {
    EXPECT_EQ(run({input, "-o", to}), kExportFailed);
    EXPECT_THAT(said, ElementsAre(testing::EndsWith(fmt::format(": cannot be written: {}", why))));
  }
}

}  // namespace
}  // namespace kalmira
