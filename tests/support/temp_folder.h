#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace kalmira {

// A folder that is gone with its test.
class TempFolder {
 public:
  TempFolder() {
    auto pattern = (std::filesystem::temp_directory_path() / "kalmira-test-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// As long as it lives, no file of this process grows beyond `bytes`: a full disk.
class SmallFiles {
 public:
  explicit SmallFiles(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit small{.rlim_cur = bytes, .rlim_max = before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
  }
  ~SmallFiles() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    (void)std::signal(SIGXFSZ, handler_);
  }
  SmallFiles(const SmallFiles&) = delete;
  SmallFiles& operator=(const SmallFiles&) = delete;

 private:
  void (*handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
  rlimit before_{};
};

inline std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeFile(const std::filesystem::path& path, const std::string& content) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << content;
}

}  // namespace kalmira
