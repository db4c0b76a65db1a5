// The three framings on any stream, and the decoders on whatever comes out. The first byte chooses the
// framing, the second the size of the blocks that the stream is cut into.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "instruments/framing.h"
#include "instruments/ice_model.h"
#include "instruments/profile_map.h"

using namespace kalmira;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

template <class Framer>
std::vector<std::string> frame(Framer framer, Bytes stream, std::size_t blockSize) {
  std::vector<std::string> seen;
  while (!stream.empty()) {
    const Bytes block = stream.first(std::min(blockSize, stream.size()));
    const FrameStep step = framer.feed(block);
    require(step.used > 0 && step.used <= block.size());
    require(step.result != FrameStep::Result::needMore || step.used == block.size());
    if (step.result == FrameStep::Result::good) seen.emplace_back(framer.record());
    if (step.result == FrameStep::Result::bad) seen.emplace_back();
    stream = stream.subspan(step.used);
  }
  return seen;
}

void mapAndConvert(const Instrument& instrument, Channels& channels, const IceModel& model) {
  const ProfileAxes axes{.conductivity = {1e30F, 1e9F}, .inphase = {-5, 0.5F}, .ice = {10, 30}};
  std::array<int, kProfilePoints> points{};
  for (const bool option : {false, true}) {
    MapProfilePoints(instrument, option, option, axes, channels.value, channels.value[0], channels.value[1], points);
  }
  const float thickness = IceThickness(channels.value[1], model, &channels);
  require(thickness == thickness);
}

void decodeAll(const std::string& record, const IceModel& model) {
  for (int kind = 0; kind < kKindCount; ++kind) {
    for (const bool option : {false, true}) {
      const DecodeOptions options{option, option, option ? 1 : 0, option ? 2 : 0, {}};
      const auto& instrument = instrumentOf(static_cast<Kind>(kind));
      auto reading = instrument.decode(record, options);
      require(reading.orientation == 'V' || reading.orientation == 'H');
      require(!instrument.panelTexts(reading, {}).empty());
      mapAndConvert(instrument, reading.channels, model);
    }
  }
  for (const float value : instrumentOf(Kind::tesk2).decode(record, {}).channels.value) {
    require(value >= -1280.0F && value < 1280.0F);
  }
}

template <class Framer>
void check(const Framer& framer, Bytes stream, std::size_t blockSize) {
  const auto seen = frame(framer, stream, blockSize);
  require(seen == frame(framer, stream, stream.size()));
  IceModel model;
  LoadIceTable(static_cast<int>(blockSize % kSeaWaterCases), blockSize % 2 == 0, model);
  for (const auto& record : seen) {
    if (!record.empty()) decodeAll(record, model);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::size_t blockSize = std::size_t{1} + data[1];
  const Bytes stream{data + 2, size - 2};
  switch (data[0] % 4) {
    case 0: check(AsciiFramer(12), stream, blockSize); break;
    case 1: check(AsciiFramer(7), stream, blockSize); break;
    case 2: check(IceFramer(), stream, blockSize); break;
    default: check(Tesk2Framer(), stream, blockSize); break;
  }
  return 0;
}
