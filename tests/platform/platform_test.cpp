#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <clocale>
#include <cmath>
#include <limits>
#include <locale>
#include <set>
#include <stdexcept>

#include "platform/command_line.h"
#include "platform/files.h"
#include "platform/text.h"
#include "support/command_line_case.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

namespace fs = std::filesystem;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(ParseInt, TakesTheNumberInFrontAndKeepsItInRange) {
  using Case = std::pair<std::string_view, int>;
  for (const auto& [text, value] :
       {Case{"", 0}, Case{"x", 0}, Case{"-", 0}, Case{"+-4", 0}, Case{"+17", 17}, Case{" \t-42km", -42}, Case{"7.9", 7},
        Case{"0x10", 0}, Case{"1.234", 1}, Case{"2147483648", 2147483647}, Case{"-99999999999", -2147483647 - 1}}) {
    EXPECT_EQ(parseInt(text), value) << '"' << text << '"';
  }
}

TEST(ParseReal, TakesTheNumberInFront) {
  using Case = std::pair<std::string_view, double>;
  for (const auto& [text, value] : {Case{"", 0}, Case{"A7", 0}, Case{" +2.5", 2.5}, Case{"-0012", -12}, Case{"1,5", 1},
                                    Case{"1.5e2mS", 150}, Case{".25", 0.25}, Case{"3e", 3}, Case{"-1e999", -kInfinity},
                                    Case{"1e999", kInfinity}, Case{"-1e-999", 0}, Case{"inf", kInfinity}}) {
    EXPECT_EQ(parseReal(text), value) << '"' << text << '"';
  }
  EXPECT_TRUE(std::isnan(parseReal("nan")));
}

TEST(ParseReal, GivesTheNearestDoubleOfAnyNumberOfDigits) {
  for (std::uint64_t number = 7; number < UINT64_MAX / 10; number = number * 3 + 1) {
    const auto digits = std::to_string(number);
    for (std::size_t at = 0; at <= digits.size(); ++at) {
      const auto text = '-' + digits.substr(0, at) + '.' + digits.substr(at);
      double nearest = 0;
      std::from_chars(text.data(), text.data() + text.size(), nearest);
      EXPECT_EQ(parseReal(text), nearest) << text;
      EXPECT_EQ(plainNumber(std::string_view(text).substr(1)), at == 0 ? std::nullopt : std::optional(-nearest))
          << text;
    }
  }
  for (const auto* text : {"", ".", "-1", "+1", " 1", "1 ", "1e5", "1.2.3", "nan"})
    EXPECT_EQ(plainNumber(text), std::nullopt) << text;
  EXPECT_TRUE(std::signbit(parseReal("-0.0")));
}

TEST(FixedField, NeverLeavesItsColumns) {
  struct Case {
    double value;
    int width, decimals;
    std::string_view text;
  };
  for (const auto& item :
       {Case{2.5, 7, 3, "  2.500"}, Case{-0.25, 5, 1, " -0.2"}, Case{12345.678, 7, 3, "12345.7"},
        Case{-123456.7, 7, 2, "-123457"}, Case{1234567.6, 7, 3, "1234568"}, Case{99999999.0, 7, 3, "9999999"},
        Case{-99999999.0, 7, 3, "-999999"}, Case{1e300, 11, 2, "99999999999"}, Case{-kInfinity, 4, 2, "-999"},
        Case{std::nan(""), 7, 2, "   0.00"}}) {
    EXPECT_EQ(fixedField(item.value, item.width, item.decimals), item.text) << item.value;
  }
}

TEST(Text, IsCutPaddedAndNarrowedByCharacters) {
  EXPECT_EQ(textField("abc", 5), "abc  ");
  EXPECT_EQ(textField("abcdef", 5), "abcde");
  // Two, three and four bytes; a control character; a lone continuation byte; a lead byte without its rest.
  EXPECT_EQ(narrow("\xC3\x84z \xE2\x82\xAC \xF0\x9F\x8C\x8D\t\x80\xE2\x82"), "?z ? ?????");
  EXPECT_EQ(firstCharacters("a\xC3\x84\xE2\x82\xAC\xF0\x9F\x8C\x8Dz", 4), "a\xC3\x84\xE2\x82\xAC\xF0\x9F\x8C\x8D");
  EXPECT_EQ(firstCharacters("\xE2\x82", 1), "\xE2");
  EXPECT_EQ(firstCharacters("ab", 9), "ab");
}

// Whatever the language of the desktop is: that of the library, and that of the system.
TEST(Text, NoLanguageChangesANumber) {
  class CommaPoint final : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const auto before = std::locale::global(std::locale(std::locale::classic(), new CommaPoint));
  const std::string systemBefore = std::setlocale(LC_ALL, nullptr);
  for (const char* name : {"C", "de_DE.UTF-8", "fi_FI.UTF-8"}) {
    if (std::setlocale(LC_ALL, name) == nullptr) continue;  // script/test sees to the second
    EXPECT_EQ(fixedField(1234567.5, 11, 2), " 1234567.50");
    EXPECT_EQ(parseReal("1234.5"), 1234.5);
  }
  std::setlocale(LC_ALL, systemBefore.c_str());
  std::locale::global(before);
}

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

using Again = CommandOption::Again;

// A program with an option of every sort.
struct Program {
  bool flag = false;
  std::string text, once, list;
  double number = 0;
  int choice = 0;

  CommandLine line() {
    const auto append = [this](const std::string& value) {
      list += value + ',';
      return std::string(value == "bad" ? "a bad one" : "");
    };
    return {
        .program = "prog",
        .summary = "Does things.",
        .usages = {"[options]", "--flag"},
        .groups = {{"One", {{"--flag", "", "a flag", takeFlag(flag)}, {"--text", "TEXT", "a text", takeText(text)}}},
                   {"Two",
                    {{"-o", "OUT", "a file", takeText(once), "a name", Again::refused},
                     {"--add", "X", "a list", append, "", Again::allCount},
                     {"--number", "N", "a number", takeNumber(number, 0.5, 8.0, "0.5 to 8")},
                     eitherOption("--choice", "one|two", "a choice", choice, 1, 2)}}},
        .operands = {"", "FILE...", "files", append},
        .check = [this] { return std::string(flag && text == "x" ? "not together" : ""); },
        .commit = "1a2b3c4+"};
  }
};

TEST(CommandLine, TakesWhatTheTableHoldsAndTellsTheFirstMistake) {
  const auto version = fmt::format("prog {} (1a2b3c4+)\n", programVersion());
  using Case = std::pair<std::string, std::string>;  // what is said; else "flag text once list number choice"
  for (const auto& [arguments, outcome] :
       {Case{"", "false    0 0"}, Case{"--flag --text --flag -o a=b --choice=two", "true --flag a=b  0 2"},
        Case{"--text=a=b --text c --add 1 --add=2", "false c  1,2, 0 0"},
        Case{"--number +1.5 --choice one", "false    1.5 1"}, Case{"x -o y -- --flag -", "false  y x,--flag,-, 0 0"},
        Case{"--number 1,5", "0.5 to 8"}, Case{"--number 0.49", "0.5 to 8"},
        Case{"--choice=", "--choice is one or two"}, Case{"--text=", "a value is missing"},
        Case{"--text", "--text needs a value"}, Case{"-o", "-o wants a name"}, Case{"-o a -o b", "-o was given twice"},
        Case{"--flag=1", "\"--flag=1\" is no option"}, Case{"--tex a --number 9", "\"--tex\" is no option"},
        Case{"bad", "a bad one"}, Case{"--flag --text x", "not together"}, Case{"--wrong --version", version}}) {
    Program program;
    const auto said = saidOf(program.line(), arguments);
    const auto& [flag, text, once, list, number, choice] = program;
    const auto taken = fmt::format("{} {} {} {} {} {}", flag, text, once, list, number, choice);
    EXPECT_EQ(said.empty() ? taken : said, outcome) << arguments;
  }
}

TEST(RunMain, GivesTheStatusAndTellsWhatNobodyCaught) {
  Program program;
  const std::array<const char*, 2> arguments{"prog", "--flag"};
  EXPECT_EQ(runMain(program.line(), 2, arguments.data(), [&] { return program.flag ? 5 : 6; }), 5);
  testing::internal::CaptureStderr();
  const auto fails = []() -> int { throw std::runtime_error("no memory"); };
  EXPECT_EQ(runMain(program.line(), 0, arguments.data(), fails), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "prog: no memory\n");
}

}  // namespace
}  // namespace kalmira
