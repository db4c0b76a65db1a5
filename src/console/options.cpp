#include "console/options.h"

#include <fmt/format.h>

#include <limits>

#include "platform/text.h"
#include "settings/setting_check.h"

namespace kalmira {
namespace {

constexpr double kLongest_s = 1e6;

bool isTextField(const SettingsField& field) { return std::holds_alternative<std::string Settings::*>(field.member); }

bool isIntField(const SettingsField& field) {
  return std::holds_alternative<int Settings::*>(field.member) ||
         std::holds_alternative<std::array<int, kTraces> Settings::*>(field.member);
}

std::string takeSet(LogOptions& options, const std::string& value) {
  const auto equals = value.find('=');
  if (equals == std::string::npos) return "--set takes FIELD=VALUE";
  const auto name = value.substr(0, equals);
  const auto text = value.substr(equals + 1);
  const auto field = findField(name);
  if (!field) return fmt::format("there is no setting \"{}\"", name);
  if (isIntField(*field->field)) {
    if (!wholeNumber<int>(text)) return fmt::format("\"{}\" is no whole number for {}", text, name);
  } else if (!isTextField(*field->field) && !wholeNumber<double>(text)) {
    return fmt::format("\"{}\" is no number for {}", text, name);
  }
  options.set.emplace_back(*field, text);
  return {};
}

std::string takeName(LogOptions& options, const std::string& value) {
  if (value.empty() || value.find('/') != std::string::npos || value.find('\\') != std::string::npos ||
      value.starts_with('.') || hasControlCharacters(value)) {
    return fmt::format("\"{}\" is no name for a data file: a bare name without folder is wanted", printable(value));
  }
  options.name = value;
  return {};
}

std::string contradiction(const LogOptions& options) {
  if (!options.kind) return "--kind is missing";
  if (options.port.empty()) return "--port is missing";
  if (!options.marker.empty() && !instrumentOf(*options.kind).hasMarker) return "--marker is for the TESK2";
  if (options.noInput && options.seconds) return "--no-input and --seconds are two ways to end: one of them is enough";
  for (const auto& [field, text] : options.set) {
    if (auto problem = settingProblem(*options.kind, options.ice, field, text); !problem.empty()) return problem;
  }
  return startContradiction(options);
}

CommandGroup withMirror(LogOptions& options) {
  auto group = fileOptions(options);
  group.options.push_back({"--mirror", "DIR", "a second copy as it is recorded, in a folder on another medium",
                           takeText(options.mirror, "--mirror takes a folder")});
  return group;
}

}  // namespace

CommandLine logCommandLine(LogOptions& o) {
  constexpr std::string_view kNoDevice = "a device is missing";
  return {
      .program = "kalmira-log",
      .summary = "Logs one instrument without a screen.",
      .usages = {"--kind NAME|0..7 --port DEVICE [options]"},
      .groups = {instrumentOptions(o),
                 {"Ports",
                  {{"--port", "DEVICE", "the instrument's serial port, such as /dev/ttyUSB0",
                    takeText(o.port, kNoDevice)},
                   {"--gps", "DEVICE", "log a GPS receiver too", takeText(o.gps, kNoDevice)},
                   {"--marker", "DEVICE", "TESK2: the external marker's port", takeText(o.marker, kNoDevice)}}},
                 withMirror(o),
                 {"This run",
                  {{"--set", "FIELD=VALUE", "a setting for this run only, such as surveyMode=2 or traceWidth[2]=3",
                    [&o](const std::string& value) { return takeSet(o, value); }, "", CommandOption::Again::allCount},
                   {"--name", "BASENAME", "name of the data file, without extension",
                    [&o](const std::string& value) { return takeName(o, value); }},
                   {"--seconds", "S", "record at once for S seconds, then end",
                    takeNumber<double>(o.seconds, std::numeric_limits<double>::min(), kLongest_s,
                                       "--seconds takes a number of seconds above 0")},
                   eitherOption("--on-silence", "wait|exit", "when the instrument stays silent (wait)", o.exitOnSilence,
                                false, true),
                   {"--no-input", "", "for services: record at once and until a signal comes, without standard input",
                    takeFlag(o.noInput)},
                   {"--show", "", "print every text of the panel", takeFlag(o.show)}}}},
      .check = [&o] { return contradiction(o); },
      .notes =
          "Commands on standard input: go, pause, line [NAME [START [INCREMENT [W|S|N|E]]]], station X,\n"
          "comment [TEXT], calibrate, delete-calibration, mark, status, help, exit\n"
          "Exit status: 0 a whole survey; 1 it could not start or the link was given up; 2 wrong usage;\n"
          "3 it ended, but something is not where it should be: the last lines say what.\n"};
}

}  // namespace kalmira
