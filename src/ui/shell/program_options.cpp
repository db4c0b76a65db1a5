#include "ui/shell/program_options.h"

#include <fmt/format.h>

namespace kalmira {
namespace {

std::string takeCom(ProgramOptions& options, const std::string& value) {
  const auto equals = value.find('=');
  if (equals == std::string::npos) return "--com takes NUMBER=DEVICE";
  const auto number = wholeNumber<int>(value.substr(0, equals));
  if (!number || *number < 1 || *number > kComPorts) return "--com takes a number from 1 to 12";
  const auto device = value.substr(equals + 1);
  if (device.empty()) return fmt::format("--com {}= lacks the device", *number);
  options.com[static_cast<std::size_t>(*number - 1)] = device;
  return {};
}

std::string takeFile(ProgramOptions& options, const std::string& value) {
  if (!options.file.empty()) return fmt::format("\"{}\" is one file too many", value);
  options.file = value;
  return {};
}

std::string check(ProgramOptions& options) {
  // There is but one instrument for ice work with an option.
  if (options.ice && !options.kind) options.kind = Kind::orla;
  return startContradiction(options);
}

}  // namespace

CommandLine programCommandLine(ProgramOptions& o) {
  return {
      .program = "kalmira",
      .summary = "Logs with a hand-carried ground-conductivity instrument, and shows what was logged.",
      .usages = {"[options] [FILE]"},
      .groups = {instrumentOptions(o),
                 {"Ports",
                  {{"--com", "N=DEVICE", "the device behind COM1 to COM12, for this run",
                    [&o](const std::string& value) { return takeCom(o, value); }, "", CommandOption::Again::allCount}}},
                 fileOptions(o),
                 {"Window",
                  {eitherOption("--screen", "portrait|landscape", "the shape it opens in", o.portrait, true, false),
                   {"--scale", "F", "0.5 to 8: the size it opens in, times 240 x 320",
                    takeNumber(o.scale, 0.5, 8.0, "--scale is a number from 0.5 to 8")},
                   eitherOption("--theme", "day|night", "black on white, or dark for eyes used to the dark", o.night,
                                false, true)}}},
      .operands = {"", "FILE", "a data file, shown at once; without --kind the logger is for its instrument, this time",
                   [&o](const std::string& value) { return takeFile(o, value); }},
      .check = [&o] { return check(o); },
      .notes = "Without --kind the instrument is the one last used.\n",
      .wording = {.unknown = "Unknown option '{1}'.",
                  .missing = "Missing value after '{0}'.",
                  .unexpected = "Unexpected value after '{1}'."}};
}

}  // namespace kalmira
