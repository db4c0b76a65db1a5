#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "link/port.h"
#include "sim/survey.h"

namespace kalmira::shots {

// How many records and sentences the simulated survey may send so far; the rest waits.
struct Allowance {
  std::atomic<std::uint64_t> records{0};
  std::atomic<std::uint64_t> sentences{0};
};

// The simulated survey as a serial port, as fast as it is read: "instrument" or "gps" is its device.
class SimulatedPort final : public Port {
 public:
  SimulatedPort(const sim::SurveyPlan& plan, const Allowance& allowance)
      : plan_(plan), allowance_(allowance) {}

  std::optional<PortError> open(const std::string& device, const LineSettings& line) override;
  ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) override;
  void purge() override {}
  unsigned modemStatus() override { return 0; }
  bool write(std::span<const std::uint8_t>, int) override { return true; }
  void close() override {}

 private:
  const sim::SurveyPlan& plan_;
  const Allowance& allowance_;
  bool gps_ = false;
  std::uint64_t sent_ = 0;
  std::string waiting_;
};

}  // namespace kalmira::shots
