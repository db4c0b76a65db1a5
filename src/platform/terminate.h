#pragma once

namespace kalmira {

// Catches the signals by which a machine asks a program to end (SIGINT, SIGTERM, and SIGHUP unless the program was
// started to outlive its terminal) for as long as it lives. One at a time in a process; std::system_error where there
// is no pipe to be had.
class TerminateSignals {
 public:
  TerminateSignals();
  ~TerminateSignals();
  TerminateSignals(const TerminateSignals&) = delete;
  TerminateSignals& operator=(const TerminateSignals&) = delete;

  // Readable from a signal on until take is called: for whoever waits for several things.
  int descriptor() const { return read_end_; }
  // Whether a signal has come that was not taken yet.
  bool wanted() const;
  // The same, and takes it.
  bool take();

 private:
  int read_end_ = -1;
  int write_end_ = -1;
  bool catches_hang_up_ = false;
};

}  // namespace kalmira
