#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <istream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "datafile/record_format.h"

namespace kalmira {

enum class FileErrorKind {
  none,
  cannotOpen,
  notAFile,      // a folder, a pipe, a device
  empty,         // no byte in it
  notADataFile,  // its first record names no instrument of the family
  readFailed,    // the medium failed, or the file has become shorter since it was opened
  left,          // whoever watches it did not want to go on
};

// What went wrong, as a kind and a sentence without the file's name.
struct FileError {
  FileErrorKind kind = FileErrorKind::none;
  std::string text;
};

struct Record {
  std::string_view bytes;    // the whole record with its line feed; valid until the reader's next call
  std::uint64_t offset = 0;  // of its first byte in the file
};

// Asked and told while a file is read; both may be missing.
struct ReadWatch {
  // The next bytes are read from `offset` on, some dozen kilobytes. False ends the reading.
  std::function<bool(std::uint64_t offset)> goOn = {};
  // Bytes that are no record were passed over. Damage that goes on is told in several pieces.
  std::function<void(std::uint64_t offset, std::uint64_t bytes)> damage = {};
};

// Walks over the records of a data file, forwards or backwards, from any record on, in a few dozen kilobytes
// of memory whatever the file's size. Records are found by their length, since a TESK2 record may hold line
// feeds. A file may be read while it grows. Not for use by two threads at once.
//
// Damage: what has no known tag, no line feed at its end or one in its middle is no record. It is skipped to the next
// place where records go on (bytes were lost or added) or else by one record (bytes were overwritten); skippedBytes
// counts it. Bytes after the last whole record are a tear: tornBytes.
class RecordReader {
 public:
  // Identifies the file by header 1 and stands behind it. Only regular files are opened.
  FileError open(const std::filesystem::path& path);
  // For what has no header 1, damaged or left out: `kind` is known otherwise, the reader stands at the first byte.
  FileError openWithoutHeader(const std::filesystem::path& path, Kind kind);
  // The same for any source of bytes. Only seek, previous and seekToEnd want one that can seek.
  FileError open(std::unique_ptr<std::istream> source);

  const Header1& header() const { return header_; }
  // Whether header 1 is there with all its columns; a torn or damaged one still names the kind.
  bool headerWhole() const { return header_whole_; }
  // Of all that the reader does from now on.
  void watch(ReadWatch watch) { watch_ = std::move(watch); }
  int recordLength() const { return static_cast<int>(record_length_); }

  // The record at the present place, and the place moves behind it. False at the end, and when reading failed: error
  // then has a kind.
  bool next(Record& record) {
    if (place_ >= sound_until_) return nextChecked(record);
    record = {{window_.data() + (place_ - window_start_), record_length_}, place_};
    place_ += record_length_;
    return true;
  }
  // The record before the present place, and the place moves to its start. False at the file's start (header 1 is the
  // last record given) and when reading failed.
  bool previous(Record& record);
  // `offset` of a record, or recordLength() for the first one behind header 1.
  void seek(std::uint64_t offset) {
    place_ = offset;
    sound_until_ = 0;
  }
  // Behind the last whole record.
  void seekToEnd();

  // The largest size, in bytes, that the file is known to have had.
  std::uint64_t size() const { return known_size_; }
  const FileError& error() const { return error_; }
  std::uint64_t skippedBytes() const { return skipped_; }
  // Bytes behind the last whole record, known once next or seekToEnd has reached the end.
  std::uint64_t tornBytes() const { return torn_; }

 private:
  std::string_view bytesAt(std::uint64_t offset, std::size_t count);
  void load(std::uint64_t offset, std::size_t count);
  FileError openSource(const std::filesystem::path& path);
  void noteSize();
  bool identify();
  bool nextChecked(Record& record);
  std::uint64_t soundFrom(std::uint64_t offset) const;
  std::size_t damageAhead(std::string_view bytes) const;
  std::size_t damageBehind(std::string_view bytes) const;

  std::unique_ptr<std::istream> source_;
  ReadWatch watch_;
  std::uint64_t source_place_ = 0;  // where the next read of the source starts
  std::uint64_t known_size_ = 0;    // the largest that the source is known to have had
  std::string window_;              // bytes of the file from window_start_ on
  std::uint64_t window_start_ = 0;
  std::uint64_t place_ = 0;
  std::uint64_t sound_until_ = 0;  // from place_ up to here the window holds records, already checked
  std::size_t record_length_ = 0;
  Header1 header_;
  bool header_whole_ = false;
  FileError error_;
  std::uint64_t skipped_ = 0;
  std::uint64_t torn_ = 0;
};

}  // namespace kalmira
