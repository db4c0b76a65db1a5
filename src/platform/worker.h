#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace kalmira {

// A thread that is woken, stopped and waited for, with the lock of what it shares. start, stop and their like are for
// its owner's thread alone; the rest may be called from any.
class Worker {
 public:
  using Lock = std::unique_lock<std::mutex>;

  // `name` is shown by the system's tools: at most 15 characters, which stay.
  explicit Worker(const char* name) : name_(name) {}
  ~Worker() { stop(); }

  // Runs `body` on a thread of its own; nothing when one has been started and not stopped. std::system_error where
  // there is no thread to be had.
  template <class Body>
  void start(Body body) {
    if (started()) return;
    stopping_ = false;
    ended_ = false;
    thread_ = std::thread([this, body = std::move(body)]() mutable {
      begin();
      body();
      end();
    });
  }
  bool started() const { return thread_.joinable(); }
  bool isThisThread() const { return thread_.get_id() == std::this_thread::get_id(); }

  // Has the body end soon, and wakes it.
  void requestStop();
  // The same, and waits for its end. What is to be done first is the body's matter. It can be started anew.
  void stop();
  // As stop; false when the body has not ended in time: then it is no longer waited for, and all that it uses must be
  // left standing.
  bool stopWithin(std::chrono::milliseconds time);
  const std::atomic<bool>& stopping() const { return stopping_; }

  Lock lock() const { return Lock(mutex_); }
  void wake() { changed_.notify_all(); }
  // Makes a change under the lock, and wakes whoever waits.
  template <class Change>
  void change(Change change) {
    {
      const auto held = lock();
      change();
    }
    wake();
  }
  // Waits for a change that makes `condition` true. False: it does not hold, but the body is to stop.
  template <class Condition>
  bool wait(Lock& held, Condition condition) {
    changed_.wait(held, [&] { return stopping_ || condition(); });
    return condition();
  }
  // The same, also false when the time is over.
  template <class Condition>
  bool waitFor(Lock& held, std::chrono::milliseconds time, Condition condition) {
    changed_.wait_for(held, time, [&] { return stopping_ || condition(); });
    return condition();
  }

 private:
  void begin() const;
  void end();

  const char* name_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::atomic<bool> stopping_{false};
  bool ended_ = false;
  std::thread thread_;
};

}  // namespace kalmira
