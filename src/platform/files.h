#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kalmira {

// Turns a catalogue path ("Storage\KALINI\ORLA.INI", "\KALINI", "C_DRIVE\DATAORLA\") into a path of this machine below
// the storage root. A leading backslash stands for the root itself.
std::filesystem::path localPath(const std::filesystem::path& root, std::string_view cataloguePath);

// Commits the folder's entries (none: the working folder's) to the disk, so that a file just made in it survives a
// power cut. Where a file system cannot do that, nothing happens.
void syncFolder(const std::filesystem::path& folder);

// The first line of a file, such as the kernel makes; empty when it cannot be read.
std::string firstLineOf(const std::filesystem::path& path);

// Makes a folder and those above it, and commits each that is new into the one above. Empty, or the system's word for
// why it could not be made.
std::string makeFolders(const std::filesystem::path& folder);

// The content of a regular file of at most a megabyte; nothing when there is none such or it cannot be read.
std::optional<std::string> readSmallFile(const std::filesystem::path& path);

// Where a table goes: standard output or a file. A file is written under a free name beside it (".new" behind its own),
// which no link can lead elsewhere, committed to the disk and renamed with finish: a full disk or a power cut leaves
// the older one in place, or the new one whole, with the older one's permissions. A symbolic link to a file stays one:
// what it points to is replaced. The file is opened with the first write, so nothing is left behind where nothing came
// out.
class OutputFile {
 public:
  // What becomes of a device, a pipe or the like under the name: written as it is, or replaced by a file.
  enum class Special { written, replaced };

  OutputFile() = default;  // standard output
  explicit OutputFile(std::filesystem::path path, Special special = Special::written)
      : path_(std::move(path)), special_(special), standard_(false) {}
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile() { abandon(); }

  // False when it cannot be opened or written; problem() says why, also when it comes out only later.
  bool write(std::string_view text);
  // In place of write: the empty file, for a library that writes to names. Nothing where there is none (standard
  // output, a device) or it cannot be made.
  std::optional<std::filesystem::path> forAnother();
  // Writes out all of it, commits and closes. False as write. True when nothing was ever written.
  bool finish();
  // Throws away what was written, where that is possible; after finish nothing.
  void abandon();
  const std::string& problem() const { return problem_; }
  std::string name() const { return standard_ ? "standard output" : path_.string(); }

 private:
  bool open();
  bool flush();
  bool fail(int error);

  std::filesystem::path path_;
  std::filesystem::path written_path_;  // the other name; empty for what is written as it is
  Special special_ = Special::written;
  bool standard_ = true;
  int fd_ = -1;
  std::string waiting_;
  std::string problem_;
};

// Makes `content` the whole of the file at `path`, in the same way; what is no file is replaced. Returns an empty text
// on success, else what went wrong.
std::string replaceFile(const std::filesystem::path& path, std::string_view content);

}  // namespace kalmira
