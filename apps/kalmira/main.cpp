// kalmira: the logger with its windows.
#include <QApplication>
#include <QStandardPaths>
#include <clocale>
#include <cstdlib>
#include <filesystem>

#include "commit.h"
#include "platform/command_line.h"
#include "resources.h"
#include "ui/shell/program.h"

namespace {

// Qt ends a program that gets no display, with a word that helps nobody. The word and the status are ours.
void sayThatThereIsNoDisplay(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type == QtFatalMsg) {
    kalmira::printError(
        "kalmira: there is no display to open a window on. On a desktop, start it there, or set DISPLAY or\n"
        "WAYLAND_DISPLAY; without one, kalmira-log logs on the command line.");
    std::_Exit(1);
  }
  const QString category = context.category != nullptr ? context.category : "";
  // Why one platform after the other refused says less than the above.
  if (!category.startsWith("qt.qpa")) kalmira::printError(text.toStdString());
}

}  // namespace

int main(int argc, char** argv) {
  kalmira::ProgramOptions options;
  return kalmira::runMain(kalmira::withCommit(kalmira::programCommandLine(options)), argc, argv, [&] {
    // The class of the main window, by which window managers know it.
    QApplication::setApplicationName("PELLO");
    // The desktop file that belongs to the windows, where a desktop asks for its name instead.
    QApplication::setDesktopFileName("org.kalmira.Kalmira");
    const auto usual = qInstallMessageHandler(sayThatThereIsNoDisplay);
    const QApplication application(argc, argv);
    qInstallMessageHandler(usual);
    // Qt has taken over the desktop's language; numbers of the C library stay those of the wire.
    std::setlocale(LC_NUMERIC, "C");
    initResources();
    if (options.root.empty()) {
      const auto documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
      options.root = std::filesystem::path(documents.toStdString()) / "Kalmira";
    }
    return kalmira::runProgram(options);
  });
}
