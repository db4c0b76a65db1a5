#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kalmira::bench {

// Nanoseconds on a clock that only goes forward.
using Nanoseconds = std::int64_t;
Nanoseconds now();
void sleepUntil(Nanoseconds time);

// An ORLA record without its carriage return. Every number gives other bytes, so that a record is known again
// in the file, whatever a logger puts around it.
std::string numberedRecord(std::size_t number);
inline constexpr std::size_t kRecordBytes = 12;

// The number of the record at the beginning of `bytes`, if there is one.
std::optional<std::size_t> recordNumber(std::string_view bytes);

struct Sending {
  Nanoseconds due = 0;  // since the start of the stream
  bool gps = false;
  std::size_t number = 0;
  std::string bytes;
};

// The record with all its bytes, due at once.
Sending recordToSend(std::size_t number);

// Both lines' bytes in the order in which they are due, each at a steady rate in hertz; 0 for a line that is
// not there. Record numbers begin with `firstNumber`.
std::vector<Sending> surveyStream(double seconds, double recordRate, double gpsRate, std::size_t firstNumber);

// The file that a logger writes, read as it grows.
class GrowingFile {
 public:
  // In the file a record's first kRecordBytes are followed by others, until it has `wholeBytes`.
  GrowingFile(std::filesystem::path path, std::size_t wholeBytes) : path_(std::move(path)), whole_bytes_(wholeBytes) {}
  GrowingFile(const GrowingFile&) = delete;
  GrowingFile& operator=(const GrowingFile&) = delete;
  ~GrowingFile();

  // The numbers of the whole records that have been added since the last call.
  std::vector<std::size_t> take();
  // Sleeps until the file has been written to since the last call, at the latest until `time`.
  void waitForGrowth(Nanoseconds time);

 private:
  bool open();

  std::filesystem::path path_;
  std::size_t whole_bytes_;
  int file_ = -1;
  int changes_ = -1;  // tells of writes to the file
  std::int64_t offset_ = 0;
  std::string rest_;  // read, but not yet a whole record
};

}  // namespace kalmira::bench
