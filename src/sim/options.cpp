#include "sim/options.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace kalmira::sim {
namespace {

constexpr double kDefaultSentences_hz = 3;
constexpr double kLongest_s = 1e9;
constexpr double kFastest_hz = 100000;

// The whole text must be the number.
template <typename Number>
std::optional<Number> wholeNumber(std::string_view text) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return number;
}

std::optional<double> realFrom(std::string_view text, double least, double most) {
  const auto number = wholeNumber<double>(text);
  if (!number || !(*number >= least && *number <= most)) return std::nullopt;
  return number;
}

template <typename Target>
bool setReal(Target& target, std::string_view text, double least, double most) {
  const auto number = realFrom(text, least, most);
  if (number) target = *number;
  return number.has_value();
}

bool setText(std::string& target, std::string_view text) {
  target = text;
  return !text.empty();
}

bool setKind(Options& options, std::string_view text) {
  const auto* instrument = findInstrumentByName(text);
  if (instrument != nullptr) options.kind = instrument->kind;
  return instrument != nullptr;
}

bool setSeed(Options& options, std::string_view text) {
  const auto seed = wholeNumber<std::uint64_t>(text);
  if (seed) options.faults.seed = *seed;
  return seed.has_value();
}

bool setTeskLength(Options& options, std::string_view text) {
  if (text != "7" && text != "12") return false;
  options.teskLength = text == "7" ? 7 : 12;
  return true;
}

bool addWindow(std::vector<Window>& windows, std::string_view text) {
  const auto comma = text.find(',');
  if (comma == std::string_view::npos) return false;
  const auto at_s = realFrom(text.substr(0, comma), 0, kLongest_s);
  const auto for_s = realFrom(text.substr(comma + 1), 0, kLongest_s);
  if (!at_s || !for_s) return false;
  windows.push_back({*at_s, *for_s});
  return true;
}

struct Option {
  std::string_view name;
  std::string_view value;  // as the usage shows it
  std::string_view wants;  // what a wrong value should have been
  bool (*set)(Options&, std::string_view);
  std::string_view help;
};

constexpr double kSmall = 1e-6;

constexpr std::array<Option, 16> kOptions{{
    {"--kind", "NAME|0..7", "ORLA, TESKB, TESKDD, TESK, VARDO, MIRKA, GLACO, TESK2 or 0 to 7", setKind,
     "the instrument"},
    {"--link", "PATH", "a path", [](Options& o, std::string_view t) { return setText(o.link, t); },
     "symbolic link to the instrument's device"},
    {"--gps-link", "PATH", "a path", [](Options& o, std::string_view t) { return setText(o.gpsLink, t); },
     "symbolic link to the receiver's device"},
    {"--rate", "HZ", "a number of records a second, above 0",
     [](Options& o, std::string_view t) { return setReal(o.rate_hz, t, kSmall, kFastest_hz); },
     "records a second (the instrument's own rate)"},
    {"--gps-rate", "HZ", "a number of sentences a second, 0 or more",
     [](Options& o, std::string_view t) { return setReal(o.gpsRate_hz, t, 0, kFastest_hz); },
     "sentences a second, GGA, GSA and RMC in turn (3; 0 for none)"},
    {"--seconds", "S", "a number of seconds",
     [](Options& o, std::string_view t) { return setReal(o.end_s, t, 0, kLongest_s); },
     "end after S seconds (on SIGINT or SIGTERM)"},
    {"--seed", "N", "a whole number, 0 or more", setSeed, "same seed, same bytes (1)"},
    {"--tesk-length", "7|12", "7 or 12", setTeskLength, "bytes of a TESK record (12)"},
    {"--trigger-every", "S", "a number of seconds above 0",
     [](Options& o, std::string_view t) { return setReal(o.triggerEvery_s, t, kSmall, kLongest_s); },
     "press the trigger for three records every S seconds"},
    {"--noise", "P", "a probability, 0 to 1",
     [](Options& o, std::string_view t) { return setReal(o.faults.noise, t, 0, 1); },
     "corrupt each byte with probability P"},
    {"--bad-checksum", "P", "a probability, 0 to 1",
     [](Options& o, std::string_view t) { return setReal(o.badChecksum, t, 0, 1); },
     "give a sentence a wrong checksum with probability P"},
    {"--silence", "AT,FOR", "two numbers of seconds",
     [](Options& o, std::string_view t) { return addWindow(o.faults.silence, t); },
     "send nothing from AT on for FOR seconds; repeatable"},
    {"--unplug", "AT,FOR", "two numbers of seconds",
     [](Options& o, std::string_view t) { return addWindow(o.faults.unplug, t); },
     "take the devices away at AT for FOR seconds; repeatable"},
    {"--replay", "FILE", "a data file", [](Options& o, std::string_view t) { return setText(o.replay, t); },
     "send the readings and sentences of a data file"},
    {"--speed", "X", "a number above 0",
     [](Options& o, std::string_view t) { return setReal(o.speed, t, kSmall, kFastest_hz); },
     "play the file X times as fast (1)"},
    {"--help", "", "no value",
     [](Options& o, std::string_view t) {
       o.help = true;
       return t.empty();
     },
     "show this"},
}};

// What the options say about each other.
std::string contradiction(const Options& options) {
  if (options.help) return {};
  if (options.replay.empty()) {
    if (!options.kind) return "--kind is missing";
    if (options.speed) return "--speed goes with --replay only";
    if (options.teskLength && *options.kind != Kind::tesk) return "--tesk-length goes with --kind TESK only";
  } else if (options.rate_hz || options.gpsRate_hz || options.teskLength || options.triggerEvery_s > 0 ||
             options.badChecksum > 0) {
    return "--rate, --gps-rate, --tesk-length, --trigger-every and --bad-checksum do not go with --replay: "
           "the "
           "file says what is sent";
  }
  if (!options.link.empty() && options.link == options.gpsLink)
    return "--link and --gps-link are the same path";
  return {};
}

}  // namespace

ParsedOptions parseOptions(std::span<const char* const> arguments) {
  ParsedOptions parsed;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    const auto equals = argument.find('=');
    const auto name = argument.substr(0, equals);
    const auto option = std::find_if(kOptions.begin(), kOptions.end(),
                                     [name](const Option& candidate) { return candidate.name == name; });
    if (option == kOptions.end()) {
      parsed.error = fmt::format("{}: there is no such option", argument);
      return parsed;
    }
    std::string_view value;
    if (equals != std::string_view::npos) {
      value = argument.substr(equals + 1);
    } else if (!option->value.empty()) {
      if (++i == arguments.size()) {
        parsed.error = fmt::format("{} wants {}", name, option->wants);
        return parsed;
      }
      value = arguments[i];
    }
    if (!option->set(parsed.options, value)) {
      parsed.error = fmt::format("{} wants {}, not \"{}\"", name, option->wants, value);
      return parsed;
    }
  }
  parsed.error = contradiction(parsed.options);
  return parsed;
}

std::string usage() {
  std::string text =
      "Usage: kalmira-sim --kind NAME|0..7 [options]\n"
      "       kalmira-sim --replay FILE [options]\n"
      "Plays an instrument and a GPS receiver on two pseudo-terminals and prints their devices.\n\n";
  for (const auto& option : kOptions) {
    text += fmt::format("  {:<24}{}\n", fmt::format("{} {}", option.name, option.value), option.help);
  }
  return text;
}

SurveyPlan surveyPlan(const Options& options) {
  auto plan =
      naturalPlan(*options.kind, options.teskLength.value_or(instrumentOf(*options.kind).instrumentLength));
  if (options.rate_hz) plan.recordPeriod_s = 1 / *options.rate_hz;
  const double sentences_hz = options.gpsRate_hz.value_or(kDefaultSentences_hz);
  plan.sentencePeriod_s = sentences_hz > 0 ? 1 / sentences_hz : 0;
  plan.triggerEvery_s = options.triggerEvery_s;
  plan.badChecksum = options.badChecksum;
  plan.seed = options.faults.seed;
  return plan;
}

}  // namespace kalmira::sim
