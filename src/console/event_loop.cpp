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

EventLoop::Happened EventLoop::wait(std::uint32_t milliseconds) const {
  std::array<pollfd, 2> waits{{{.fd = signals_.descriptor(), .events = POLLIN, .revents = 0},
                               {.fd = read_input_ ? STDIN_FILENO : -1, .events = POLLIN, .revents = 0}}};
  // When a signal comes while it waits, poll fails; what the handler wrote is found the next time, at once.
  if (::poll(waits.data(), waits.size(), static_cast<int>(milliseconds)) <= 0) return {};
  return {.input = waits[1].revents != 0, .signal = waits[0].revents != 0};
}

void EventLoop::handle(const Happened& happened, const Handlers& handlers) {
  if (happened.signal && signals_.take()) handlers.onTerminate();
  if (happened.input) readLines(handlers);
}

void EventLoop::readLines(const Handlers& handlers) {
  std::array<char, 4096> block{};
  const auto count = ::read(STDIN_FILENO, block.data(), block.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (count > 0) return lines_.take({block.data(), static_cast<std::size_t>(count)}, handlers.input);
  lines_.end(handlers.input);
  read_input_ = false;
  handlers.onEndOfInput();
}

void InputLines::take(std::string_view bytes, const Handlers& handlers) {
  started_ += bytes;
  std::size_t begin = 0;
  for (auto end = started_.find('\n'); end != std::string::npos; end = started_.find('\n', begin)) {
    auto line = started_.substr(begin, end - begin);
    begin = end + 1;
    if (line.ends_with('\r')) line.pop_back();
    if (!skipping_) handlers.onLine(line);
    skipping_ = false;
  }
  started_.erase(0, begin);
  if (started_.size() <= kLongestLine) return;
  started_.clear();
  if (!skipping_) handlers.onLongLine();
  skipping_ = true;
}

void InputLines::end(const Handlers& handlers) {
  if (!started_.empty()) take("\n", handlers);
}

}  // namespace kalmira
