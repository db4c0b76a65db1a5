#include "datafile/sync_thread.h"

#include <cerrno>
#include <chrono>
#include <utility>

namespace kalmira {
namespace {
// Of the second that may be lost to a power cut; the rest is for the medium.
constexpr auto kCommitEvery = std::chrono::milliseconds(700);
constexpr auto kAbandonWait = std::chrono::milliseconds(300);
}  // namespace

void SyncThread::watch(std::unique_ptr<DiskFile> handle) {
  worker_.change([&] { handle_ = std::move(handle); });
  worker_.start([this] { run(); });
}

void SyncThread::written(std::uint64_t offset, bool now) {
  bool wake = false;
  {
    const auto held = worker_.lock();
    writtenTo_ = offset;
    wake = (!dirty_ && !resting_) || (now && !hurry_);
    dirty_ = true;
    hurry_ = hurry_ || now;
  }
  if (wake) worker_.wake();
}

SyncThread::Progress SyncThread::progress() const {
  const auto held = worker_.lock();
  return progress_;
}

void SyncThread::rewriteFrom(std::uint64_t offset) {
  worker_.change([&] {
    writtenTo_ = offset;
    progress_.failed = false;
    dirty_ = true;
    ++rewrites_;
  });
}

bool SyncThread::abandon() {
  worker_.change([this] { abandoned_ = true; });
  return worker_.stopWithin(kAbandonWait);
}

int SyncThread::finish() {
  worker_.stop();
  const auto held = worker_.lock();
  handle_.reset();
  return progress_.error;
}

void SyncThread::run() {
  auto held = worker_.lock();
  while (worker_.wait(held, [this] { return dirty_ && !progress_.failed; }) && !abandoned_) {
    dirty_ = false;
    hurry_ = false;
    const auto handle = handle_;
    const auto upTo = writtenTo_;
    const auto rewrites = rewrites_;
    held.unlock();
    const int error = handle ? handle->sync() : EMFILE;  // no second handle was to be had
    held.lock();
    progress_.error = error;
    if (error != 0) {
      progress_.failed = true;
    } else if (rewrites == rewrites_) {
      progress_.syncedTo = upTo;
    }
    resting_ = true;
    worker_.waitFor(held, kCommitEvery, [this] { return hurry_; });
    resting_ = false;
  }
}

}  // namespace kalmira
