#include "platform/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <set>

#include "support/temp_folder.h"

namespace kalmira {
namespace {

namespace fs = std::filesystem;

std::set<fs::path> namesIn(const fs::path& folder) {
  std::set<fs::path> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename());
  return names;
}

TEST(OutputFile, LeavesTheOldFileOrTheNewOneAndNothingBeside) {
  const TempFolder folder;
  const auto path = folder.path() / "a";
  EXPECT_EQ(replaceFile(path, "old"), "");
  {
    OutputFile file(path);
    EXPECT_TRUE(file.write("thrown away") && file.write(std::string(200000, 'x')));
    EXPECT_EQ(namesIn(folder.path()), (std::set<fs::path>{"a", "a.new"}));
  }
  // What cannot be written whole, what cannot be renamed, and where no file can be made.
  {
    const SmallFiles full(100);
    EXPECT_EQ(replaceFile(path, std::string(101, 'x')), "File too large");
  }
  EXPECT_EQ(replaceFile(folder.path(), "x"), "Is a directory");
  EXPECT_EQ(replaceFile(path / "c", "x"), "Not a directory");
  EXPECT_EQ(namesIn(folder.path()), std::set<fs::path>{"a"});
  EXPECT_EQ(readFile(path), "old");
}

TEST(OutputFile, FollowsNoLinkLaidInItsWayAndKeepsPermissionsAndALinkToAFile) {
  const TempFolder folder;
  const auto path = folder.path() / "a";
  const auto target = folder.path() / "target";
  writeFile(target, "old");
  ::chmod(target.c_str(), 0662);
  fs::create_symlink("target", folder.path() / "a.new");
  EXPECT_EQ(replaceFile(path, "new"), "");
  EXPECT_EQ(readFile(target), "old");

  fs::remove(path);
  fs::create_symlink("target", path);
  EXPECT_EQ(replaceFile(path, "new"), "");
  EXPECT_TRUE(fs::is_symlink(path));
  EXPECT_EQ(readFile(target), "new");
  EXPECT_EQ(fs::status(target).permissions(), static_cast<fs::perms>(0662));
  // A link to nothing, and one to what is no file, give way; a table goes where the latter leads.
  for (const std::string to : {"nothing", "/dev/null"}) {
    fs::remove(path);
    fs::create_symlink(to, path);
    OutputFile table(path);
    EXPECT_TRUE(table.write("table") && table.finish());
    EXPECT_EQ(fs::is_symlink(path), to == "/dev/null");
    EXPECT_EQ(replaceFile(path, "new"), "");
    EXPECT_FALSE(fs::is_symlink(path));
  }
}

}  // namespace
}  // namespace kalmira
