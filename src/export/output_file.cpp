#include "export/output_file.h"

#include <cerrno>
#include <system_error>

namespace kalmira {

OutputFile::~OutputFile() {
  if (file_ == nullptr || standard_) return;
  std::fclose(file_);  // what it held is thrown away: nothing to learn from a failure
  std::error_code ignored;
  if (!written_path_.empty()) std::filesystem::remove(written_path_, ignored);
}

bool OutputFile::write(std::string_view text) {
  if (file_ == nullptr && !openFile()) return false;
  errno = 0;
  return std::fwrite(text.data(), 1, text.size(), file_) == text.size() || fail(errno);
}

bool OutputFile::finish() {
  if (file_ == nullptr) return problem_.empty();
  errno = 0;
  if (std::fflush(file_) != 0) return fail(errno);
  if (standard_) return true;
  std::FILE* file = file_;
  file_ = nullptr;
  std::error_code error;
  if (std::fclose(file) != 0) {
    fail(errno);
    if (!written_path_.empty()) std::filesystem::remove(written_path_, error);
    return false;
  }
  if (written_path_.empty()) return true;
  std::filesystem::rename(written_path_, path_, error);
  if (!error) return true;
  fail(error.value());
  std::filesystem::remove(written_path_, error);
  return false;
}

bool OutputFile::openFile() {
  if (standard_) {
    file_ = stdout;
    return true;
  }
  std::error_code error;
  const auto status = std::filesystem::status(path_, error);
  if (std::filesystem::is_directory(status)) return fail(EISDIR);
  const bool plain = !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
  if (plain) {
    // A link keeps being one: what it points to is replaced.
    const auto target = std::filesystem::weakly_canonical(path_, error);
    if (!error) path_ = target;
    written_path_ = path_;
    written_path_ += ".part";
  }
  errno = 0;
  file_ = std::fopen((plain ? written_path_ : path_).string().c_str(), "wb");
  return file_ != nullptr || fail(errno);
}

bool OutputFile::fail(int error) {
  if (problem_.empty()) problem_ = std::generic_category().message(error != 0 ? error : EIO);
  return false;
}

}  // namespace kalmira
