#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include "platform/worker.h"

namespace kalmira {

// Keeps the machine awake for as long as it lives: calls `resetIdleTimer` at once and then every period, on a
// thread of its own. Its end waits for no more than a call that is just being made.
class KeepAwakeThread {
 public:
  static constexpr std::chrono::milliseconds kPeriod{59000};

  explicit KeepAwakeThread(std::function<void()> resetIdleTimer, std::chrono::milliseconds period = kPeriod) {
    worker_.start([this, reset = std::move(resetIdleTimer), period] {
      auto held = worker_.lock();
      while (!worker_.stopping()) {
        held.unlock();
        reset();
        held.lock();
        worker_.waitFor(held, period, [] { return false; });
      }
    });
  }

 private:
  Worker worker_{"keep-awake"};
};

}  // namespace kalmira
