#include "platform/command_line.h"

#include <fmt/format.h>

#include <stdexcept>

#include "support/command_line_case.h"

namespace kalmira {
namespace {

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
        .check = [this] { return std::string(flag && text == "x" ? "not together" : ""); }};
  }
};

TEST(CommandLine, TakesWhatTheTableHoldsAndTellsTheFirstMistake) {
  const auto version = fmt::format("prog {}\n", programVersion());
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
