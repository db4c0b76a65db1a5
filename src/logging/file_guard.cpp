#include "logging/file_guard.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>
#include <vector>

#include "logging/notes.h"
#include "logging/panel.h"
#include "logging/session_view.h"
#include "platform/files.h"

namespace kalmira {
namespace {

using Condition = DataFile::Condition;
namespace fs = std::filesystem;

constexpr int kLongestRetry = 64;  // services

void tell(Session& session, const std::string& text, Icon icon = Icon::stop) {
  session.view.tell({.title = "CRITICAL WARNING", .text = text, .icon = icon});
}

std::string whatHappened(Condition condition, const fs::path& path) {
  switch (condition) {
    case Condition::lengthened: return fmt::format("Another program has added to\r\n{}", path.string());
    case Condition::cut: return fmt::format("Another program has cut short\r\n{}", path.string());
    case Condition::overwritten: return fmt::format("Another program has written into\r\n{}", path.string());
    case Condition::failing: return fmt::format("The medium does not take any more:\r\n{}", path.string());
    default: return fmt::format("The data file is gone, deleted or moved, or its card is out:\r\n{}", path.string());
  }
}

// Folders that may lie on another disk than the data.
std::vector<fs::path> otherFolders(const fs::path& root) {
  std::vector<fs::path> folders{root};
  // Read once, on the session's thread; nothing in this program changes the environment.
  if (const char* home = std::getenv("HOME")) folders.emplace_back(home);  // NOLINT(concurrency-mt-unsafe)
  std::error_code error;
  auto temporary = fs::temp_directory_path(error);
  if (!error) folders.push_back(std::move(temporary));
  return folders;
}

// Goes on in the folder, under the file's name or the next that is free. False: not possible there.
bool continueInFolder(Session& session, const fs::path& folder, const fs::path& name, std::uint64_t& missing) {
  for (int number = 1; number < kNamesToTry; ++number) {
    const auto outcome = session.file.continueIn(folder / numberedName(name, number));
    missing = outcome.missing;
    if (outcome.error != EEXIST) return outcome.error == 0;
  }
  return false;
}

bool continueAnywhere(Session& session, std::uint64_t& missing) {
  const auto path = session.file.path();
  if (session.guard.name.empty()) session.guard.name = path.filename();
  const bool mediumFails = session.file.condition() == Condition::failing;
  const auto place = session.disk.status(path);
  const auto inOwnFolder = [&] {
    return makeFolders(path.parent_path()).empty() &&
           continueInFolder(session, path.parent_path(), session.guard.name, missing);
  };
  if (!mediumFails && inOwnFolder()) return true;
  const auto folders = otherFolders(session.setup.root);
  const bool elsewhere = std::any_of(folders.begin(), folders.end(), [&](const fs::path& folder) {
    const auto there = session.disk.status(folder);
    if (mediumFails && place && there && there->device == place->device) return false;
    return continueInFolder(session, folder, session.guard.name, missing);
  });
  // Where there is no better place, a medium that may come round.
  return elsewhere || (mediumFails && inOwnFolder());
}

void tellContinued(Session& session, const std::string& happened, std::uint64_t missing) {
  const auto& file = session.file;
  auto text = fmt::format("{}\r\nRecording goes on in\r\n{}", happened, file.path().string());
  if (missing > 0) {
    text += fmt::format("\r\n{} of the records before are not in there: look for the old file.",
                        missing / file.recordLength());
  } else {
    text += "\r\nwith everything recorded so far.";
  }
  tell(session, text);
}

void goOnElsewhere(Session& session) {
  auto& guard = session.guard;
  if (--guard.servicesToTry > 0) return;
  const auto condition = session.file.condition();
  const auto happened = whatHappened(condition, session.file.path());
  std::uint64_t missing = 0;
  if (continueAnywhere(session, missing)) {
    guard = {.name = guard.name, .movedFromFailing = guard.movedFromFailing || condition == Condition::failing};
    noteShortfall(session, happened + "; the survey went on in " + session.file.path().string());
    showFile(session);
    session.mirror.setOriginal(session.file.readingHandle());
    session.view.fileMoved(session.file.path());
    moveNotes(session, condition == Condition::failing);
    tellContinued(session, happened, missing);
    return;
  }
  guard.servicesToTry = std::min(1 << std::min(guard.tries, 10), kLongestRetry);
  if (guard.tries++ > 0) return;
  tell(session,
       happened + "\r\nThere is no place to go on: records wait in memory.\r\nMake room or put the card back.");
}

void guardMirror(Session& session) {
  for (const auto& news : session.mirror.takeNews()) {
    if (news.bad) {
      tell(session, news.text, Icon::exclamation);
    } else {
      showMessage(session, news.text);
    }
  }
}

// Where the records went, or an empty path.
fs::path writeElsewhere(const Session& session, const std::string& records) {
  const auto name = session.file.path().filename().string() + ".REST";
  for (const auto& folder : otherFolders(session.setup.root)) {
    for (int number = 1; number < kNamesToTry; ++number) {
      auto path = folder / (number == 1 ? name : fmt::format("{}{}", name, number));
      std::error_code error;
      if (fs::exists(fs::symlink_status(path, error))) continue;
      if (replaceFile(path, records).empty()) return path;
      break;
    }
  }
  return {};
}

void rescue(Session& session, const DataFile::Unwritten& rest) {
  const auto count = rest.records.size() / session.file.recordLength();
  const auto path = writeElsewhere(session, rest.records);
  const auto what =
      fmt::format("{}. The last {} records are not safely in {}.", rest.cause, count, session.file.path().string());
  const auto where = path.empty() ? std::string("There was no room for them elsewhere: they are lost.")
                                  : fmt::format("They were saved as {}.", path.string());
  noteShortfall(session, what + " " + where);
  tell(session, what + "\r\n" + where);
}

}  // namespace

void guardFile(Session& session) {
  auto& file = session.file;
  if (!file.isOpen()) return;
  file.service();
  guardMirror(session);
  const auto condition = file.condition();
  if (condition == Condition::lengthened && !std::exchange(session.guard.lengthenedTold, true)) {
    const auto happened = whatHappened(condition, file.path());
    noteShortfall(session, happened);
    tell(session, happened + "\r\nRecording goes on in it.");
  }
  if (condition == Condition::failing && session.guard.movedFromFailing) return;  // no place is better
  if (condition != Condition::sound && condition != Condition::lengthened) goOnElsewhere(session);
}

void beginMirror(Session& session) {
  if (session.setup.mirror.empty()) return;
  auto& file = session.file;
  session.mirror.begin(session.disk, session.setup.mirror, file.path(), file.recordLength(), file.recent());
  session.mirror.setOriginal(file.readingHandle());
  file.copyTo([&session](std::string_view records) { session.mirror.append(records); });
  file.setOtherCopy([&session](std::uint64_t offset, std::size_t size) { return session.mirror.readAt(offset, size); });
}

void closeDataFile(Session& session) {
  session.guard.servicesToTry = 0;
  guardFile(session);
  const auto lost = session.file.lostRecords();
  if (const auto rest = session.file.finish()) rescue(session, *rest);
  if (lost > 0) noteShortfall(session, fmt::format("{} records were lost: there was no place for them.", lost));
  guardMirror(session);
  if (auto why = session.mirror.finish(); !why.empty()) {
    tell(session, why, Icon::exclamation);
    noteShortfall(session, std::move(why));
  }
}

void noteShortfall(Session& session, std::string text) {
  for (auto at = text.find("\r\n"); at != std::string::npos; at = text.find("\r\n")) text.replace(at, 2, 1, ' ');
  session.shortfalls.push_back(std::move(text));
}

}  // namespace kalmira
