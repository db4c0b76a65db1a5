#include "export/spool.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>

namespace kalmira {
namespace {

constexpr std::size_t kBlock = 65536;

// Before each piece.
using Length = std::uint32_t;

}  // namespace

std::filesystem::path spoolFolder(const std::optional<std::filesystem::path>& out) {
  std::error_code error;
  if (out && (!std::filesystem::exists(*out, error) || std::filesystem::is_regular_file(*out, error))) {
    const auto target = std::filesystem::weakly_canonical(*out, error);
    return (error ? *out : target).parent_path();
  }
  const char* const chosen = std::getenv("TMPDIR");
  return chosen != nullptr && *chosen != '\0' ? chosen : "/var/tmp";
}

Spool::~Spool() {
  // Its bytes go with it: nothing to learn from a failure.
  if (fd_ >= 0) ::close(fd_);
}

bool Spool::add(std::string_view piece) {
  if (!problem_.empty()) return false;
  std::array<char, sizeof(Length)> head;
  const auto length = static_cast<Length>(piece.size());
  std::memcpy(head.data(), &length, head.size());
  waiting_.append(head.data(), head.size());
  waiting_ += piece;
  return waiting_.size() < kBlock || flush();
}

bool Spool::each(const std::function<bool(std::string_view)>& take) {
  if (!flush()) return false;
  std::string window;
  std::size_t at = 0;        // in the window, of the next piece
  std::uint64_t offset = 0;  // behind the window
  const auto has = [&](std::size_t count) {
    if (window.size() - at >= count) return true;
    window.erase(0, at);
    at = 0;
    const auto before = window.size();
    const auto wanted = std::max(kBlock, count - before);
    window.resize(before + wanted);
    const auto got = readAt(offset, window.data() + before, wanted);
    window.resize(before + got);
    offset += got;
    return window.size() >= count;
  };
  while (offset < size_ || at < window.size()) {
    Length length = 0;
    if (!has(sizeof length)) return fail(EIO);
    std::memcpy(&length, window.data() + at, sizeof length);
    at += sizeof length;
    if (!has(length)) return fail(EIO);
    if (!take(std::string_view(window).substr(at, length))) return false;
    at += length;
  }
  return true;
}

bool Spool::open() {
  auto name = ((folder_.empty() ? "." : folder_) / "kalmira-XXXXXX").string();
  fd_ = ::mkostemp(name.data(), O_CLOEXEC);
  if (fd_ < 0) return fail(errno);
  return ::unlink(name.c_str()) == 0 || fail(errno);
}

bool Spool::flush() {
  if (!problem_.empty() || (fd_ < 0 && !waiting_.empty() && !open())) return false;
  std::string_view rest = waiting_;
  while (!rest.empty()) {
    const auto written = ::write(fd_, rest.data(), rest.size());
    if (written < 0 && errno != EINTR) return fail(errno);
    if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
  }
  size_ += waiting_.size();
  waiting_.clear();
  return true;
}

// How many bytes were read; fewer than wanted only at the end, or when it failed.
std::size_t Spool::readAt(std::uint64_t offset, char* to, std::size_t count) {
  std::size_t got = 0;
  while (got < count && offset + got < size_) {
    const auto part = ::pread(fd_, to + got, count - got, static_cast<off_t>(offset + got));
    if (part < 0 && errno == EINTR) continue;
    if (part < 0) fail(errno);
    if (part <= 0) break;
    got += static_cast<std::size_t>(part);
  }
  return got;
}

bool Spool::fail(int error) {
  if (problem_.empty())
    problem_ = fmt::format("temporary file in {}: {}", folder_.empty() ? "." : folder_.string(),
                           std::generic_category().message(error));
  return false;
}

}  // namespace kalmira
