#pragma once

#include <algorithm>
#include <atomic>
#include <deque>
#include <functional>
#include <string>

#include "link/port.h"
#include "support/fake_clock.h"

namespace kalmira {

// One thing that happens on the line.
struct LineStep {
  std::string bytes{};
  std::uint32_t silenceMs = 0;  // before the bytes
  unsigned status = 0;          // modem status from then on
  bool gone = false;
};

// Plays a script; when it is through, every read is silent and `stop` is set.
class ScriptedPort final : public Port {
 public:
  ScriptedPort(FakeClock& clock, std::atomic<bool>& stop) : clock_(clock), stop_(stop) {}

  std::deque<LineStep> steps;
  int purges = 0;
  bool stopAtEnd = true;
  std::function<void()> onRead = [] {};

  std::optional<PortError> open(const std::string&, const LineSettings&) override { return std::nullopt; }
  ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) override {
    onRead();
    if (steps.empty()) {
      stop_ = stopAtEnd;
      clock_.pause(static_cast<std::uint32_t>(timeoutMs));
      return {};
    }
    LineStep& step = steps.front();
    status_ = step.status;
    if (step.silenceMs > 0) {
      const std::uint32_t wait = std::min(step.silenceMs, static_cast<std::uint32_t>(timeoutMs));
      clock_.pause(wait);
      step.silenceMs -= wait;
      return {};
    }
    if (step.gone) return {.count = 0, .gone = true};
    const std::size_t count = std::min(buffer.size(), step.bytes.size());
    std::copy_n(step.bytes.begin(), count, buffer.begin());
    step.bytes.erase(0, count);
    if (step.bytes.empty()) steps.pop_front();
    return {.count = count, .gone = false};
  }
  void purge() override { ++purges; }
  unsigned modemStatus() override { return status_; }
  bool write(std::span<const std::uint8_t>, int) override { return true; }
  void close() override {}

 private:
  FakeClock& clock_;
  std::atomic<bool>& stop_;
  unsigned status_ = 0;
};

}  // namespace kalmira
