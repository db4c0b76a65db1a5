#include "platform/paths.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace kalmira {

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
  const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

std::string makeFolders(const std::filesystem::path& folder) {
  std::error_code error;
  if (folder.empty() || std::filesystem::is_directory(folder, error)) return {};
  if (auto problem = makeFolders(folder.parent_path()); !problem.empty()) return problem;
  std::filesystem::create_directory(folder, error);
  if (!std::filesystem::is_directory(folder, error)) {
    return error ? error.message() : std::generic_category().message(ENOTDIR);
  }
  syncFolder(folder.parent_path());
  return {};
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

}  // namespace kalmira
