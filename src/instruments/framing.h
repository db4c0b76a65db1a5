#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// Cutting the instruments' serial streams into records. Pure: bytes in, records out; nothing here reads a port, a clock
// or a setting. Each framer looks at one byte after the other, in blocks of any size: how the stream is cut into blocks
// never changes what comes out. A framer belongs to one thread.
namespace kalmira {

using Bytes = std::span<const std::uint8_t>;

struct FrameStep {
  enum class Result {
    needMore,  // all bytes were taken and no record ended
    good,      // record() holds a record; the bytes behind `used` are still to be fed
    bad,       // a record ended or broke off and was no good; likewise
  };
  Result result = Result::needMore;
  std::size_t used = 0;  // bytes of the block that were taken
};

// The working buffer of the ASCII and TESK2 framings holds 181 bytes; a longer run without a good record is dropped,
// together with the byte that found it full.
inline constexpr std::size_t kFrameBufferBytes = 181;

// "T", recordLength - 1 further characters, carriage return. A carriage return without a "T" in that place makes a bad
// record and leaves the buffer as it is, so the next one is looked at the same way: a stream that starts in the middle,
// or loses bytes, is back in step with its next whole record.
class AsciiFramer {
 public:
  // `recordLength` is the number of bytes before the carriage return, 1 to 180.
  explicit AsciiFramer(int recordLength)
      : record_length_(static_cast<std::size_t>(std::clamp(recordLength, 1, kMaxRecordLength))) {}
  FrameStep feed(Bytes block);
  // Valid after a good step, until the next feed.
  std::string_view record() const { return {reinterpret_cast<const char*>(&buffer_[record_start_]), record_length_}; }

 private:
  static constexpr int kMaxRecordLength = static_cast<int>(kFrameBufferBytes) - 1;
  std::size_t record_length_;
  std::size_t fill_ = 0;
  std::size_t record_start_ = 0;
  std::array<std::uint8_t, kFrameBufferBytes> buffer_{};
};

// "T", three digits, "I", three digits; no terminator. After a bad step the caller throws away what the port has
// received and starts afresh with the next byte.
class IceFramer {
 public:
  static constexpr std::size_t kRecordLength = 8;
  FrameStep feed(Bytes block);
  // Valid after a good step, until the next feed.
  std::string_view record() const { return {record_.data(), kRecordLength}; }
  // Whether a record has begun: a silence now makes it bad.
  bool inRecord() const { return fill_ > 0; }
  void reset() { fill_ = 0; }

 private:
  std::size_t fill_ = 0;
  std::array<char, kRecordLength> record_{};
};

// "T" or "t", 13 binary bytes, 255 255. A frame with another start byte is ignored, neither good nor bad.
class Tesk2Framer {
 public:
  static constexpr std::size_t kRecordLength = 14;
  FrameStep feed(Bytes block);
  // Valid after a good step, until the next feed.
  std::string_view record() const { return {reinterpret_cast<const char*>(&buffer_[record_start_]), kRecordLength}; }

 private:
  std::size_t fill_ = 0;
  std::size_t record_start_ = 0;
  std::array<std::uint8_t, kFrameBufferBytes> buffer_{};
};

}  // namespace kalmira
