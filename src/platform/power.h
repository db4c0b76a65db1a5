#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "platform/worker.h"

namespace kalmira {

// The charge of the machine's own battery in percent, 0 to 100; the mean when it has several. Nothing when it has none,
// or none that tells. `powerSupplies` is the kernel's power-supply folder. From any thread.
std::optional<int> batteryPercent(const std::filesystem::path& powerSupplies = "/sys/class/power_supply");

// How long those batteries will last at what is drawn from them now; nothing while they are charged, or when they do
// not tell. From any thread.
std::optional<double> batteryHours(const std::filesystem::path& powerSupplies = "/sys/class/power_supply");

// Asks the system's login service not to put the machine to sleep, by itself or when its lid is closed. Where there is
// no such service nothing happens, and that is no error. One thread at a time.
class IdleInhibitor {
 public:
  // `who` is named to the user by whatever lists inhibitors.
  explicit IdleInhibitor(std::string who) : who_(std::move(who)) {}
  ~IdleInhibitor();
  IdleInhibitor(const IdleInhibitor&) = delete;
  IdleInhibitor& operator=(const IdleInhibitor&) = delete;

  // Takes new locks, then lets go of those before them, so that there is no gap. Waits at most about a second for an
  // answer. True while idle sleep is held off.
  bool renew();

 private:
  void letGo();

  std::string who_;
  // Held as long as they are open. Two, for a system may refuse the one of the lid alone.
  int lock_ = -1;
  int lid_lock_ = -1;
};

// Keeps the machine awake for as long as it lives: calls `resetIdleTimer` at once and then every period, on a thread of
// its own. Its end waits for no more than a call that is just being made.
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
