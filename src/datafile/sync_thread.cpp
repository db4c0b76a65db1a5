#include "datafile/sync_thread.h"

#include <cerrno>
#include <chrono>
#include <utility>

namespace kalmira {
namespace {
// Of the second that may be lost to a power cut; the rest is for the medium.
constexpr auto kCommitEvery = std::chrono::milliseconds(700);
}  // namespace

SyncThread::~SyncThread() {
  finish();
}

void SyncThread::watch(std::unique_ptr<DiskFile> handle) {
  const std::lock_guard lock(mutex_);
  handle_ = std::move(handle);
  ending_ = false;
  if (!thread_.joinable()) thread_ = std::thread(&SyncThread::run, this);
}

void SyncThread::written(std::uint64_t offset, bool now) {
  bool wake = false;
  {
    const std::lock_guard lock(mutex_);
    writtenTo_ = offset;
    wake = !dirty_ || (now && !hurry_);
    dirty_ = true;
    hurry_ = hurry_ || now;
  }
  if (wake) changed_.notify_one();
}

SyncThread::Progress SyncThread::progress() const {
  const std::lock_guard lock(mutex_);
  return progress_;
}

void SyncThread::rewriteFrom(std::uint64_t offset) {
  const std::lock_guard lock(mutex_);
  writtenTo_ = offset;
  progress_.failed = false;
  ++rewrites_;
}

int SyncThread::finish() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_one();
  if (thread_.joinable()) thread_.join();
  const std::lock_guard lock(mutex_);
  handle_.reset();
  return progress_.error;
}

void SyncThread::run() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return dirty_ || ending_; });
    if (!dirty_) return;  // ending, and nothing left to commit
    dirty_ = false;
    hurry_ = false;
    const auto handle = handle_;
    const auto upTo = writtenTo_;
    const auto rewrites = rewrites_;
    lock.unlock();
    const int error = handle ? handle->sync() : EMFILE;  // no second handle was to be had
    lock.lock();
    progress_.error = error;
    if (error != 0) {
      progress_.failed = true;
    } else if (!progress_.failed && rewrites == rewrites_) {
      progress_.syncedTo = upTo;
    }
    changed_.wait_for(lock, kCommitEvery, [this] { return ending_ || hurry_; });
  }
}

}  // namespace kalmira
