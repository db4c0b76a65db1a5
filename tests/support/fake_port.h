#pragma once

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "link/port.h"
#include "support/fake_clock.h"

namespace kalmira {

// One thing that happens on a line.
struct LineStep {
  std::string bytes{};
  std::uint32_t silenceMs = 0;  // before the bytes
  unsigned status = 0;          // modem status from then on
  bool gone = false;
};

// With a clock it plays its steps to the test's own thread and then sets `stop`; without one, reader threads wait.
struct FakeDevice {
  FakeClock* clock = nullptr;
  std::atomic<bool>* stop = nullptr;

  std::deque<LineStep> steps{};
  std::function<void(const LineSettings&)> onOpen = [](const LineSettings&) {};
  std::function<void()> onRead = [] {};
  int refusals = 0;  // opens that fail before one succeeds
  bool plugged = true;
  bool takesBytes = true;

  int opens = 0;  // tried
  bool isOpen = false;
  LineSettings line{};
  unsigned status = 0;
  // What was done: "purge", "write $X"; with a clock the reads as well, and the milliseconds: "50 read".
  std::vector<std::string> trace{};
  std::uint32_t start = clock == nullptr ? 0 : clock->tick();

  std::mutex mutex{};
  std::condition_variable changed{};

  // For tests whose readers have threads of their own.
  void send(std::string_view bytes) {
    const std::scoped_lock lock(mutex);
    steps.push_back({.bytes = std::string(bytes)});
    changed.notify_all();
  }
  void plug(bool in) {
    const std::scoped_lock lock(mutex);
    plugged = in;
    changed.notify_all();
  }
  template <class Value>
  Value locked(Value FakeDevice::*member) {
    const std::scoped_lock lock(mutex);
    return this->*member;
  }
  void note(const std::string& what) {
    if (clock != nullptr) trace.push_back(fmt::format("{} {}", ticksSince(clock->tick(), start), what));
    if (clock == nullptr && what != "read") trace.push_back(what);
  }
};
using FakeDevices = std::map<std::string, FakeDevice>;

class FakePort final : public Port {
 public:
  explicit FakePort(FakeDevice& device) : device_(&device) {}
  explicit FakePort(FakeDevices& devices) : devices_(&devices) {}

  std::optional<PortError> open(const std::string& name, const LineSettings& line) override {
    if (devices_ != nullptr) device_ = &devices_->at(name);
    const std::scoped_lock lock(device_->mutex);
    ++device_->opens;
    device_->line = line;
    if (!device_->plugged) return PortError{PortErrorKind::missing, "not plugged"};
    if (device_->refusals > 0) {
      --device_->refusals;
      return PortError{PortErrorKind::held, "refused"};
    }
    if (device_->isOpen) return PortError{PortErrorKind::held, "still open"};
    device_->isOpen = true;
    device_->onOpen(line);
    return std::nullopt;
  }
  ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) override {
    auto& device = *device_;
    std::unique_lock lock(device.mutex);
    device.note("read");
    device.onRead();
    if (device.clock == nullptr) {
      device.changed.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                              [&device] { return !device.steps.empty() || !device.plugged; });
    }
    if (!device.plugged) return {.count = 0, .gone = true};
    if (device.steps.empty()) {
      if (device.clock != nullptr) device.clock->pause(static_cast<std::uint32_t>(timeoutMs));
      if (device.stop != nullptr) *device.stop = true;
      return {};
    }
    LineStep& step = device.steps.front();
    device.status = step.status;
    if (step.silenceMs > 0) {
      const std::uint32_t wait = std::min(step.silenceMs, static_cast<std::uint32_t>(timeoutMs));
      device.clock->pause(wait);
      step.silenceMs -= wait;
      return {};
    }
    if (step.gone) return {.count = 0, .gone = true};
    const std::size_t count = std::min(buffer.size(), step.bytes.size());
    std::copy_n(step.bytes.begin(), count, buffer.begin());
    step.bytes.erase(0, count);
    if (step.bytes.empty()) device.steps.pop_front();
    return {.count = count, .gone = false};
  }
  void purge() override { note("purge"); }
  unsigned modemStatus() override { return device_->locked(&FakeDevice::status); }
  bool write(std::span<const std::uint8_t> bytes, int) override {
    note("write " + std::string(bytes.begin(), bytes.end()));
    return device_->takesBytes;
  }
  void close() override {
    const std::scoped_lock lock(device_->mutex);
    device_->isOpen = false;
  }

 private:
  void note(const std::string& what) {
    const std::scoped_lock lock(device_->mutex);
    device_->note(what);
  }

  FakeDevices* devices_ = nullptr;
  FakeDevice* device_ = nullptr;
};

}  // namespace kalmira
