// kalmira-shots: pictures of every window and dialog.
#include <fmt/format.h>

#include <QApplication>
#include <filesystem>

#include "platform/standard_streams.h"
#include "resources.h"
#include "shots/shots_window.h"

int main(int argc, char** argv) {
  kalmira::openMissingStreams();
  if (argc != 2 || argv[1][0] == '-') {
    kalmira::printError("usage: kalmira-shots DIR");
    return 2;
  }
  const QApplication application(argc, argv);
  initResources();
  const auto problem = kalmira::shots::takeShots(argv[1]);
  if (!problem.empty()) kalmira::printError("kalmira-shots: " + problem);
  return problem.empty() ? 0 : 1;
}
