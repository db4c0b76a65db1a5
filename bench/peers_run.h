#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace kalmira::bench {

struct Lines {
  std::string instrument;  // devices
  std::string gps;
};

// A program to measure.
struct Logger {
  std::string name;
  bool gps = false;  // is given both lines
  // Bytes that a record has in its file.
  std::size_t wholeBytes = 0;
  // The command that logs the lines into a new file of this name in a folder of its own, and that file's
  // path.
  std::function<std::vector<std::string>(const Lines& lines, const std::filesystem::path& folder)> command;
  std::function<std::filesystem::path(const std::filesystem::path& folder)> file;
};

struct StreamRates {
  double records_hz = 11;
  double gps_hz = 10;
};

struct RunFigures {
  // From the moment before a record's bytes, all of them, are given to the pseudo-terminal until they can be
  // read from the file; of each record that arrived.
  std::vector<double> latency_ms;
  double cpuSecondsPerHour = 0;
  double peakMegabytes = 0;
  std::size_t sent = 0;
  // Of those sent before a SIGKILL, the last of them kSettle_ms before it; not in the file afterwards.
  std::size_t lost = 0;
};
inline constexpr int kSettle_ms = 5;

// Sends the stream for some seconds, watching the file, and then kills the logger. Measured is from the first
// record on that has reached the file; what came before is the start.
// Throws std::runtime_error when the logger does not run or logs nothing.
RunFigures measureRun(const Logger& logger, const StreamRates& rates, double seconds);

struct StartFigures {
  double openToRead_ms = 0;   // from its first opening of the port to the first record read from it
  double openToFile_ms = 0;   // ... to the first record in the file
  double startToFile_ms = 0;  // from the program's start to the first record in the file
};

// From the opening on a record is sent every millisecond, so these are the logger's times and not the wait
// for an instrument's next record.
StartFigures measureStart(const Logger& logger);

}  // namespace kalmira::bench
