#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text.h"

// The command line of a program as a table: what parses it also writes its usage and its help.
namespace kalmira {

// Takes one value. Returns an empty text, or what is wrong with the value.
using TakeValue = std::function<std::string(const std::string& value)>;

struct CommandOption {
  enum class Again { lastCounts, allCount, refused };

  std::string_view name;         // "--kind", "-o"
  std::string_view placeholder;  // of its value; empty: a flag, taken with an empty value
  std::string text;              // what it does
  TakeValue take;
  std::string_view wants = {};  // "a path": what is said of a missing or wrong value names it; empty: it does not
  Again again = Again::lastCounts;
  // What a shell offers as its value, without blanks and quotes. One that ends in "=" or "[" is gone on with.
  std::vector<std::string> choices = {};
};

// Options under one heading of the help.
struct CommandGroup {
  std::string_view heading;
  std::vector<CommandOption> options;
};

// What a program says of an argument that fits nothing in its table: fmt patterns.
struct CommandWording {
  std::string_view unknown = "\"{0}\" is no option";  // {0} the argument, {1} the name in it, without dashes
  std::string_view missing = "{0} needs a value";     // {0} the option's name
  std::string_view unexpected = unknown;              // of a flag with a value: {0} the argument, {1} the option's name
  enum class Then { hint, usage, help } then = Then::hint;  // what is shown below a mistake
};

// One program. The functions in it write where they were told to when the table was made.
struct CommandLine {
  std::string_view program;
  std::string_view summary;              // a sentence or two
  std::vector<std::string_view> usages;  // the arguments of each form it is called in
  std::vector<CommandGroup> groups;      // -h, --help and --version come by themselves
  // Positional arguments; without a take function there are none, and "--" is no argument either.
  CommandOption operands = {};
  // What is wrong between the options; empty: nothing.
  std::function<std::string()> check = {};
  std::string_view notes = {};  // whole lines, the last of the help
  CommandWording wording = {};
  std::string_view commit = {};  // that the program was built from; empty: not known
};

// Takes the arguments, without the program's name: "--name VALUE" or "--name=VALUE"; where there are operands,
// "--" ends the options. Nothing: the program is to run. Else what it prints and ends with: status 0 and a text for
// standard output, or 2, wrong usage, and one for standard error that tells the first mistake. Help or the version
// asked for anywhere goes before mistakes. "--manual FORM" alone is answered with that file (manual.h), for the build.
struct LineAnswer {
  int status = 0;
  std::string text;
};
std::optional<LineAnswer> takeCommandLine(const CommandLine& line, std::span<const std::string> arguments);

// Of the whole project: "0.1.0".
std::string_view programVersion();

// The lines that `program --help` begins with, and all of them.
std::string usageText(const CommandLine& line);
std::string helpText(const CommandLine& line);
// As the help shows them: the operands' group first, --help and --version (without a take function) last.
std::vector<CommandGroup> shownGroups(const CommandLine& line);
std::string shownText(const CommandOption& option);

// The whole of a program's main: missing streams, command line, the run, an exception that nobody caught. Returns the
// exit status: that of `run`, 0 or 2 as above, 1 for what could not be printed and for an exception.
int runMain(const CommandLine& line, int argc, const char* const* argv, const std::function<int()>& run);

// Take functions, each with what it says of a wrong value.
TakeValue takeFlag(bool& target);
template <class Target>
TakeValue takeText(Target& target, std::string_view whenEmpty = "a value is missing") {
  return [&target, whenEmpty](const std::string& value) {
    target = value;
    return std::string(value.empty() ? whenEmpty : std::string_view());
  };
}
// A number in the C locale from `least` to `most`.
template <class Number, class Target>
TakeValue takeNumber(Target& target, Number least, Number most, std::string_view whenWrong = "out of range") {
  return [=, &target](const std::string& value) {
    const auto number = wholeNumber<Number>(value);
    if (!number || !(*number >= least && *number <= most)) return std::string(whenWrong);
    target = *number;
    return std::string{};
  };
}
// One of the two words that the placeholder "first|second" names.
template <class Target, class Choice>
CommandOption eitherOption(std::string_view name, std::string_view placeholder, std::string_view text, Target& target,
                           Choice first, Choice second) {
  const std::string one(placeholder.substr(0, placeholder.find('|')));
  const std::string other(placeholder.substr(one.size() + 1));
  const auto take = [=, &target](const std::string& value) {
    if (value != one && value != other) return std::string(name) + " is " + one + " or " + other;
    target = value == one ? first : second;
    return std::string{};
  };
  return {.name = name, .placeholder = placeholder, .text = std::string(text), .take = take, .choices = {one, other}};
}

// Opens the null device for every standard stream that the program was started without, so that no port or data file
// gets its number. First thing in main.
void openMissingStreams();

// Prints a line on standard error. Where that cannot be written to, nothing happens: a message nobody can read must not
// end a survey.
void printError(std::string_view line);

}  // namespace kalmira
