#include "logging/rescue.h"

#include <fmt/format.h>

#include <array>
#include <cstdlib>
#include <system_error>

#include "platform/output_file.h"

namespace kalmira {
namespace {

// Folders that may lie on another disk than the data.
std::vector<std::filesystem::path> otherFolders(const std::filesystem::path& root) {
  std::vector<std::filesystem::path> folders{root};
  // Read once, on the session's thread; nothing in this program changes the environment.
  if (const char* home = std::getenv("HOME")) folders.emplace_back(home);  // NOLINT(concurrency-mt-unsafe)
  std::error_code error;
  auto temporary = std::filesystem::temp_directory_path(error);
  if (!error) folders.push_back(std::move(temporary));
  return folders;
}

// Where the records went, or an empty path.
std::filesystem::path writeElsewhere(const Session& session, const std::string& records) {
  const auto name = session.file.path().filename().string() + ".REST";
  for (const auto& folder : otherFolders(session.setup.root)) {
    auto path = folder / name;
    std::error_code error;
    if (!std::filesystem::exists(path, error) && replaceFile(path, records).empty()) return path;
  }
  return {};
}

}  // namespace

void closeDataFile(Session& session) {
  const auto rest = session.file.finish();
  if (!rest) return;
  const auto count = rest->records.size() / session.file.recordLength();
  const auto path = writeElsewhere(session, rest->records);
  const auto what =
      fmt::format("{}. The last {} records are not safely in {}.", rest->cause, count, session.file.path().string());
  const auto where = path.empty() ? std::string("There was no room for them elsewhere: they are lost.")
                                  : fmt::format("They were saved as {}.", path.string());
  session.view.tell({.title = "CRITICAL WARNING", .text = what + "\r\n" + where, .icon = Icon::stop});
}

}  // namespace kalmira
