#include "datafile/creation.h"

#include <fmt/format.h>

#include <cerrno>
#include <system_error>

#include "platform/files.h"

namespace kalmira {
namespace {

// Whether the name is taken, by the only question that counts: can it be opened as an existing file.
bool isTaken(const std::filesystem::path& path) {
  LocalDisk disk;
  return disk.openExisting(path).file != nullptr;
}

}  // namespace

std::filesystem::path dataFolderOf(const DataPlace& place) {
  return localPath(place.root, dataFolder(place.kind, place.storageClass));
}

std::string ProposeDataFileName(const DataPlace& place, const Clock& clock) {
  std::error_code ignored;  // a folder that cannot be made shows when the file is created
  std::filesystem::create_directories(dataFolderOf(place), ignored);
  const auto now = clock.localTime();
  const auto stem = fmt::format("{:02}{:02}{:02}", now.month, now.day, now.hour);
  const std::string extension(instrumentOf(place.kind).extension);
  std::string probed;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    auto name = stem + letter;
    probed = fmt::format("{}{}{}", dataFolderPrefix(place.kind, place.storageClass), name, extension);
    if (!isTaken(localPath(place.root, probed))) return name;
  }
  return probed;
}

std::filesystem::path dataFilePathFor(const DataPlace& place, std::string_view name) {
  if (name.find('\\') != std::string_view::npos) return localPath(place.root, name);
  return dataFolderOf(place) / (std::string(name) + std::string(instrumentOf(place.kind).extension));
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
    std::error_code unknown;
    int error = EEXIST;
    if (!std::filesystem::exists(*path, unknown)) {
      error = context.file.create(disk, *path, static_cast<std::size_t>(context.instrument.fileRecordLength));
    }
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
    std::filesystem::remove(*path, unknown);
    return {.how = How::failed, .cause = cause};
  }
}

}  // namespace kalmira
