#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "instruments/ice_model.h"
#include "link/port.h"
#include "platform/clock.h"
#include "sim/encode.h"
#include "sim/survey.h"

// What pictures are taken of: a survey without devices, and its time.
namespace kalmira::shots {

// How many records and sentences the simulated survey may send so far; the rest waits.
struct Allowance {
  std::atomic<std::uint64_t> records{0};
  std::atomic<std::uint64_t> sentences{0};
};

// An ORLA carried over sea ice, for its ice option: the conductivities that the ice model gives for ice of 1 to 4 m.
inline std::string iceRecordAt(std::uint64_t number) {
  static const IceModel kModel = [] {
    IceModel model;
    LoadIceTable(0, false, model);
    return model;
  }();
  const double tenths = 25.0 + 15.0 * std::sin(static_cast<double>(number) / 20.0);
  const auto index = static_cast<std::size_t>(tenths);
  const double part = tenths - static_cast<double>(index);
  const double conductivity = kModel.iceTable[index] + part * (kModel.iceTable[index + 1] - kModel.iceTable[index]);
  return sim::terminated(Framing::ascii, sim::encodeOrla({.vertical = false}, conductivity, 1.0));
}

// The simulated survey as a serial port, as fast as it is read: "instrument" or "gps" is its device.
class SimulatedPort final : public Port {
 public:
  using RecordSource = std::string (*)(std::uint64_t number);
  // `records` in place of the plan's own records, where given.
  SimulatedPort(const sim::SurveyPlan& plan, const Allowance& allowance, RecordSource records = nullptr)
      : plan_(plan), allowance_(allowance), records_(records) {}

  std::optional<PortError> open(const std::string& device, const LineSettings&) override {
    gps_ = device == "gps";
    return std::nullopt;
  }
  ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) override {
    if (waiting_.empty()) {
      const auto allowed = gps_ ? allowance_.sentences.load() : allowance_.records.load();
      if (sent_ >= allowed) {
        std::this_thread::sleep_for(std::chrono::milliseconds(std::min(timeoutMs, 5)));
        return {};
      }
      waiting_ = gps_                  ? sim::sentenceAt(plan_, sent_)
                 : records_ != nullptr ? records_(sent_)
                                       : sim::recordAt(plan_, sent_);
      ++sent_;
    }
    const auto count = std::min(buffer.size(), waiting_.size());
    std::copy_n(waiting_.begin(), count, buffer.begin());
    waiting_.erase(0, count);
    return {.count = count, .gone = false};
  }
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

// A session's time is that of its records.
class SurveyClock final : public Clock {
 public:
  std::uint32_t tick() const override { return tick_; }
  void advance(std::uint32_t milliseconds) { tick_ += milliseconds; }
  LocalTime localTime() const override {
    return {.year = 2026, .month = 7, .day = 14, .hour = 9, .minute = 30, .second = 0, .millisecond = 0};
  }
  int utcOffset() const override { return 7200; }
  std::uint64_t sleptMs() const override { return 0; }
  void pause(std::uint32_t) const override {}

 private:
  std::atomic<std::uint32_t> tick_{60000};
};

}  // namespace kalmira::shots
