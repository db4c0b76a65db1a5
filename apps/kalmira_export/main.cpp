// kalmira-export: data files as tables.
#include <fmt/format.h>

#include <csignal>

#include "export/export_command.h"
#include "platform/command_line.h"

int main(int argc, char** argv) {
#ifdef SIGXFSZ
  // A file size limit is an error of one write.
  (void)std::signal(SIGXFSZ, SIG_IGN);
#endif
  kalmira::ExportRequest request;
  return kalmira::runMain(kalmira::exportCommandLine(request), argc, argv, [&] {
    return kalmira::runExport(
        request, [](std::string_view text) { kalmira::printError(fmt::format("kalmira-export: {}", text)); });
  });
}
