// kalmira-log: a logging session without a screen.
#include <QCoreApplication>
#include <QStandardPaths>
#include <filesystem>

#include "commit.h"
#include "console/log_program.h"
#include "link/network_port.h"

int main(int argc, char** argv) {
  kalmira::LogOptions options;
  return kalmira::runMain(kalmira::withCommit(kalmira::logCommandLine(options)), argc, argv, [&] {
    const QCoreApplication application(argc, argv);
    const auto documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const auto root = std::filesystem::path(documents.toStdString()) / "Kalmira";
    return kalmira::runLogProgram(options, root, kalmira::makePort);
  });
}
