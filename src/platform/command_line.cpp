#include "platform/command_line.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <set>
#include <system_error>

#include "platform/manual.h"

namespace kalmira {
namespace {

using Arguments = std::span<const std::string>;

std::string_view withoutDashes(std::string_view name) {
  const auto start = name.find_first_not_of('-');
  return start == std::string_view::npos ? name : name.substr(start);
}

std::string said(std::string_view pattern, std::string_view first, std::string_view second = {}) {
  return fmt::format(fmt::runtime(pattern), first, second);
}

const CommandOption* findOption(const CommandLine& line, std::string_view name) {
  for (const auto& group : line.groups) {
    for (const auto& option : group.options) {
      if (option.name == name) return &option;
    }
  }
  return nullptr;
}

// Takes the option at `at`, and moves `at` on to its value where that is an argument of its own.
std::string takeOption(const CommandLine& line, Arguments arguments, std::size_t& at,
                       std::set<const CommandOption*>& given) {
  const std::string& argument = arguments[at];
  const auto equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
  const auto name = argument.substr(0, equals);
  const auto* option = findOption(line, name);
  if (option == nullptr) return said(line.wording.unknown, argument, withoutDashes(name));
  std::string value;
  if (equals != std::string::npos) {
    if (option->placeholder.empty()) return said(line.wording.unexpected, argument, name);
    value = argument.substr(equals + 1);
  } else if (!option->placeholder.empty()) {
    if (at + 1 == arguments.size() && option->wants.empty()) return said(line.wording.missing, name);
    if (at + 1 == arguments.size()) return fmt::format("{} wants {}", name, option->wants);
    value = arguments[++at];
  }
  const bool again = !given.insert(option).second;
  if (again && option->again == CommandOption::Again::refused) return name + " was given twice";
  const auto problem = option->take(value);
  if (problem.empty() || option->wants.empty()) return problem;
  return fmt::format("{} wants {}, not \"{}\"", name, option->wants, value);
}

LineAnswer wrongUsage(const CommandLine& line, std::string_view mistake) {
  const auto text = fmt::format("{}: {}\n", line.program, mistake);
  switch (line.wording.then) {
    case CommandWording::Then::usage:
      return {.status = 2, .text = text + fmt::format("{}: {}", line.program, usageText(line))};
    case CommandWording::Then::help: return {.status = 2, .text = text + helpText(line) + '\n'};
    default: return {.status = 2, .text = text + fmt::format("{} --help shows the usage\n", line.program)};
  }
}

std::string optionHead(const CommandOption& option) {
  return fmt::format("{}{}{}", option.name, option.name.empty() || option.placeholder.empty() ? "" : " ",
                     option.placeholder);
}

}  // namespace

std::optional<LineAnswer> takeCommandLine(const CommandLine& line, Arguments arguments) {
  if (arguments.size() == 2 && arguments[0] == "--manual") {
    if (auto file = manualFile(line, arguments[1])) return LineAnswer{.text = *std::move(file)};
  }
  std::string mistake;
  std::set<const CommandOption*> given;
  const bool hasOperands = line.operands.take != nullptr;
  bool optionsOver = false;
  for (std::size_t at = 0; at < arguments.size(); ++at) {
    const std::string& argument = arguments[at];
    std::string problem;
    if (optionsOver || (hasOperands && !argument.starts_with('-'))) {
      problem = line.operands.take(argument);
    } else if (argument == "--help" || argument == "-h") {
      return LineAnswer{.text = helpText(line)};
    } else if (argument == "--version") {
      const auto commit = line.commit.empty() ? "" : fmt::format(" ({})", line.commit);
      return LineAnswer{.text = fmt::format("{} {}{}\n", line.program, programVersion(), commit)};
    } else if (hasOperands && argument == "--") {
      optionsOver = true;
    } else {
      problem = takeOption(line, arguments, at, given);
    }
    if (mistake.empty()) mistake = std::move(problem);
  }
  if (mistake.empty() && line.check) mistake = line.check();
  if (mistake.empty()) return std::nullopt;
  return wrongUsage(line, mistake);
}

std::string_view programVersion() { return KALMIRA_VERSION; }

std::string usageText(const CommandLine& line) {
  std::string text;
  for (const auto form : line.usages) {
    text += fmt::format("{} {} {}\n", text.empty() ? "usage:" : "      ", line.program, form);
  }
  return text;
}

std::vector<CommandGroup> shownGroups(const CommandLine& line) {
  auto groups = line.groups;
  if (line.operands.take) groups.insert(groups.begin(), {"Arguments", {line.operands}});
  groups.push_back({"Help", {{"-h, --help", "", "show this", {}}, {"--version", "", "print the version", {}}}});
  return groups;
}

std::string shownText(const CommandOption& option) {
  return option.text + (option.again == CommandOption::Again::allCount ? "; repeatable" : "");
}

std::string helpText(const CommandLine& line) {
  const auto groups = shownGroups(line);
  std::size_t width = 0;
  for (const auto& group : groups) {
    for (const auto& option : group.options) width = std::max(width, optionHead(option).size());
  }
  std::string text = usageText(line) + std::string(line.summary) + '\n';
  for (const auto& group : groups) {
    text += fmt::format("\n{}:\n", group.heading);
    for (const auto& option : group.options) {
      text += fmt::format("  {:<{}}  {}\n", optionHead(option), width, shownText(option));
    }
  }
  if (!line.notes.empty()) text += '\n' + std::string(line.notes);
  return text;
}

int runMain(const CommandLine& line, int argc, const char* const* argv, const std::function<int()>& run) {
  openMissingStreams();
  const auto fail = [&line](std::string_view problem) {
    printError(fmt::format("{}: {}", line.program, problem));
    return 1;
  };
  try {
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    const auto answer = takeCommandLine(line, arguments);
    if (!answer) return run();
    std::FILE* const stream = answer->status == 0 ? stdout : stderr;
    const bool printed = std::fputs(answer->text.c_str(), stream) >= 0 && std::fflush(stream) == 0;
    if (printed || answer->status != 0) return answer->status;
    return fail("standard output: cannot be written: " + std::generic_category().message(errno));
  } catch (const std::exception& failure) {
    return fail(failure.what());
  }
}

TakeValue takeFlag(bool& target) {
  return [&target](const std::string&) {
    target = true;
    return std::string{};
  };
}

void openMissingStreams() {
  // The lowest free number is taken first, so each null device lands on the missing stream.
  int fd = 0;
  while (fd >= 0 && fd <= STDERR_FILENO) fd = ::open("/dev/null", O_RDWR);
  if (fd > STDERR_FILENO) ::close(fd);
}

void printError(std::string_view line) {
  const std::string text = std::string(line) + '\n';
  (void)!::write(STDERR_FILENO, text.data(), text.size());
}

}  // namespace kalmira
