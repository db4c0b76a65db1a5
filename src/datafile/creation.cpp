#include "datafile/creation.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <system_error>

#include "platform/files.h"

namespace kalmira {
namespace {

// Whatever stands under the name is in the way: a file, a folder, a link that leads nowhere.
bool isTaken(const std::filesystem::path& path) {
  std::error_code unknown;
  return std::filesystem::exists(std::filesystem::symlink_status(path, unknown));
}

bool isTakenInEither(const DataPlace& place, const std::string& fileName) {
  return isTaken(dataFolderOf(place) / fileName) || (!place.mirror.empty() && isTaken(place.mirror / fileName));
}

std::string hourStem(const Clock& clock) {
  const auto now = clock.localTime();
  return fmt::format("{:02}{:02}{:02}", now.month, now.day, now.hour);
}

std::optional<std::string> freeLetter(const DataPlace& place, const std::string& stem) {
  // A folder that cannot be made shows when the file is created.
  (void)makeFolders(dataFolderOf(place));
  const std::string extension(instrumentOf(place.kind).extension);
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (!isTakenInEither(place, stem + letter + extension)) return stem + letter;
  }
  return std::nullopt;
}

}  // namespace

std::filesystem::path dataFolderOf(const DataPlace& place) {
  return localPath(place.root, dataFolder(place.kind, place.storageClass));
}

std::string ProposeDataFileName(const DataPlace& place, const Clock& clock) {
  const auto stem = hourStem(clock);
  if (auto name = freeLetter(place, stem)) return *name;
  return fmt::format("{}{}Z{}", dataFolderPrefix(place.kind, place.storageClass), stem,
                     instrumentOf(place.kind).extension);
}

std::string unattendedName(const DataPlace& place, const Clock& clock) {
  const auto stem = hourStem(clock);
  if (auto name = freeLetter(place, stem)) return *name;
  const std::string extension(instrumentOf(place.kind).extension);
  for (int number = 2;; ++number) {
    auto name = fmt::format("{}Z{}", stem, number);
    if (!isTakenInEither(place, name + extension)) return name;
  }
}

std::string numberedName(const std::filesystem::path& file, int number) {
  if (number == 1) return file.filename().string();
  return fmt::format("{}{}{}", file.stem().string(), number, file.extension().string());
}

std::filesystem::path dataFilePathFor(const DataPlace& place, std::string_view name) {
  if (name.find('\\') != std::string_view::npos) return localPath(place.root, name);
  return dataFolderOf(place) / (std::string(name) + std::string(instrumentOf(place.kind).extension));
}

std::string bareName(const std::string& name, std::string_view extension) {
  if (name.size() <= extension.size()) return name;
  const auto ending = std::string_view(name).substr(name.size() - extension.size());
  const bool same = std::equal(ending.begin(), ending.end(), extension.begin(),
                               [](unsigned char a, unsigned char b) { return std::toupper(a) == std::toupper(b); });
  return same ? name.substr(0, name.size() - extension.size()) : name;
}

std::string baseNameOf(const std::filesystem::path& path) {
  const auto name = path.filename().string();
  return name.substr(0, name.find('.'));
}

CreateOutcome CreateDataFile(const DataPlace& place, const WriterContext& context, Disk& disk,
                             const ChooseDataFile& choose, const std::function<void()>& warnExists) {
  using How = CreateOutcome::How;
  while (true) {
    const auto path = choose(ProposeDataFileName(place, context.clock));
    if (!path) return {.how = How::cancelled, .cause = {}};
    const int error = context.file.create(disk, *path, static_cast<std::size_t>(context.instrument.fileRecordLength));
    if (error == EEXIST) {
      warnExists();
      continue;
    }
    if (error != 0) return {.how = How::failed, .cause = diskErrorText(error)};

    WriteFileHeader(context, baseNameOf(*path));
    WriteLineBlock(context);
    WriteTimeMark(context);
    context.file.closeAndReopen();
    if (context.file.problem().empty()) return {.how = How::created, .cause = {}};
    // A file without its opening records is of no use to anyone; the name becomes free again.
    const auto cause = context.file.problem();
    context.file.finish();
    std::error_code stays;
    std::filesystem::remove(*path, stays);
    return {.how = How::failed, .cause = cause};
  }
}

}  // namespace kalmira
