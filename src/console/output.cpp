#include "console/output.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string_view>
#include <utility>

#include "logging/session_link.h"

namespace kalmira {
namespace {

constexpr std::size_t kLongestQueue = 20000;
constexpr std::string_view kPanelText = "show ";
constexpr auto kFinishWait = std::chrono::seconds(2);
constexpr std::string_view kClearLine = "\r\033[K";

// Columns of the terminal; a line as wide as that would wrap.
std::size_t terminalWidth(int fd) {
  winsize size{};
  return ::ioctl(fd, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col : 80;
}

}  // namespace

void ConsoleView::notice(std::string_view lines) {
  while (!lines.empty()) {
    const auto end = lines.find("\r\n");
    const auto line = lines.substr(0, end);
    if (!line.empty()) {
      if (print_before_) {
        print_before_(std::string(line));
      } else {
        print_(fmt::format("notice {}", line));
      }
    }
    lines.remove_prefix(end == std::string_view::npos ? lines.size() : end + 2);
  }
}

bool ConsoleView::isNewOfSilence(std::string_view text) {
  if (!silences_once_) return true;
  if (std::ranges::find(told_of_silence_, text) != told_of_silence_.end()) return false;
  told_of_silence_.emplace_back(text);
  return true;
}

void ConsoleView::show(PanelField field, std::string_view text) {
  if (field == PanelField::message && (text != kPleaseWaitText || isNewOfSilence(text))) notice(text);
  texts_[static_cast<std::size_t>(field)] = text;
  if (show_texts_) print_(fmt::format("show {} {}", panelFieldName(field), text));
}

bool ConsoleView::ask(Question question, const Message& message) {
  const bool yes = question != Question::linkLost || !exit_on_silence_;
  if (question == Question::exitLogging) return yes;  // whoever said exit has meant it
  if (question != Question::linkLost || !yes || isNewOfSilence(message.title)) {
    notice(message.title);
    notice(message.text);
    notice(yes ? "answered YES" : "answered NO");
  }
  if (question == Question::linkLost && !yes) link_given_up_ = true;
  return yes;
}

void ConsoleView::tell(const Message& message) { notice(message.text); }

OutputThread::OutputThread(int outputFd, int statusFd) : output_fd_(outputFd), status_fd_(statusFd) {
  worker_.start([this] { run(); });
}

void OutputThread::line(std::string text) {
  worker_.change([&] {
    if (queue_.size() >= kLongestQueue && text.starts_with(kPanelText)) {
      ++dropped_;
      return;
    }
    if (dropped_ > 0) {
      queue_.push_back({.status = false, .text = fmt::format("notice {} lines were not printed", dropped_)});
      dropped_ = 0;
    }
    queue_.push_back({.status = false, .text = std::move(text)});
  });
}

void OutputThread::status(std::string text) {
  worker_.change([&] {
    if (!queue_.empty() && queue_.back().status) queue_.pop_back();
    queue_.push_back({.status = true, .text = std::move(text)});
  });
}

bool OutputThread::finish() {
  if (!worker_.started()) return true;
  {
    auto held = worker_.lock();
    worker_.waitFor(held, kFinishWait, [this] { return queue_.empty() && idle_; });
  }
  return worker_.stopWithin(kFinishWait);
}

void OutputThread::run() {
  auto held = worker_.lock();
  while (true) {
    idle_ = true;
    if (queue_.empty()) worker_.wake();
    worker_.wait(held, [this] { return !queue_.empty(); });
    if (worker_.stopping()) break;
    idle_ = false;
    const Item item = std::move(queue_.front());
    queue_.pop_front();
    held.unlock();
    print(item);
    held.lock();
  }
  held.unlock();
  if (status_shown_) (void)!::write(status_fd_, "\n", 1);
}

// Writes whole items, waiting for room in slices so that finish is never held up by a reader that stands still.
bool OutputThread::print(const Item& item) {
  std::string text =
      item.status ? std::string(kClearLine) + item.text.substr(0, terminalWidth(status_fd_) - 1) : item.text + '\n';
  const int fd = item.status ? status_fd_ : output_fd_;
  if (!item.status && status_shown_) (void)!::write(status_fd_, kClearLine.data(), kClearLine.size());
  status_shown_ = item.status;
  std::string_view rest = text;
  while (!rest.empty()) {
    pollfd ready{.fd = fd, .events = POLLOUT, .revents = 0};
    if (::poll(&ready, 1, 100) == 0) {
      if (worker_.stopping()) return false;
      continue;
    }
    // No more than poll promised room for, lest the write itself waits.
    const auto written = ::write(fd, rest.data(), rest.size() < 512 ? rest.size() : 512);
    if (written < 0 && errno != EINTR && errno != EAGAIN) return false;
    if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace kalmira
