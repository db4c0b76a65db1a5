#include "instruments/framing.h"

namespace kalmira {
namespace {

constexpr std::uint8_t kCarriageReturn = 13;
constexpr std::uint8_t kFrameEnd = 255;  // TESK2: two in a row

bool isDigit(std::uint8_t byte) { return byte >= '0' && byte <= '9'; }

// Whether `byte` may stand at `index` of an ice record such as "T123I045".
bool fitsIceRecord(std::size_t index, std::uint8_t byte) {
  if (index == 0) return byte == 'T';
  if (index == 4) return byte == 'I';
  return isDigit(byte);
}

}  // namespace

// One record: "TA+0123-0045" and a carriage return.
FrameStep AsciiFramer::feed(Bytes block) {
  // The fill level lives in a register: as a member it would be written back with every byte.
  std::size_t fill = fill_;
  for (std::size_t i = 0; i < block.size(); ++i) {
    if (fill == kFrameBufferBytes) {
      fill = 0;
      continue;
    }
    const std::uint8_t byte = block[i];
    const std::size_t index = fill++;
    buffer_[index] = byte;
    if (byte != kCarriageReturn || index < record_length_) continue;
    record_start_ = index - record_length_;
    const bool good = buffer_[record_start_] == 'T';
    fill_ = good ? 0 : fill;
    return {good ? FrameStep::Result::good : FrameStep::Result::bad, i + 1};
  }
  fill_ = fill;
  return {FrameStep::Result::needMore, block.size()};
}

FrameStep IceFramer::feed(Bytes block) {
  for (std::size_t i = 0; i < block.size(); ++i) {
    if (!fitsIceRecord(fill_, block[i])) {
      fill_ = 0;
      return {FrameStep::Result::bad, i + 1};
    }
    record_[fill_++] = static_cast<char>(block[i]);
    if (fill_ == kRecordLength) {
      fill_ = 0;
      return {FrameStep::Result::good, i + 1};
    }
  }
  return {FrameStep::Result::needMore, block.size()};
}

// The words of a record may hold 255 255 themselves. Such a false end has no start letter 15 places before it (nearly
// always), so it is passed over and the true end is still found.
FrameStep Tesk2Framer::feed(Bytes block) {
  constexpr std::size_t kFrameLength = kRecordLength + 2;
  std::size_t fill = fill_;
  for (std::size_t i = 0; i < block.size(); ++i) {
    if (fill == kFrameBufferBytes) {
      fill = 0;
      continue;
    }
    const std::uint8_t byte = block[i];
    buffer_[fill++] = byte;
    if (byte != kFrameEnd || fill < kFrameLength || buffer_[fill - 2] != kFrameEnd) continue;
    const std::size_t start = fill - kFrameLength;
    if (buffer_[start] != 'T' && buffer_[start] != 't') continue;
    record_start_ = start;
    fill_ = 0;
    return {FrameStep::Result::good, i + 1};
  }
  fill_ = fill;
  return {FrameStep::Result::needMore, block.size()};
}

}  // namespace kalmira
