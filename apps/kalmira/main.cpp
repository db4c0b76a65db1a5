// kalmira: the logger with its windows.
#include <fmt/format.h>

#include <QApplication>
#include <QStandardPaths>
#include <clocale>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/standard_streams.h"
#include "resources.h"
#include "ui/shell/program.h"
#include "ui/shell/program_options.h"

int main(int argc, char** argv) {
  kalmira::openMissingStreams();
  auto parsed = kalmira::parseProgramOptions({argv + 1, argv + argc});
  if (const auto* help = std::get_if<kalmira::ProgramHelp>(&parsed)) {
    fmt::print("{}", help->text);
    return 0;
  }
  if (const auto* error = std::get_if<kalmira::ProgramUsageError>(&parsed)) {
    kalmira::printError(fmt::format("kalmira: {}\nkalmira --help shows the usage", error->what));
    return 2;
  }
  // The class of the main window, by which window managers know it.
  QApplication::setApplicationName("PELLO");
  const QApplication application(argc, argv);
  // Qt has taken over the desktop's language; numbers of the C library stay those of the wire.
  std::setlocale(LC_NUMERIC, "C");
  initResources();
  auto& options = std::get<kalmira::ProgramOptions>(parsed);
  if (options.root.empty()) {
    const auto documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    options.root = std::filesystem::path(documents.toStdString()) / "Kalmira";
  }
  return kalmira::runProgram(options);
}
