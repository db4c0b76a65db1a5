#include "datafile/disk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/files.h"

namespace kalmira {
namespace {

// Asked for without its times: once these are read, the system writes the file's inode with every record.
constexpr unsigned kWanted = STATX_INO | STATX_NLINK | STATX_SIZE;

std::optional<FileStatus> statusOf(int folder, const char* path, int flags) {
  struct statx found {};
  if (::statx(folder, path, flags, kWanted, &found) != 0) return std::nullopt;
  return FileStatus{.device = ::makedev(found.stx_dev_major, found.stx_dev_minor),
                    .inode = found.stx_ino,
                    .links = found.stx_nlink,
                    .size = found.stx_size};
}

class LocalFile final : public DiskFile {
 public:
  explicit LocalFile(int fd) : fd_(fd) {}
  LocalFile(const LocalFile&) = delete;
  LocalFile& operator=(const LocalFile&) = delete;
  ~LocalFile() override {
    if (fd_ >= 0) ::close(fd_);
  }

  WriteOutcome writeAt(std::uint64_t offset, std::string_view bytes) override {
    if (offset != position_) {
      if (::lseek(fd_, static_cast<off_t>(offset), SEEK_SET) < 0) return {.written = 0, .error = errno};
      position_ = offset;
    }
    ssize_t written = 0;
    do {
      written = ::write(fd_, bytes.data(), bytes.size());
    } while (written < 0 && errno == EINTR);
    if (written < 0) return {.written = 0, .error = errno};
    position_ += static_cast<std::uint64_t>(written);
    return {.written = static_cast<std::size_t>(written), .error = 0};
  }

  std::string readAt(std::uint64_t offset, std::size_t size) override {
    std::string bytes(size, '\0');
    std::size_t got = 0;
    while (got < size) {
      const auto count = ::pread(fd_, bytes.data() + got, size - got, static_cast<off_t>(offset + got));
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) break;
      got += static_cast<std::size_t>(count);
    }
    bytes.resize(got);
    return bytes;
  }

  int truncate(std::uint64_t size) override { return ::ftruncate(fd_, static_cast<off_t>(size)) == 0 ? 0 : errno; }

  int sync() override { return ::fdatasync(fd_) == 0 ? 0 : errno; }

  int close() override {
    const int fd = fd_;
    fd_ = -1;
    return fd < 0 || ::close(fd) == 0 ? 0 : errno;
  }

  std::optional<FileStatus> status() override { return statusOf(fd_, "", AT_EMPTY_PATH); }

  std::unique_ptr<DiskFile> duplicate() override {
    const int fd = ::fcntl(fd_, F_DUPFD_CLOEXEC, 0);
    return fd < 0 ? nullptr : std::make_unique<LocalFile>(fd);
  }

 private:
  int fd_;
  std::uint64_t position_ = 0;
};

OpenOutcome openFile(const std::filesystem::path& path, int flags) {
  const int fd = ::open(path.c_str(), flags | O_RDWR | O_CLOEXEC, 0666);
  if (fd < 0) return {.file = nullptr, .error = errno};
  // Else the system writes the inode whenever the file is looked after. Only for those who may, so unchecked.
  (void)::fcntl(fd, F_SETFL, O_NOATIME);
  return {.file = std::make_unique<LocalFile>(fd), .error = 0};
}

}  // namespace

OpenOutcome LocalDisk::createNew(const std::filesystem::path& path) {
  auto outcome = openFile(path, O_CREAT | O_EXCL);
  if (outcome.file) syncFolder(path.parent_path());
  return outcome;
}

OpenOutcome LocalDisk::openExisting(const std::filesystem::path& path) { return openFile(path, O_NOFOLLOW); }

std::optional<std::uint64_t> LocalDisk::freeBytes(const std::filesystem::path& path) {
  std::error_code error;
  const auto space = std::filesystem::space(path, error);
  if (error) return std::nullopt;
  return space.available;
}

std::optional<FileStatus> LocalDisk::status(const std::filesystem::path& path) {
  return statusOf(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW);
}

std::string diskErrorText(int error) {
  if (error == ENOSPC || error == EDQUOT || error == EFBIG) return "Disk full";
  return "Cannot write: " + std::generic_category().message(error);
}

}  // namespace kalmira
