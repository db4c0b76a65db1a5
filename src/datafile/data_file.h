#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "datafile/disk.h"
#include "datafile/opening.h"
#include "datafile/sync_thread.h"

namespace kalmira {

// A survey's stream of records and the file it goes into. Records are appended with one write call each, in
// the order given, and never half: a record that cannot be written waits in memory, with all that follow it.
// What was written but not yet committed to the medium is kept too, and written again should the commit fail;
// and of what is committed the last megabytes, for a file that is cut or taken away. The file is the open one,
// by device and inode: what stands under its name may be another's, and is never written to.
// All members are called on one thread; none waits for the medium but finish and continueIn.
class DataFile {
 public:
  DataFile() = default;
  ~DataFile() { leaveFile(); }
  DataFile(const DataFile&) = delete;
  DataFile& operator=(const DataFile&) = delete;

  // Begins a stream that has no file yet: what is appended waits for continueIn.
  void begin(Disk& disk, std::size_t recordLength);
  // Begins a stream in a new file, which must not exist. Returns 0 or the errno.
  int create(Disk& disk, const std::filesystem::path& path, std::size_t recordLength);

  bool isOpen() const { return open_; }
  bool hasFile() const { return file_ != nullptr; }
  const std::filesystem::path& path() const { return path_; }
  std::size_t recordLength() const { return record_length_; }

  // One or more whole records. Whatever happens, they are written or wait.
  void append(std::string_view records);
  // Everything that is appended from now on is handed on, too.
  void copyTo(std::function<void(std::string_view)> follower) { follower_ = std::move(follower); }

  // Tries again what waits, looks after failed commits and compares the file under its name with the open
  // one. Called at least twice a second while the stream is open.
  void service();

  // Asks for a commit of all that was written, through a file opened anew where that can be had.
  void closeAndReopen();

  // How the file was found. But for the first two, nothing is written until continueIn has a place for it.
  enum class Condition {
    sound,
    lengthened,   // somebody added to it; his bytes are left, and overwritten as the survey grows
    cut,          // somebody cut it short
    overwritten,  // it is ours, but what it holds is not
    gone,         // deleted or moved; another may stand under its name
    failing,      // its medium does not answer, or has not committed anything for long
  };
  Condition condition() const { return condition_; }

  struct Continued {
    int error = 0;              // errno; the stream then goes on waiting
    std::uint64_t missing = 0;  // bytes recorded earlier that nothing gives any more
  };
  // Goes on in a new file at `path` that begins with everything recorded so far, as far as the file so far,
  // the other copy and memory give it. A file that stands there is used when it is one that this stream was
  // in, as it left it; any other gives EEXIST.
  Continued continueIn(const std::filesystem::path& path);
  // Another copy of this very stream, read when the file itself gives nothing: bytes from an offset, fewer at
  // its end. Called on this thread.
  void setOtherCopy(std::function<std::string(std::uint64_t offset, std::size_t size)> other) {
    other_copy_ = std::move(other);
  }
  // A handle for reading the file elsewhere; nullptr when there is none, or when the offsets in the file are
  // no longer those of the stream.
  std::unique_ptr<DiskFile> readingHandle() const;
  // The records in memory: of a stream just begun, all.
  const std::string& recent() const { return memory_; }

  // Empty, or why records wait: "Disk full".
  const std::string& problem() const { return problem_; }
  std::size_t waitingRecords() const;
  std::uint64_t size() const { return written_; }              // bytes in the file
  std::uint64_t lostRecords() const { return lost_records_; }  // for which even memory had no room

  // What finish could not write, and what it was told.
  struct Unwritten {
    std::string records;
    std::string cause;
  };
  // Writes what waits, commits, closes. On failure the records that are not in the file are handed back.
  std::optional<Unwritten> finish();

 private:
  std::uint64_t end() const { return memory_start_ + memory_.size(); }
  bool isWritable() const;
  Condition look();
  bool readsBack();
  void writeWaiting();
  bool writeSome();
  void takeProgress();
  void rewriteUncommitted(int error);
  void fail(int error);
  void trimMemory();
  std::string readOlder();
  OpenOutcome openOwn(const std::filesystem::path& path);
  void enter(std::unique_ptr<DiskFile> file, const std::filesystem::path& path);
  void leaveFile();

  Disk* disk_ = nullptr;
  std::filesystem::path path_;
  std::size_t record_length_ = 24;
  bool open_ = false;
  std::unique_ptr<DiskFile> file_;
  std::unique_ptr<SyncThread> sync_;
  std::vector<FileStatus> own_files_;  // this stream's, present and former
  std::function<void(std::string_view)> follower_;
  std::function<std::string(std::uint64_t, std::size_t)> other_copy_;

  // The stream: what opening_ sums up, up to the offset memory_start_, then memory_. Of it the file holds what
  // is before written_, safely what is before synced_; none of the two is before memory_start_.
  Opening opening_;
  std::uint64_t memory_start_ = 0;
  std::string memory_;
  std::uint64_t synced_ = 0;
  std::uint64_t written_ = 0;
  std::uint64_t reached_ = 0;  // how far the file has ever been written
  bool shifted_ = false;       // something is missing: offsets are not those of earlier files
  std::uint64_t lost_records_ = 0;

  Condition condition_ = Condition::sound;
  bool read_back_failed_ = false;  // last time
  int failed_commits_ = 0;         // in a row
  int services_to_retry_ = 0;
  std::string problem_;
};

}  // namespace kalmira
