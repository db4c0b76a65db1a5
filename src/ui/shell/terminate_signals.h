#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace kalmira {

// Catches the signals by which a machine asks a program to end (SIGINT, SIGTERM, and SIGHUP unless the
// program was started to outlive its terminal) for as long as it lives. One at a time in a process.
class TerminateSignals {
 public:
  // `onTerminate` is called on this thread's event loop.
  explicit TerminateSignals(std::function<void()> onTerminate);
  ~TerminateSignals();
  TerminateSignals(const TerminateSignals&) = delete;
  TerminateSignals& operator=(const TerminateSignals&) = delete;

 private:
  int wake_read_ = -1;
  int wake_write_ = -1;
  bool catches_hang_up_ = false;
  std::function<void()> on_terminate_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace kalmira
