#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "datafile/record_parse.h"
#include "datafile/record_reader.h"
#include "sim/player.h"

namespace kalmira::sim {

// Plays a recorded data file: its readings as the instrument sent them and its GPS sentences, each at its recorded
// tick, counted from the first and divided by the speed. Reads as it goes, in constant memory.
class Replay {
 public:
  // `speed` is above 0.
  explicit Replay(double speed) : speed_(speed) {}

  // An empty text, or why the file cannot be played.
  std::string open(const std::string& path);
  // Of the opened file.
  Kind kind() const { return reader_.header().kind; }

  // Nothing at the end of the file, or when it cannot be read any further: error() then says why.
  std::optional<Transmission> next();
  const std::string& error() const { return error_; }

 private:
  double timeOf(std::uint32_t tick);

  double speed_;
  RecordReader reader_;
  SentenceAssembler sentences_;
  std::optional<std::uint32_t> last_tick_;
  double played_ms_ = 0;
  std::string error_;
};

// What the instrument sent for a reading that is recorded as `text`, without terminator: the digit that counts the
// readings of a station becomes "T" again, and the blanks that fill up a short record go.
std::string instrumentRecord(Kind kind, std::string_view text);

}  // namespace kalmira::sim
