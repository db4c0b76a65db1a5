#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace kalmira {

// Keeps the machine awake for as long as it lives: calls `resetIdleTimer` at once and then every period, on a
// thread of its own. Its end waits for no more than a call that is just being made.
class KeepAwakeThread {
 public:
  static constexpr std::chrono::milliseconds kPeriod{59000};

  explicit KeepAwakeThread(std::function<void()> resetIdleTimer, std::chrono::milliseconds period = kPeriod);
  ~KeepAwakeThread();
  KeepAwakeThread(const KeepAwakeThread&) = delete;
  KeepAwakeThread& operator=(const KeepAwakeThread&) = delete;

 private:
  void run();

  std::function<void()> reset_idle_timer_;
  std::chrono::milliseconds period_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool keep_awake_running_ = true;
  std::thread keep_awake_thread_;  // last: it uses all of the above
};

}  // namespace kalmira
