// kalmira-log: a logging session without a screen.
#include <fmt/format.h>

#include <QCoreApplication>
#include <QStandardPaths>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "console/log_program.h"
#include "console/options.h"
#include "link/qt_serial_port.h"
#include "platform/standard_streams.h"

int main(int argc, char** argv) {
  kalmira::openMissingStreams();
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const auto parsed = kalmira::parseLogOptions(arguments);
  if (std::holds_alternative<kalmira::HelpWanted>(parsed)) {
    fmt::print("{}", kalmira::kLogUsage);
    return 0;
  }
  if (const auto* error = std::get_if<kalmira::UsageError>(&parsed)) {
    kalmira::printError(fmt::format("kalmira-log: {}\nkalmira-log --help shows the usage", error->what));
    return 2;
  }
  const QCoreApplication application(argc, argv);
  const auto documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  const auto root = std::filesystem::path(documents.toStdString()) / "Kalmira";
  return kalmira::runLogProgram(std::get<kalmira::LogOptions>(parsed), root, kalmira::makeQtSerialPort);
}
