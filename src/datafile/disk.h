#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

// The few disk operations a data file needs, behind an interface so that tests can have a disk that is full, slow or
// failing. Errors are errno values; 0 is success.
namespace kalmira {

struct WriteOutcome {
  std::size_t written = 0;
  int error = 0;
};

class DiskFile {
 public:
  DiskFile() = default;
  DiskFile(const DiskFile&) = delete;
  DiskFile& operator=(const DiskFile&) = delete;
  virtual ~DiskFile() = default;  // closes without a word when close() was not called

  // One write call at `offset`. Fewer bytes written than given, with or without an error, is a failed write.
  virtual WriteOutcome writeAt(std::uint64_t offset, std::string_view bytes) = 0;
  virtual int truncate(std::uint64_t size) = 0;
  // Commits what was written to the medium. May take long, and may run on another thread than the rest when it is
  // called on a duplicate.
  virtual int sync() = 0;
  virtual int close() = 0;
  virtual std::uint64_t size() = 0;
  // A second handle on the same open file, for the thread that commits; nullptr when there is none to be had.
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
  virtual OpenOutcome openExisting(const std::filesystem::path& path) = 0;  // read and write
};

// The machine's own file system.
class LocalDisk final : public Disk {
 public:
  OpenOutcome createNew(const std::filesystem::path& path) override;
  OpenOutcome openExisting(const std::filesystem::path& path) override;
};

// What an operator is told: "Disk full", or the system's word for the error.
std::string diskErrorText(int error);

}  // namespace kalmira
