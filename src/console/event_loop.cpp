#include "console/event_loop.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace kalmira {
namespace {

// A signal handler can reach nothing but globals.
volatile std::sig_atomic_t terminateFd = -1;
volatile std::sig_atomic_t terminateSignalled = 0;

extern "C" void onTerminateSignal(int) {
  const int savedErrno = errno;
  terminateSignalled = 1;
  if (terminateFd >= 0) (void)!::write(terminateFd, "t", 1);
  errno = savedErrno;
}

// A command that long is none; what comes is dropped rather than kept without limit.
constexpr std::size_t kLongestLine = 65536;

void catchSignal(int number, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  ::sigaction(number, &action, nullptr);
}

}  // namespace

EventLoop::EventLoop(bool readInput) : read_input_(readInput) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  wake_read_ = ends[0];
  wake_write_ = ends[1];
  for (const int fd : ends) {
    ::fcntl(fd, F_SETFL, O_NONBLOCK);
    ::fcntl(fd, F_SETFD, FD_CLOEXEC);
  }
  terminateSignalled = 0;
  terminateFd = wake_write_;
  catchSignal(SIGINT, onTerminateSignal);
  catchSignal(SIGTERM, onTerminateSignal);
  // A program started to outlive its terminal has hang-ups ignored.
  struct sigaction found {};
  ::sigaction(SIGHUP, nullptr, &found);
  catches_hang_up_ = found.sa_handler != SIG_IGN;
  if (catches_hang_up_) catchSignal(SIGHUP, onTerminateSignal);
}

bool EventLoop::terminateWanted() const { return terminateSignalled != 0; }

EventLoop::~EventLoop() {
  catchSignal(SIGINT, SIG_DFL);
  catchSignal(SIGTERM, SIG_DFL);
  if (catches_hang_up_) catchSignal(SIGHUP, SIG_DFL);
  terminateFd = -1;
  ::close(wake_read_);
  ::close(wake_write_);
}

EventLoop::Ready EventLoop::wait(std::uint32_t milliseconds) const {
  std::array<pollfd, 2> waits{{{.fd = wake_read_, .events = POLLIN, .revents = 0},
                               {.fd = read_input_ ? STDIN_FILENO : -1, .events = POLLIN, .revents = 0}}};
  if (::poll(waits.data(), waits.size(), static_cast<int>(milliseconds)) <= 0) return {};
  return {.woken = waits[0].revents != 0, .input = waits[1].revents != 0};
}

void EventLoop::handle(Ready ready, const Handlers& handlers) {
  if (ready.woken) {
    std::array<char, 64> drained{};
    while (::read(wake_read_, drained.data(), drained.size()) == static_cast<ssize_t>(drained.size())) {
    }
  }
  if (terminateSignalled != 0) {
    terminateSignalled = 0;
    handlers.onTerminate();
  }
  if (ready.input) readLines(handlers);
}

void EventLoop::readLines(const Handlers& handlers) {
  std::array<char, 4096> block{};
  const auto count = ::read(STDIN_FILENO, block.data(), block.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  const bool ended = count <= 0;
  if (!ended) input_.append(block.data(), static_cast<std::size_t>(count));
  if (ended && !input_.empty()) input_ += '\n';
  for (auto end = input_.find('\n'); end != std::string::npos; end = input_.find('\n')) {
    auto line = input_.substr(0, end);
    input_.erase(0, end + 1);
    if (line.ends_with('\r')) line.pop_back();
    if (!skipping_) handlers.onLine(line);
    skipping_ = false;
  }
  if (input_.size() > kLongestLine) {
    input_.clear();
    if (!skipping_) handlers.onLongLine();
    skipping_ = true;
  }
  if (!ended) return;
  read_input_ = false;
  handlers.onEndOfInput();
}

}  // namespace kalmira
