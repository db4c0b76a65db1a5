// kalmira-export: data files as tables and maps.
#include <unistd.h>

#include <csignal>

#include "commit.h"
#include "export/export_command.h"
#include "platform/command_line.h"

int main(int argc, char** argv) {
#ifdef SIGXFSZ
  // A file size limit is an error of one write.
  (void)std::signal(SIGXFSZ, SIG_IGN);
#endif
  kalmira::ExportRequest request;
  return kalmira::runMain(kalmira::withCommit(kalmira::exportCommandLine(request)), argc, argv, [&] {
    const kalmira::SystemClock clock(kalmira::TickBase::program);
    kalmira::AttendedRun run("kalmira-export", clock, STDERR_FILENO);
    // Rows on a terminal show by themselves how far it is.
    const bool rowsShown = !request.out && ::isatty(STDOUT_FILENO) == 1;
    if (request.out) run.tidyWhenEnded();
    const auto result = kalmira::runExport(
        request, [&](std::string_view text) { run.say(text); },
        [&](std::string_view name, std::uint64_t done, std::uint64_t total) {
          return rowsShown || run.goOn(name, done, total);
        });
    return result.status;
  });
}
