// kalmira-sim: instruments and receivers, played.
#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <string>

#include "commit.h"
#include "platform/command_line.h"
#include "sim/options.h"
#include "sim/player.h"
#include "sim/replay.h"
#include "sim/survey.h"
#include "sim/terminal_outlet.h"

namespace {

using namespace kalmira;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;
// How long a reader may take for the last bytes before the devices go, and the wait between two looks: longer than the
// kernel needs to hand bytes over.
constexpr double kFarewell_s = 0.5;
constexpr double kLook_s = 0.02;

int fail(int status, std::string_view message) {
  printError(fmt::format("kalmira-sim: {}", message));
  return status;
}

int run(const sim::Options& options, const sim::TransmissionSource& source) {
  // From here on the signals that end the program end a wait, so that the links are always taken away.
  sim::SignalPace pace;
  sim::TerminalOutlet outlet(options.link, options.gpsLink, stdout);
  if (const auto error = outlet.plug(); !error.empty()) return fail(kFailed, error);
  if (const auto error = sim::play(source, options.faults, options.end_s, pace, outlet); !error.empty()) {
    return fail(kFailed, error);
  }
  const double last_s = pace.elapsed_s() + kFarewell_s;
  while (pace.waitUntil(pace.elapsed_s() + kLook_s) && !outlet.caughtUp() && pace.elapsed_s() < last_s) {
  }
  return 0;
}

int runReplay(const sim::Options& options) {
  sim::Replay replay(options.speed.value_or(1));
  if (const auto error = replay.open(options.replay); !error.empty()) return fail(kFailed, error);
  if (options.kind && *options.kind != replay.kind()) {
    return fail(kWrongUsage,
                fmt::format("--kind {} does not fit {}, whose instrument is {}", instrumentOf(*options.kind).name,
                            options.replay, instrumentOf(replay.kind()).name));
  }
  const int status = run(options, [&replay] { return replay.next(); });
  if (!replay.error().empty()) return fail(kFailed, fmt::format("{}: {}", options.replay, replay.error()));
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  // A reader of the names that has gone must not end the survey with the links left behind.
  (void)std::signal(SIGPIPE, SIG_IGN);
  sim::Options options;
  return runMain(withCommit(sim::simCommandLine(options)), argc, argv, [&] {
    if (!options.replay.empty()) return runReplay(options);
    return run(options, sim::surveySource(sim::surveyPlanOf(options)));
  });
}
