#include "link/port_thread.h"

#include <system_error>
#include <utility>

namespace kalmira {

std::optional<PortError> PortThread::open(const std::string& device, const LineSettings& line, int tries) {
  close();
  // Closed from its own work: the thread has yet to end.
  if (isOpen()) return PortError{PortErrorKind::held, device + " is still being closed: try again"};
  device_ = device;
  line_ = line;
  job_ = nullptr;
  reopen_wanted_ = false;
  stop_ = false;
  sender_.emplace(hand_over_);
  Opened opened;
  std::future<std::optional<PortError>> result = opened.get_future();
  try {
    thread_ = std::thread(
        [this, promise = std::move(opened), tries]() mutable { body(std::move(promise), tries); });
  } catch (const std::system_error& failure) {
    return PortError{PortErrorKind::other, std::string("No thread for the port: ") + failure.what()};
  }
  std::optional<PortError> error = result.get();
  if (error) close();
  return error;
}

void PortThread::close() {
  if (!thread_.joinable()) return;
  {
    const std::scoped_lock lock(mutex_);
    stop_ = true;
  }
  changed_.notify_all();
  sender_->close();
  // From within work done directly on the port's own thread: it ends with that, and is waited for another
  // time.
  if (thread_.get_id() == std::this_thread::get_id()) return;
  thread_.join();
  gone_ = false;
}

bool PortThread::call(const std::function<bool(const Context&)>& job) {
  if (!isOpen()) return false;
  std::promise<bool> done;
  std::future<bool> result = done.get_future();
  start([&job, &done](const Context& context) {
    done.set_value(job(context));
    return ReaderEnd::stopped;
  });
  return result.get();
}

void PortThread::start(Job job) {
  {
    const std::scoped_lock lock(mutex_);
    job_ = std::move(job);
  }
  changed_.notify_all();
}

void PortThread::reopen() {
  {
    const std::scoped_lock lock(mutex_);
    reopen_wanted_ = gone_;
  }
  changed_.notify_all();
}

void PortThread::body(Opened opened, int tries) {
  const std::unique_ptr<Port> port = factory_();
  std::optional<PortError> error = openWithTries(*port, tries);
  const bool isOpened = !error;
  opened.set_value(std::move(error));
  if (!isOpened) return;
  const Context context{.port = *port, .sender = *sender_, .stop = stop_};
  for (Job job; waitForJob(job);) {
    while (job(context) == ReaderEnd::gone && openAgain(*port)) {
    }
  }
  port->close();
}

std::optional<PortError> PortThread::openWithTries(Port& port, int tries) {
  std::optional<PortError> error = port.open(device_, line_);
  for (int tried = 1; error && tried < tries; ++tried) error = port.open(device_, line_);
  return error;
}

bool PortThread::waitForJob(Job& job) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return stop_ || job_; });
  job = std::exchange(job_, nullptr);
  return !stop_;
}

bool PortThread::openAgain(Port& port) {
  // Closed at once: a device whose old node is still held would come back under another name.
  port.close();
  std::unique_lock lock(mutex_);
  gone_ = true;
  for (;;) {
    const auto isAsked = [this] { return stop_ || reopen_wanted_; };
    if (retry_period_) {
      changed_.wait_for(lock, *retry_period_, isAsked);
    } else {
      changed_.wait(lock, isAsked);
    }
    if (stop_) return false;
    reopen_wanted_ = false;
    lock.unlock();
    const bool opened = !port.open(device_, line_);
    lock.lock();
    if (opened) {
      gone_ = false;
      return true;
    }
  }
}

}  // namespace kalmira
