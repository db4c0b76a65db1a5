#include "console/event_loop.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace kalmira {
namespace {

// A command that long is none; what comes is dropped rather than kept without limit.
constexpr std::size_t kLongestLine = 65536;

}  // namespace

bool EventLoop::wait(std::uint32_t milliseconds) const {
  std::array<pollfd, 2> waits{{{.fd = signals_.descriptor(), .events = POLLIN, .revents = 0},
                               {.fd = read_input_ ? STDIN_FILENO : -1, .events = POLLIN, .revents = 0}}};
  return ::poll(waits.data(), waits.size(), static_cast<int>(milliseconds)) > 0 && waits[1].revents != 0;
}

void EventLoop::handle(bool input, const Handlers& handlers) {
  if (signals_.take()) handlers.onTerminate();
  if (input) readLines(handlers);
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
