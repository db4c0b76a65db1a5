#include "ui/shell/terminate_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace kalmira {
namespace {

// A signal handler can reach nothing but globals.
volatile std::sig_atomic_t wakeFd = -1;

extern "C" void onSignal(int) {
  const int savedErrno = errno;
  if (wakeFd >= 0) (void)!::write(wakeFd, "t", 1);
  errno = savedErrno;
}

void catchSignal(int number, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  ::sigaction(number, &action, nullptr);
}

bool hangUpIgnored() {
  struct sigaction found {};
  ::sigaction(SIGHUP, nullptr, &found);
  return found.sa_handler == SIG_IGN;
}

}  // namespace

TerminateSignals::TerminateSignals(std::function<void()> onTerminate)
    : catches_hang_up_(!hangUpIgnored()), on_terminate_(std::move(onTerminate)) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  wake_read_ = ends[0];
  wake_write_ = ends[1];
  notifier_ = std::make_unique<QSocketNotifier>(wake_read_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] {
    std::array<char, 64> drained{};
    while (::read(wake_read_, drained.data(), drained.size()) > 0) {
    }
    on_terminate_();
  });
  wakeFd = wake_write_;
  catchSignal(SIGINT, onSignal);
  catchSignal(SIGTERM, onSignal);
  if (catches_hang_up_) catchSignal(SIGHUP, onSignal);
}

TerminateSignals::~TerminateSignals() {
  catchSignal(SIGINT, SIG_DFL);
  catchSignal(SIGTERM, SIG_DFL);
  if (catches_hang_up_) catchSignal(SIGHUP, SIG_DFL);
  wakeFd = -1;
  notifier_.reset();
  ::close(wake_read_);
  ::close(wake_write_);
}

}  // namespace kalmira
