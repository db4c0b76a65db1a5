#include "link/keep_awake.h"

#include <utility>

namespace kalmira {

KeepAwakeThread::KeepAwakeThread(std::function<void()> resetIdleTimer, std::chrono::milliseconds period)
    : reset_idle_timer_(std::move(resetIdleTimer)), period_(period), keep_awake_thread_([this] { run(); }) {}

KeepAwakeThread::~KeepAwakeThread() {
  {
    const std::scoped_lock lock(mutex_);
    keep_awake_running_ = false;
  }
  changed_.notify_all();
  keep_awake_thread_.join();
}

void KeepAwakeThread::run() {
  std::unique_lock lock(mutex_);
  while (keep_awake_running_) {
    lock.unlock();
    reset_idle_timer_();
    lock.lock();
    changed_.wait_for(lock, period_, [this] { return !keep_awake_running_; });
  }
}

}  // namespace kalmira
