#include "sim/options.h"

#include <fmt/format.h>

namespace kalmira::sim {
namespace {

constexpr double kDefaultSentences_hz = 3;
constexpr double kLongest_s = 1e9;
constexpr double kFastest_hz = 100000;
constexpr double kSmall = 1e-6;

TakeValue takeWindow(std::vector<Window>& windows) {
  return [&windows](const std::string& value) {
    const auto comma = value.find(',');
    Window window{};
    auto problem = takeNumber(window.at_s, 0.0, kLongest_s)(value.substr(0, comma));
    if (problem.empty()) {
      const auto length = comma == std::string::npos ? "" : value.substr(comma + 1);
      problem = takeNumber(window.for_s, 0.0, kLongest_s)(length);
    }
    if (problem.empty()) windows.push_back(window);
    return problem;
  };
}

// What the options say about each other.
std::string contradiction(const Options& options) {
  if (options.replay.empty()) {
    if (!options.kind) return "--kind is missing";
    if (options.speed) return "--speed goes with --replay only";
    if (options.teskLength && *options.kind != Kind::tesk) return "--tesk-length goes with --kind TESK only";
  } else if (options.rate_hz || options.gpsRate_hz || options.teskLength || options.triggerEvery_s > 0 ||
             options.badChecksum > 0) {
    return "--rate, --gps-rate, --tesk-length, --trigger-every and --bad-checksum do not go with --replay: "
           "the file says what is sent";
  }
  if (!options.link.empty() && options.link == options.gpsLink) return "--link and --gps-link are the same path";
  return {};
}

}  // namespace

CommandLine simCommandLine(Options& o) {
  constexpr std::string_view kProbability = "a probability, 0 to 1";
  constexpr std::string_view kSpan = "two numbers of seconds";
  constexpr auto kAll = CommandOption::Again::allCount;
  constexpr auto kLargestSeed = std::numeric_limits<std::uint64_t>::max();
  auto kind = kindOption(o.kind);
  kind.wants = "ORLA, TESKB, TESKDD, TESK, VARDO, MIRKA, GLACO, TESK2 or 0 to 7";
  auto teskLength = eitherOption("--tesk-length", "7|12", "bytes of a TESK record (12)", o.teskLength, 7, 12);
  teskLength.wants = "7 or 12";
  return {
      .program = "kalmira-sim",
      .summary = "Plays an instrument and a GPS receiver on two pseudo-terminals and prints their devices.",
      .usages = {"--kind NAME|0..7 [options]", "--replay FILE [options]"},
      .groups = {{"Devices",
                  {kind,
                   {"--link", "PATH", "symbolic link to the instrument's device", takeText(o.link), "a path"},
                   {"--gps-link", "PATH", "symbolic link to the receiver's device", takeText(o.gpsLink), "a path"}}},
                 {"Survey",
                  {{"--rate", "HZ", "records a second (the instrument's own rate)",
                    takeNumber(o.rate_hz, kSmall, kFastest_hz), "a number of records a second, above 0"},
                   {"--gps-rate", "HZ", "sentences a second, GGA, GSA and RMC in turn (3; 0 for none)",
                    takeNumber(o.gpsRate_hz, 0.0, kFastest_hz), "a number of sentences a second, 0 or more"},
                   {"--seconds", "S", "end after S seconds (on SIGINT or SIGTERM)",
                    takeNumber(o.end_s, 0.0, kLongest_s), "a number of seconds"},
                   {"--seed", "N", "same seed, same bytes (1)",
                    takeNumber<std::uint64_t>(o.faults.seed, 0, kLargestSeed), "a whole number, 0 or more"},
                   teskLength,
                   {"--trigger-every", "S", "press the trigger for three records every S seconds",
                    takeNumber(o.triggerEvery_s, kSmall, kLongest_s), "a number of seconds above 0"}}},
                 {"Faults",
                  {{"--noise", "P", "corrupt each byte with probability P", takeNumber(o.faults.noise, 0.0, 1.0),
                    kProbability},
                   {"--bad-checksum", "P", "give a sentence a wrong checksum with probability P",
                    takeNumber(o.badChecksum, 0.0, 1.0), kProbability},
                   {"--silence", "AT,FOR", "send nothing from AT on for FOR seconds", takeWindow(o.faults.silence),
                    kSpan, kAll},
                   {"--unplug", "AT,FOR", "take the devices away at AT for FOR seconds", takeWindow(o.faults.unplug),
                    kSpan, kAll}}},
                 {"Replay",
                  {{"--replay", "FILE", "send the readings and sentences of a data file", takeText(o.replay),
                    "a data file"},
                   {"--speed", "X", "play the file X times as fast (1)", takeNumber(o.speed, kSmall, kFastest_hz),
                    "a number above 0"}}}},
      .check = [&o] { return contradiction(o); },
      .wording = {.unknown = "{0}: there is no such option", .then = CommandWording::Then::help}};
}

SurveyPlan surveyPlanOf(const Options& options) {
  auto plan = naturalPlan(*options.kind, options.teskLength.value_or(instrumentOf(*options.kind).instrumentLength));
  if (options.rate_hz) plan.recordPeriod_s = 1 / *options.rate_hz;
  const double sentences_hz = options.gpsRate_hz.value_or(kDefaultSentences_hz);
  plan.sentencePeriod_s = sentences_hz > 0 ? 1 / sentences_hz : 0;
  plan.triggerEvery_s = options.triggerEvery_s;
  plan.badChecksum = options.badChecksum;
  plan.seed = options.faults.seed;
  return plan;
}

}  // namespace kalmira::sim
