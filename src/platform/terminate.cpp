#include "platform/terminate.h"

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
volatile std::sig_atomic_t signalled = 0;

extern "C" void onSignal(int) {
  const int savedErrno = errno;
  signalled = 1;
  if (wakeFd >= 0) (void)!::write(wakeFd, "t", 1);
  errno = savedErrno;
}

void catchSignals(bool hangUp, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    if (hangUp || number != SIGHUP) ::sigaction(number, &action, nullptr);
  }
}

}  // namespace

TerminateSignals::TerminateSignals() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC) != 0)
    throw std::system_error(errno, std::generic_category(), "pipe");
  read_end_ = ends[0];
  write_end_ = ends[1];
  struct sigaction found {};
  ::sigaction(SIGHUP, nullptr, &found);
  catches_hang_up_ = found.sa_handler != SIG_IGN;
  signalled = 0;
  wakeFd = write_end_;
  catchSignals(catches_hang_up_, onSignal);
}

TerminateSignals::~TerminateSignals() {
  catchSignals(catches_hang_up_, SIG_DFL);
  wakeFd = -1;
  ::close(read_end_);
  ::close(write_end_);
}

bool TerminateSignals::wanted() const { return signalled != 0; }

bool TerminateSignals::take() {
  std::array<char, 64> drained{};
  while (::read(read_end_, drained.data(), drained.size()) > 0) {
  }
  const bool come = signalled != 0;
  signalled = 0;
  return come;
}

}  // namespace kalmira
