#pragma once

#include <string>

namespace kalmira {

// Asks the system's login service not to put the machine to sleep. Where there is no such service nothing
// happens, and that is no error. One thread at a time.
class IdleInhibitor {
 public:
  // `who` is named to the user by whatever lists inhibitors.
  explicit IdleInhibitor(std::string who) : who_(std::move(who)) {}
  ~IdleInhibitor();
  IdleInhibitor(const IdleInhibitor&) = delete;
  IdleInhibitor& operator=(const IdleInhibitor&) = delete;

  // Takes a new lock, then lets go of the one before it, so that there is no gap. Waits at most about a
  // second for an answer. True while a lock is held.
  bool renew();

 private:
  std::string who_;
  int lock_ = -1;  // held as long as it is open
};

}  // namespace kalmira
