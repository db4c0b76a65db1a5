// kalmira-shots: pictures of every window and dialog, as on a screen of one size whose desktop draws frames.
#include <fmt/format.h>

#include <QApplication>
#include <QTemporaryFile>

#include "platform/command_line.h"
#include "resources.h"
#include "ui/screen/touch_style.h"
#include "ui/shots/shots.h"

namespace {

constexpr int kTitleBar = 22;  // pixels, as desktops draw it
constexpr int kBorder = 2;     // as the screen that is not there draws it

// Qt's screen that is not there, in this size. It stays while the file does.
bool describeScreen(QTemporaryFile& file, QSize size) {
  const auto text =
      fmt::format(R"({{"screens": [{{"name": "pictures", "x": 0, "y": 0, "width": {}, "height": {}, "logicalDpi": 96,)"
                  R"( "logicalBaseDpi": 96, "dpr": 1}}]}})",
                  size.width(), size.height());
  if (!file.open() || file.write(text.data(), static_cast<qint64>(text.size())) < 0 || !file.flush()) return false;
  return qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + file.fileName().toLocal8Bit());
}

}  // namespace

int main(int argc, char** argv) {
  kalmira::openMissingStreams();
  const auto sides = QString(argc == 3 ? argv[2] : "").split('x');
  const QSize size(sides.value(0).toInt(), sides.value(1).toInt() - kTitleBar);
  if (argc != 3 || argv[1][0] == '-' || size.width() < 100 || size.height() < 100) {
    kalmira::printError("usage: kalmira-shots DIR WIDTHxHEIGHT");
    return 2;
  }
  QTemporaryFile screen;
  if (!describeScreen(screen, size)) {
    kalmira::printError("kalmira-shots: no temporary file can be written");
    return 1;
  }
  const QApplication application(argc, argv);
  QApplication::setStyle(kalmira::makeTouchStyle());
  initResources();
  const auto problem = kalmira::shots::takeShots(argv[1], size - QSize(2 * kBorder, 2 * kBorder));
  if (!problem.empty()) kalmira::printError("kalmira-shots: " + problem);
  return problem.empty() ? 0 : 1;
}
