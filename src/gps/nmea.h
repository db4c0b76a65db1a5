#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kalmira {

// One line from a GPS receiver: as it came, without CR and LF, cut at a NUL byte.
struct GpsLine {
  std::string text;
  std::uint32_t tick = 0;  // when the first byte of the text arrived
};

// Cuts the receiver's stream into lines. "$" starts a sentence, a line feed ends it and takes the byte before it (the
// carriage return) with it. A line longer than `limit` bytes restarts at its beginning, so that it no longer starts
// with "$". An empty line (CR and LF alone) is a line too.
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

// Whether the line starts with "$" and its checksum is there and right: the bytes after "$" up to the first "*", all
// combined by exclusive or, against the hexadecimal number after the last "*".
bool nmeaChecksumOk(std::string_view line);

// Copies field n (counted from 1; field 1 is the sentence address with its "$") to `out`: the text between the (n-1)-th
// and the n-th separator, or up to the end. Returns 1, or 0 with `out` untouched when there are fewer fields.
int GetNmeaField(std::string_view sentence, int n, char separator, std::string& out);

// The latest checked position sentences, held in Manual mode for the reading they will belong to.
struct HeldSentences {
  GpsLine heldGga;
  GpsLine heldGsa;
  bool heldGgaReady = false;
  bool heldGsaReady = false;

  // Keeps a checked sentence when it is a GGA or a GSA, in place of the one before. True when it was one.
  bool hold(const GpsLine& line) {
    if (line.text.find("GGA") != std::string::npos) {
      heldGga = line;
      heldGgaReady = true;
      return true;
    }
    if (line.text.find("GSA") != std::string::npos) {
      heldGsa = line;
      heldGsaReady = true;
      return true;
    }
    return false;
  }
};

// What the GPS part of the panel shows for one sentence.

// The panel texts a sentence changes; nothing where a field stays as it is. An empty text clears the field.
struct FixTexts {
  bool activity = false;  // a good GGA: the activity mark turns
  std::optional<std::string> satellites;
  std::optional<std::string> fix;
  std::optional<std::string> pdop;
};

FixTexts fixTextsOf(std::string_view sentence, bool checksumOk);

// The word for a GGA quality digit; empty for anything but a digit.
std::string_view fixWord(char quality);

}  // namespace kalmira
