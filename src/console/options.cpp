#include "console/options.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <functional>
#include <limits>

namespace kalmira {

const std::string_view kLogUsage =
    "usage: kalmira-log --kind NAME|0..7 --port DEVICE [options]\n"
    "  --kind NAME|0..7     ORLA, TESKB, TESKDD, TESK, VARDO, MIRKA, GLACO, TESK2\n"
    "  --port DEVICE        the instrument's serial port, such as /dev/ttyUSB0\n"
    "  --ice                ORLA: log for ice thickness, with the settings kept for that\n"
    "  --gps DEVICE         log a GPS receiver too\n"
    "  --marker DEVICE      TESK2: the external marker's port\n"
    "  --root DIR           storage root; otherwise Kalmira in your documents folder\n"
    "  --storage-class N    0 to 3: where settings and data lie below the root (1)\n"
    "  --set FIELD=VALUE    a setting for this run only, such as surveyMode=2 or traceWidth[2]=3\n"
    "  --name BASENAME      name of the data file, without extension\n"
    "  --seconds S          record at once for S seconds, then end\n"
    "  --on-silence wait|exit  when the instrument stays silent (wait)\n"
    "  --tick-base boot|program  what the ticks in the file count from (boot)\n"
    "  --tesk-x10           TESK: its ranges are ten times as large\n"
    "  --show               print every text of the panel\n"
    "Commands on standard input: go, pause, line [NAME [START [INCREMENT [W|S|N|E]]]], station X,\n"
    "comment TEXT, calibrate, delete-calibration, mark, status, exit\n";

std::optional<double> wholeNumber(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  double value = 0;
  const auto* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc{} || last != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

namespace {

std::optional<int> wholeInt(std::string_view text) {
  int value = 0;
  const auto* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc{} || last != end) return std::nullopt;
  return value;
}

// Each reader takes an option's value into the options; an empty text, or what is wrong with it.
using Reader = std::function<std::string(LogOptions&, const std::string&)>;

std::string readKind(LogOptions& options, const std::string& value) {
  const auto* instrument = findInstrumentByName(value);
  if (instrument == nullptr) return fmt::format("there is no instrument \"{}\"", value);
  options.kind = instrument->kind;
  return {};
}

std::string readStorageClass(LogOptions& options, const std::string& value) {
  const auto number = wholeInt(value);
  if (!number || *number < 0 || *number > 3) return "--storage-class is 0 to 3";
  options.storageClass = *number;
  return {};
}

bool isTextField(const SettingsField& field) {
  return std::holds_alternative<std::string Settings::*>(field.member);
}

bool isIntField(const SettingsField& field) {
  return std::holds_alternative<int Settings::*>(field.member) ||
         std::holds_alternative<std::array<int, kTraces> Settings::*>(field.member);
}

std::string readSet(LogOptions& options, const std::string& value) {
  const auto equals = value.find('=');
  if (equals == std::string::npos) return "--set takes FIELD=VALUE";
  const auto name = value.substr(0, equals);
  const auto text = value.substr(equals + 1);
  const auto field = findField(name);
  if (!field) return fmt::format("there is no setting \"{}\"", name);
  if (isIntField(*field->field)) {
    if (!wholeInt(text)) return fmt::format("\"{}\" is no whole number for {}", text, name);
  } else if (!isTextField(*field->field) && !wholeNumber(text)) {
    return fmt::format("\"{}\" is no number for {}", text, name);
  }
  options.set.emplace_back(*field, text);
  return {};
}

std::string readName(LogOptions& options, const std::string& value) {
  if (value.empty() || value.find('/') != std::string::npos || value.find('\\') != std::string::npos ||
      value.starts_with('.')) {
    return fmt::format("\"{}\" is no name for a data file: a bare name without folder is wanted", value);
  }
  options.name = value;
  return {};
}

std::string readSeconds(LogOptions& options, const std::string& value) {
  const auto number = wholeNumber(value);
  if (!number || *number <= 0 || *number > 1e6) return "--seconds takes a number of seconds above 0";
  options.seconds = number;
  return {};
}

std::string readSilence(LogOptions& options, const std::string& value) {
  if (value != "wait" && value != "exit") return "--on-silence is wait or exit";
  options.exitOnSilence = value == "exit";
  return {};
}

std::string readTickBase(LogOptions& options, const std::string& value) {
  if (value != "boot" && value != "program") return "--tick-base is boot or program";
  options.tickBase = value == "boot" ? TickBase::boot : TickBase::program;
  return {};
}

Reader textReader(std::string LogOptions::*member) {
  return [member](LogOptions& options, const std::string& value) {
    if (value.empty()) return std::string("a device is missing");
    options.*member = value;
    return std::string{};
  };
}

struct ValueOption {
  std::string_view name;
  Reader read;
};

const std::vector<ValueOption>& valueOptions() {
  static const std::vector<ValueOption> kOptions{
      {"--kind", readKind},
      {"--port", textReader(&LogOptions::port)},
      {"--gps", textReader(&LogOptions::gps)},
      {"--marker", textReader(&LogOptions::marker)},
      {"--root",
       [](LogOptions& options, const std::string& value) {
         options.root = value;
         return value.empty() ? std::string("--root takes a folder") : std::string{};
       }},
      {"--storage-class", readStorageClass},
      {"--set", readSet},
      {"--name", readName},
      {"--seconds", readSeconds},
      {"--on-silence", readSilence},
      {"--tick-base", readTickBase},
  };
  return kOptions;
}

bool readFlag(LogOptions& options, std::string_view argument) {
  if (argument == "--ice") {
    options.ice = true;
  } else if (argument == "--show") {
    options.show = true;
  } else if (argument == "--tesk-x10") {
    options.teskTimes10 = true;
  } else {
    return false;
  }
  return true;
}

std::string checkTogether(const LogOptions& options, bool kindGiven) {
  if (!kindGiven) return "--kind is missing";
  if (options.port.empty()) return "--port is missing";
  if (options.ice && options.kind != Kind::orla) return "--ice is for the ORLA";
  if (!options.marker.empty() && options.kind != Kind::tesk2) return "--marker is for the TESK2";
  if (options.teskTimes10 && options.kind != Kind::tesk) return "--tesk-x10 is for the TESK";
  return {};
}

}  // namespace

std::variant<LogOptions, HelpWanted, UsageError> parseLogOptions(const std::vector<std::string>& arguments) {
  LogOptions options;
  bool kindGiven = false;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const auto& argument = arguments[i];
    if (argument == "--help" || argument == "-h") return HelpWanted{};
    if (readFlag(options, argument)) continue;
    // Both "--name VALUE" and "--name=VALUE".
    const auto equals = argument.find('=');
    const auto name = argument.substr(0, argument.starts_with("--") ? equals : std::string::npos);
    const ValueOption* found = nullptr;
    for (const auto& option : valueOptions()) {
      if (option.name == name) found = &option;
    }
    if (found == nullptr) return UsageError{fmt::format("\"{}\" is no option", argument)};
    std::string value;
    if (name.size() < argument.size()) {
      value = argument.substr(equals + 1);
    } else if (i + 1 < arguments.size()) {
      value = arguments[++i];
    } else {
      return UsageError{fmt::format("{} needs a value", name)};
    }
    if (auto problem = found->read(options, value); !problem.empty()) return UsageError{std::move(problem)};
    kindGiven = kindGiven || name == "--kind";
  }
  if (auto problem = checkTogether(options, kindGiven); !problem.empty())
    return UsageError{std::move(problem)};
  return options;
}

}  // namespace kalmira
