#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace kalmira {

// Where a table goes: standard output or a file. A file is written under another name beside it and takes its
// own with finish, so that a full disk leaves no half table and an earlier one in place; a device or pipe is
// written as it is. The file is opened with the first byte, so nothing is left behind where nothing came out.
class OutputFile {
 public:
  OutputFile() = default;  // standard output
  explicit OutputFile(std::filesystem::path path) : path_(std::move(path)), standard_(false) {}
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();  // without finish: throws away what was written

  // False when it cannot be opened or written; problem() says why.
  bool write(std::string_view text);
  // Writes out all of it and closes. False as write. True when nothing was ever written.
  bool finish();
  const std::string& problem() const { return problem_; }
  std::string name() const { return standard_ ? "standard output" : path_.string(); }

 private:
  bool openFile();
  bool fail(int error);

  std::filesystem::path path_;
  std::filesystem::path written_path_;  // the other name; empty for what is written as it is
  bool standard_ = true;
  std::FILE* file_ = nullptr;
  std::string problem_;
};

}  // namespace kalmira
