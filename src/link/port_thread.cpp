#include "link/port_thread.h"

#include <system_error>
#include <utility>

namespace kalmira {
namespace {
constexpr std::chrono::milliseconds kLookForInterruption{50};
}

std::optional<PortError> PortThread::open(const std::string& device, const LineSettings& line, int tries,
                                          Absent absent) {
  close();
  // Closed from its own work: the thread has yet to end.
  if (isOpen()) return PortError{PortErrorKind::held, device + " is still being closed: try again"};
  device_ = device;
  line_ = line;
  job_ = nullptr;
  reopen_wanted_ = false;
  sender_.emplace(hand_over_);
  Opened opened;
  std::future<std::optional<PortError>> result = opened.get_future();
  try {
    worker_.start(
        [this, promise = std::move(opened), tries, absent]() mutable { body(std::move(promise), tries, absent); });
  } catch (const std::system_error& failure) {
    return PortError{PortErrorKind::other, std::string("No thread for the port: ") + failure.what()};
  }
  std::optional<PortError> error = result.get();
  if (error && absent == Absent::givenUp) close();
  return error;
}

void PortThread::close() {
  if (!isOpen()) return;
  worker_.requestStop();
  sender_->close();
  // From within work done directly on the port's own thread: it ends with that, and is waited for another time.
  if (worker_.isThisThread()) return;
  worker_.stop();
  gone_ = false;
}

bool PortThread::call(const std::function<bool(const Context&)>& job, const std::function<bool()>& interrupted) {
  if (!isOpen()) return false;
  std::promise<bool> done;
  std::future<bool> result = done.get_future();
  start([&job, &done](const Context& context) {
    done.set_value(job(context));
    return ReaderEnd::stopped;
  });
  while (result.wait_for(kLookForInterruption) != std::future_status::ready) {
    if (!interrupted()) continue;
    close();  // has the job end
    return false;
  }
  return result.get();
}

void PortThread::start(Job job) {
  worker_.change([&] { job_ = std::move(job); });
}

void PortThread::reopen() {
  worker_.change([this] { reopen_wanted_ = gone_; });
}

void PortThread::body(Opened opened, int tries, Absent absent) {
  const std::unique_ptr<Port> port = factory_();
  port->giveUpWhen(worker_.stopping());
  std::optional<PortError> error = openWithTries(*port, tries);
  gone_ = error.has_value();
  opened.set_value(std::move(error));
  if (gone_ && absent == Absent::givenUp) return;
  const Context context{.port = *port, .sender = *sender_, .stop = worker_.stopping()};
  for (Job job; waitForJob(job);) {
    bool there = !gone_ || openAgain(*port);
    while (there && job(context) == ReaderEnd::gone) there = openAgain(*port);
  }
  port->close();
}

std::optional<PortError> PortThread::openWithTries(Port& port, int tries) {
  std::optional<PortError> error = port.open(device_, line_);
  for (int tried = 1; error && tried < tries; ++tried) error = port.open(device_, line_);
  return error;
}

bool PortThread::waitForJob(Job& job) {
  auto held = worker_.lock();
  worker_.wait(held, [this] { return job_ != nullptr; });
  job = std::exchange(job_, nullptr);
  return !worker_.stopping();
}

bool PortThread::openAgain(Port& port) {
  // Closed at once: a device whose old node is still held would come back under another name.
  port.close();
  auto held = worker_.lock();
  gone_ = true;
  for (;;) {
    const auto isAsked = [this] { return reopen_wanted_; };
    if (retry_period_) {
      worker_.waitFor(held, *retry_period_, isAsked);
    } else {
      worker_.wait(held, isAsked);
    }
    if (worker_.stopping()) return false;
    reopen_wanted_ = false;
    held.unlock();
    const bool opened = !port.open(device_, line_);
    held.lock();
    if (opened) {
      gone_ = false;
      return true;
    }
  }
}

}  // namespace kalmira
