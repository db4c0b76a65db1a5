#include <csignal>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "export/export_command.h"
#include "platform/standard_streams.h"

int main(int argc, char** argv) {
  kalmira::openMissingStreams();
#ifdef SIGXFSZ
  // A file size limit is an error of one write.
  (void)std::signal(SIGXFSZ, SIG_IGN);
#endif
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  return kalmira::runExport(arguments, [](std::string_view line) {
    // Nothing is left to tell it to when even this fails.
    std::fprintf(stderr, "kalmira-export: %.*s\n", static_cast<int>(line.size()), line.data());
  });
}
