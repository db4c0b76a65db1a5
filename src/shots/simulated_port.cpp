#include "shots/simulated_port.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace kalmira::shots {

std::optional<PortError> SimulatedPort::open(const std::string& device, const LineSettings&) {
  gps_ = device == "gps";
  return std::nullopt;
}

ReadResult SimulatedPort::read(std::span<std::uint8_t> buffer, int timeoutMs) {
  if (waiting_.empty()) {
    const auto allowed = gps_ ? allowance_.sentences.load() : allowance_.records.load();
    if (sent_ >= allowed) {
      std::this_thread::sleep_for(std::chrono::milliseconds(std::min(timeoutMs, 5)));
      return {};
    }
    waiting_ = gps_ ? sim::sentenceAt(plan_, sent_) : sim::recordAt(plan_, sent_);
    ++sent_;
  }
  const auto count = std::min(buffer.size(), waiting_.size());
  std::copy_n(waiting_.begin(), count, buffer.begin());
  waiting_.erase(0, count);
  return {.count = count, .gone = false};
}

}  // namespace kalmira::shots
