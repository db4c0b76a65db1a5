// kalmira-check: says what data files hold and whether they are sound, and repairs them.
#include <fmt/format.h>
#include <unistd.h>

#include <csignal>

#include "check/check_command.h"
#include "commit.h"
#include "platform/command_line.h"
#include "platform/files.h"

int main(int argc, char** argv) {
#ifdef SIGXFSZ
  // A file size limit is an error of one write.
  (void)std::signal(SIGXFSZ, SIG_IGN);
#endif
  kalmira::CheckRequest request;
  return kalmira::runMain(kalmira::withCommit(kalmira::checkCommandLine(request)), argc, argv, [&] {
    const kalmira::SystemClock clock(kalmira::TickBase::program);
    kalmira::AttendedRun run("kalmira-check", clock, STDERR_FILENO);
    if (request.repair) run.tidyWhenEnded();
    const auto print = [&run](std::string_view report) {
      run.clear();
      kalmira::OutputFile out;
      const bool printed = out.write(report) && out.finish();
      if (!printed) run.say(fmt::format("{}: cannot be written: {}", out.name(), out.problem()));
      return printed;
    };
    return kalmira::runCheck(
        request, print, [&](std::string_view text) { run.say(text); },
        [&](std::string_view name, std::uint64_t done, std::uint64_t total) { return run.goOn(name, done, total); });
  });
}
