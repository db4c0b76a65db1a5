#pragma once

#include <cstdint>
#include <memory>

#include "datafile/disk.h"
#include "platform/worker.h"

namespace kalmira {

// Commits a growing file to its medium on a thread of its own, so that a memory card that stalls holds up
// nobody: what was written is committed within seven tenths of a second and the time the medium takes. All
// members are called on the writing thread and return at once, but for finish.
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
  // What was written since the last good commit is being written again, from `offset` on. A failed commit may
  // leave the system believing that the lost bytes are safe, so none is tried again until this is called.
  void rewriteFrom(std::uint64_t offset);
  // Ends the thread without another commit. False when it hangs in one: then this object is never to be destroyed.
  bool abandon();
  // Commits what is left, waiting for it, and ends the thread. Returns the errno of the last commit.
  int finish();

 private:
  void run();

  Worker worker_{"commit"};
  std::shared_ptr<DiskFile> handle_;  // as the rest, under the worker's lock
  std::uint64_t writtenTo_ = 0;
  bool dirty_ = false;
  bool abandoned_ = false;
  bool hurry_ = false;
  bool resting_ = false;  // between two commits: a wake would be for nothing
  Progress progress_;
  unsigned rewrites_ = 0;
};

}  // namespace kalmira
