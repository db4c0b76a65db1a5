#pragma once

#include <string>

namespace kalmira {

// Asks the system's login service not to put the machine to sleep, by itself or when its lid is closed. Where
// there is no such service nothing happens, and that is no error. One thread at a time.
class IdleInhibitor {
 public:
  // `who` is named to the user by whatever lists inhibitors.
  explicit IdleInhibitor(std::string who) : who_(std::move(who)) {}
  ~IdleInhibitor();
  IdleInhibitor(const IdleInhibitor&) = delete;
  IdleInhibitor& operator=(const IdleInhibitor&) = delete;

  // Takes new locks, then lets go of those before them, so that there is no gap. Waits at most about a second
  // for an answer. True while idle sleep is held off.
  bool renew();

 private:
  void letGo();

  std::string who_;
  // Held as long as they are open. Two, for a system may refuse the one of the lid alone.
  int lock_ = -1;
  int lid_lock_ = -1;
};

}  // namespace kalmira
