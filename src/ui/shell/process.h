#pragma once

#include <QSocketNotifier>
#include <QString>
#include <filesystem>
#include <functional>
#include <memory>

namespace kalmira {

// One program a storage root. The first to come holds it until it ends, and is told when another is started
// on the same root; the other learns that it is not the first, and ends. A first one that crashed holds
// nothing. Where the root cannot be written to, or is held from another machine, the program goes on alone.
class SingleInstance {
 public:
  // `raise` is called on this thread's event loop when another program was started. Waits up to two seconds
  // for an answer of the program that holds the root.
  SingleInstance(const std::filesystem::path& root, std::function<void()> raise);
  ~SingleInstance();
  SingleInstance(const SingleInstance&) = delete;
  SingleInstance& operator=(const SingleInstance&) = delete;

  // False: another program holds the root and has been asked to come to the front.
  bool isFirst() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

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
