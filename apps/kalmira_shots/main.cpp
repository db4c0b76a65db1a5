// kalmira-shots: pictures of every window and dialog.
#include <fmt/format.h>

#include <QApplication>
#include <algorithm>
#include <vector>

#include "platform/command_line.h"
#include "resources.h"
#include "ui/screen/touch_style.h"
#include "ui/shots/shots.h"

int main(int argc, char** argv) {
  kalmira::openMissingStreams();
  std::vector<QSize> sizes;
  for (int i = 2; i < argc; ++i) {
    const auto sides = QString(argv[i]).split('x');
    sizes.emplace_back(sides.value(0).toInt(), sides.value(1).toInt());
  }
  const bool sizesRight =
      std::all_of(sizes.begin(), sizes.end(), [](QSize size) { return size.width() > 0 && size.height() > 0; });
  if (argc < 2 || argv[1][0] == '-' || !sizesRight) {
    kalmira::printError("usage: kalmira-shots DIR [WIDTHxHEIGHT]...");
    return 2;
  }
  if (sizes.empty()) sizes = {{480, 640}, {640, 480}};
  const QApplication application(argc, argv);
  QApplication::setStyle(kalmira::makeTouchStyle());
  initResources();
  const auto problem = kalmira::shots::takeShots(argv[1], sizes);
  if (!problem.empty()) kalmira::printError("kalmira-shots: " + problem);
  return problem.empty() ? 0 : 1;
}
