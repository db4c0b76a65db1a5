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

// An ORLA carried over sea ice, for its ice option: the conductivities that the ice model gives for ice of 1
// to 4 m.
std::string iceRecordAt(std::uint64_t number);

// The simulated survey as a serial port, as fast as it is read: "instrument" or "gps" is its device.
class SimulatedPort final : public Port {
 public:
  using RecordSource = std::string (*)(std::uint64_t number);
  // `records` in place of the plan's own records, where given.
  SimulatedPort(const sim::SurveyPlan& plan, const Allowance& allowance, RecordSource records = nullptr)
      : plan_(plan), allowance_(allowance), records_(records) {}

  std::optional<PortError> open(const std::string& device, const LineSettings& line) override;
  ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) override;
  void purge() override {}
  unsigned modemStatus() override { return 0; }
  bool write(std::span<const std::uint8_t>, int) override { return true; }
  void close() override {}

 private:
  const sim::SurveyPlan& plan_;
  const Allowance& allowance_;
  RecordSource records_;
  bool gps_ = false;
  std::uint64_t sent_ = 0;
  std::string waiting_;
};

}  // namespace kalmira::shots
