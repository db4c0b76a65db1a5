#include "platform/files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

namespace kalmira {
namespace {

constexpr std::size_t kBlock = 65536;
constexpr int kNames = 100;
constexpr mode_t kPermissions = 0777;

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
  const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

std::string firstLineOf(const std::filesystem::path& path) {
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);
  return line;
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

bool OutputFile::write(std::string_view text) {
  if (!problem_.empty() || (fd_ < 0 && !open())) return false;
  waiting_ += text;
  return waiting_.size() < kBlock || flush();
}

std::optional<std::filesystem::path> OutputFile::forAnother() {
  if (!problem_.empty() || (fd_ < 0 && !open())) return std::nullopt;
  if (!written_path_.empty()) return written_path_;
  fail(ENOTSUP);
  return std::nullopt;
}

bool OutputFile::finish() {
  if (fd_ < 0) return problem_.empty();
  bool good = flush();
  if (standard_) return good;
  const bool beside = !written_path_.empty();
  // What is no file cannot be committed.
  if (good && beside && ::fsync(fd_) != 0) good = fail(errno);
  if (::close(std::exchange(fd_, -1)) != 0) good = fail(errno);
  if (good && beside) good = ::rename(written_path_.c_str(), path_.c_str()) == 0 || fail(errno);
  if (good && beside) {
    written_path_.clear();
    syncFolder(path_.parent_path());
  }
  abandon();
  return good;
}

void OutputFile::abandon() {
  // What it held is thrown away: nothing to learn from a failure.
  if (fd_ >= 0 && !standard_) ::close(std::exchange(fd_, -1));
  if (!written_path_.empty()) ::unlink(std::exchange(written_path_, {}).c_str());
}

bool OutputFile::open() {
  if (standard_) {
    fd_ = STDOUT_FILENO;
    return true;
  }
  struct stat status {};
  const bool exists = ::stat(path_.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode)) return fail(EISDIR);
  const bool special = exists && !S_ISREG(status.st_mode);
  if (special && special_ == Special::written) {
    fd_ = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC);
    return fd_ >= 0 || fail(errno);
  }
  std::error_code error;
  if (auto target = std::filesystem::weakly_canonical(path_, error); !error && !special) path_ = target;
  const mode_t permissions = exists && !special ? status.st_mode & kPermissions : 0666;
  for (int name = 1; fd_ < 0 && name <= kNames; ++name) {
    auto fresh = path_;
    fresh += name == 1 ? ".new" : fmt::format(".new{}", name);
    fd_ = ::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, permissions);
    if (fd_ < 0 && errno != EEXIST) return fail(errno);
    if (fd_ >= 0) written_path_ = fresh;
  }
  if (fd_ < 0) return fail(EEXIST);
  // The mask for new files took some of the older one's; a file system without permissions has none to lose.
  if (exists && !special) (void)!::fchmod(fd_, permissions);
  return true;
}

bool OutputFile::flush() {
  std::string_view rest = waiting_;
  while (!rest.empty()) {
    const auto written = ::write(fd_, rest.data(), rest.size());
    if (written < 0 && errno != EINTR) return fail(errno);
    if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
  }
  waiting_.clear();
  return true;
}

bool OutputFile::fail(int error) {
  if (problem_.empty()) problem_ = std::generic_category().message(error);
  return false;
}

std::string replaceFile(const std::filesystem::path& path, std::string_view content) {
  OutputFile file(path, OutputFile::Special::replaced);
  return file.write(content) && file.finish() ? "" : file.problem();
}

}  // namespace kalmira
