#include "platform/paths.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>

namespace kalmira {
namespace {

std::string errorText(int error) {
  return std::generic_category().message(error);
}

// Writes all of `content`; returns 0 or the error number.
int writeAll(int fd, std::string_view content) {
  while (!content.empty()) {
    const auto written = ::write(fd, content.data(), content.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

}  // namespace

std::filesystem::path localPath(const std::filesystem::path& root, std::string_view cataloguePath) {
  std::filesystem::path path = root;
  while (!cataloguePath.empty()) {
    const auto end = cataloguePath.find('\\');
    const auto part = cataloguePath.substr(0, end);
    if (!part.empty()) path /= part;
    if (end == std::string_view::npos) break;
    cataloguePath.remove_prefix(end + 1);
  }
  return path;
}

void syncFolder(const std::filesystem::path& folder) {
  const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

std::optional<std::string> readSmallFile(const std::filesystem::path& path) {
  constexpr off_t kLargest = 1 << 20;
  // Without waiting: a pipe under the file's name must not hold anybody up.
  const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  struct stat status {};
  bool good = ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= kLargest;
  std::string content;
  std::array<char, 4096> block{};
  while (good) {
    const auto count = ::read(fd, block.data(), block.size());
    if (count == 0) break;
    if (count < 0 && errno == EINTR) continue;
    good = count > 0 && content.size() <= static_cast<std::size_t>(kLargest);
    if (good) content.append(block.data(), static_cast<std::size_t>(count));
  }
  ::close(fd);
  return good ? std::optional(content) : std::nullopt;
}

std::string replaceFile(const std::filesystem::path& path, std::string_view content) {
  std::filesystem::path fresh = path;
  fresh += ".new";
  const int fd = ::open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd < 0) return errorText(errno);
  int error = writeAll(fd, content);
  if (error == 0 && ::fsync(fd) != 0) error = errno;
  if (::close(fd) != 0 && error == 0) error = errno;
  if (error == 0 && std::rename(fresh.c_str(), path.c_str()) != 0) error = errno;
  if (error == 0) {
    syncFolder(path.parent_path());
    return {};
  }
  ::unlink(fresh.c_str());
  return errorText(error);
}

}  // namespace kalmira
