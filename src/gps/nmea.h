#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kalmira {

// One line from a GPS receiver: as it came, without CR and LF, cut at a NUL byte.
struct GpsLine {
  std::string text;
  std::uint32_t tick = 0;  // when the first byte of the text arrived
};

// Cuts the receiver's stream into lines. "$" starts a sentence, a line feed ends it and takes the byte before
// it (the carriage return) with it. A line longer than `limit` bytes restarts at its beginning, so that it no
// longer starts with "$". An empty line (CR and LF alone) is a line too.
class NmeaFramer {
 public:
  static constexpr std::size_t kLoggingLimit = 200;
  static constexpr std::size_t kMonitorLimit = 180;
  explicit NmeaFramer(std::size_t limit) : limit_(limit) { line_.reserve(limit + 2); }

  // Takes one byte; true when it ended a line, which line() then holds until the next call.
  bool feed(std::uint8_t byte, std::uint32_t tick);
  const GpsLine& line() const { return complete_; }

 private:
  std::size_t limit_;
  std::string line_;
  std::uint32_t tick_ = 0;
  GpsLine complete_;
};

// Whether the line starts with "$" and its checksum is there and right: the bytes after "$" up to the first
// "*", all combined by exclusive or, against the hexadecimal number after the last "*".
bool nmeaChecksumOk(std::string_view line);

// Copies field n (counted from 1; field 1 is the sentence address with its "$") to `out`: the text between
// the (n-1)-th and the n-th separator, or up to the end. Returns 1, or 0 with `out` untouched when there are
// fewer fields.
int GetNmeaField(std::string_view sentence, int n, char separator, std::string& out);

}  // namespace kalmira
