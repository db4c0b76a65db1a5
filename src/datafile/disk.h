#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// The few disk operations a data file needs, behind an interface so that tests can have a disk that is full,
// slow, failing or taken away. Errors are errno values; 0 is success.
namespace kalmira {

struct WriteOutcome {
  std::size_t written = 0;
  int error = 0;
};

// Which file it is, whatever it is called, and how it stands.
struct FileStatus {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t links = 1;  // names; 0 when it was deleted
  std::uint64_t size = 0;   // bytes
  bool isSameFile(const FileStatus& other) const { return device == other.device && inode == other.inode; }
};

class DiskFile {
 public:
  DiskFile() = default;
  DiskFile(const DiskFile&) = delete;
  DiskFile& operator=(const DiskFile&) = delete;
  virtual ~DiskFile() = default;  // closes without a word when close() was not called

  // One write call at `offset`. Fewer bytes written than given, with or without an error, is a failed write.
  virtual WriteOutcome writeAt(std::uint64_t offset, std::string_view bytes) = 0;
  // Fewer bytes than asked for: the file ends there, or its medium does not answer. Like sync, on any thread
  // when called on a duplicate.
  virtual std::string readAt(std::uint64_t offset, std::size_t size) = 0;
  virtual int truncate(std::uint64_t size) = 0;
  // Commits what was written to the medium. May take long, and may run on another thread than the rest when
  // it is called on a duplicate.
  virtual int sync() = 0;
  virtual int close() = 0;
  // Nothing when the medium does not answer.
  virtual std::optional<FileStatus> status() = 0;
  // A second handle on the same open file; nullptr when there is none to be had.
  virtual std::unique_ptr<DiskFile> duplicate() = 0;
};

struct OpenOutcome {
  std::unique_ptr<DiskFile> file;  // nullptr on failure
  int error = 0;
};

class Disk {
 public:
  Disk() = default;
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;
  virtual ~Disk() = default;
  virtual OpenOutcome createNew(const std::filesystem::path& path) = 0;     // fails when it exists
  virtual OpenOutcome openExisting(const std::filesystem::path& path) = 0;  // read and write; follows no link
  // Bytes that may still be written where `path` lies; nothing when that is not known.
  virtual std::optional<std::uint64_t> freeBytes(const std::filesystem::path& /*path*/) { return std::nullopt; }
  // Of the file that stands under the name now, links not followed; nothing when there is none.
  virtual std::optional<FileStatus> status(const std::filesystem::path& path) = 0;
};

// The machine's own file system.
class LocalDisk final : public Disk {
 public:
  OpenOutcome createNew(const std::filesystem::path& path) override;
  OpenOutcome openExisting(const std::filesystem::path& path) override;
  std::optional<std::uint64_t> freeBytes(const std::filesystem::path& path) override;
  std::optional<FileStatus> status(const std::filesystem::path& path) override;
};

// What an operator is told: "Disk full", or the system's word for the error.
std::string diskErrorText(int error);

}  // namespace kalmira
