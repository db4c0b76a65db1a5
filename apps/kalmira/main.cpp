// kalmira: the logger with its windows.
#include <QApplication>
#include <QStandardPaths>
#include <clocale>
#include <filesystem>

#include "resources.h"
#include "ui/shell/program.h"

int main(int argc, char** argv) {
  kalmira::ProgramOptions options;
  return kalmira::runMain(kalmira::programCommandLine(options), argc, argv, [&] {
    // The class of the main window, by which window managers know it.
    QApplication::setApplicationName("PELLO");
    const QApplication application(argc, argv);
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
