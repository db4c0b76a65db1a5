#include "ui/shots/simulated_port.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include <cmath>

#include "instruments/ice_model.h"
#include "sim/encode.h"

namespace kalmira::shots {

std::string iceRecordAt(std::uint64_t number) {
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

}  // namespace kalmira::shots
