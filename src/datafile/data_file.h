#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "datafile/disk.h"
#include "platform/worker.h"

namespace kalmira {

// Commits a growing file to its medium on a thread of its own, so that a memory card that stalls holds up nobody: what
// was written is committed within seven tenths of a second and the time the medium takes. All members are called on the
// writing thread and return at once, but for finish.
class SyncThread {
 public:
  struct Progress {
    std::uint64_t syncedTo = 0;  // everything before this offset is on the medium
    int error = 0;               // errno of the last commit; 0 when it went well
    bool failed = false;         // a commit has failed since the last rewrite()
  };

  ~SyncThread() { worker_.stop(); }

  // Commits through `handle` from now on.
  void watch(std::unique_ptr<DiskFile> handle);
  // The file has been written up to `offset`; with `now`, commit without waiting for company.
  void written(std::uint64_t offset, bool now);
  Progress progress() const;
  // What was written since the last good commit is being written again, from `offset` on. A failed commit may leave the
  // system believing that the lost bytes are safe, so no later commit counts until this is called.
  void rewriteFrom(std::uint64_t offset);
  // Commits what is left, waiting for it, and ends the thread. Returns the errno of the last commit.
  int finish();

 private:
  void run();

  Worker worker_{"commit"};
  std::shared_ptr<DiskFile> handle_;  // as the rest, under the worker's lock
  std::uint64_t writtenTo_ = 0;
  bool dirty_ = false;
  bool hurry_ = false;
  Progress progress_;
  unsigned rewrites_ = 0;
};

// The survey's open data file. Records are appended with one write call each, in the order given, and never half: a
// record that cannot be written waits in memory, with all that follow it, until there is room. What was written but not
// yet committed to the medium is kept too, and written again should the commit fail. All members are called on the
// session's thread; none waits for the medium but finish.
class DataFile {
 public:
  // Creates the file (it must not exist) with room for records of `recordLength` bytes.
  // Returns 0 or the errno.
  int create(Disk& disk, const std::filesystem::path& path, std::size_t recordLength);

  bool isOpen() const { return open_; }
  const std::filesystem::path& path() const { return path_; }
  std::size_t recordLength() const { return record_length_; }

  // One or more whole records. Whatever happens, they are written or wait.
  void append(std::string_view records);

  // Tries again what waits and looks after failed commits. Called at least twice a second while the file is open.
  void service();

  // Closes the file and opens it again at its end, asking for a commit of all that was written. A file that does not
  // open again is tried again by service; records wait meanwhile.
  void closeAndReopen();

  // Empty, or why records wait: "Disk full".
  const std::string& problem() const { return problem_; }
  std::size_t waitingRecords() const;
  std::uint64_t size() const { return written_; }  // bytes in the file

  // What finish could not write, and what it was told.
  struct Unwritten {
    std::string records;
    std::string cause;
  };
  // Writes what waits, commits, closes. On failure the records that are not in the file are handed back.
  std::optional<Unwritten> finish();

 private:
  int openAtEnd();
  void writeWaiting();
  void takeProgress();
  void rewriteUncommitted(int error);
  void fail(int error);

  Disk* disk_ = nullptr;
  std::filesystem::path path_;
  std::size_t record_length_ = 24;
  bool open_ = false;
  std::unique_ptr<DiskFile> file_;  // nullptr while it could not be opened again
  std::unique_ptr<SyncThread> sync_;
  // The file's content is what is committed, up to synced_, followed by tail_; of the tail everything up to the offset
  // written_ has been written.
  std::uint64_t synced_ = 0;
  std::uint64_t written_ = 0;
  std::string tail_;
  std::string problem_;
};

}  // namespace kalmira
