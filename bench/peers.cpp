// Whole programs, measured from outside: the same survey, byte for byte and at the same times, goes over
// pseudo-terminals to kalmira-log and to the serial loggers that are installed.
#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "datafile/creation.h"
#include "peers_process.h"
#include "peers_run.h"
#include "peers_stream.h"
#include "platform/text.h"

namespace {

using namespace kalmira;
using namespace kalmira::bench;

constexpr std::string_view kUsage =
    "usage: peers KALMIRA-LOG [--own] [--seconds S] [--rounds N]\n"
    "  KALMIRA-LOG  the program\n"
    "  --own        kalmira-log alone, with GPS: one line NAME, FIGURE, UNIT, TARGET a figure, between tabs\n"
    "  --seconds S  length of each run, 20\n"
    "  --rounds N   runs of each program, 3\n";

struct Options {
  std::string program;
  bool own = false;
  double seconds = 20;
  int rounds = 3;
};

bool parseOptions(const std::vector<std::string>& arguments, Options& options) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const bool hasValue = i + 1 < arguments.size();
    if (arguments[i] == "--own") {
      options.own = true;
    } else if (arguments[i] == "--seconds" && hasValue) {
      options.seconds = parseReal(arguments[++i]);
    } else if (arguments[i] == "--rounds" && hasValue) {
      options.rounds = parseInt(arguments[++i]);
    } else if (arguments[i].starts_with("-") || !options.program.empty()) {
      return false;
    } else {
      options.program = arguments[i];
    }
  }
  return !options.program.empty() && options.seconds >= 1 && options.rounds >= 1;
}

Logger kalmiraLog(const std::string& program, bool gps) {
  static constexpr std::string_view kName = "BENCH";
  return {.name = gps ? "kalmira-log, GPS too" : "kalmira-log",
          .gps = gps,
          .wholeBytes = static_cast<std::size_t>(instrumentOf(Kind::orla).fileRecordLength),
          .command =
              [=](const Lines& lines, const std::filesystem::path& folder) {
                // An interval shorter than the instrument's: every record is a reading.
                std::vector<std::string> command{program, "--kind", "ORLA", "--port", lines.instrument};
                if (gps) command.insert(command.end(), {"--gps", lines.gps});
                command.insert(command.end(), {"--root", folder.string(), "--name", std::string(kName)});
                command.insert(command.end(), {"--seconds", "86400", "--tick-base", "program"});
                command.insert(command.end(), {"--set", "readingsInterval=0.05"});
                return command;
              },
          .file =
              [](const std::filesystem::path& folder) {
                return dataFilePathFor({.kind = Kind::orla, .root = folder}, kName);
              }};
}

// A logger that copies what comes into a file. `options` end with the one that names the file.
Logger plainLogger(const std::string& program, const std::vector<std::string>& options) {
  const auto file = [](const std::filesystem::path& folder) { return folder / "log"; };
  return {.name = program,
          .gps = false,
          .wholeBytes = kRecordBytes + 1,
          .command =
              [=](const Lines& lines, const std::filesystem::path& folder) {
                std::vector<std::string> command{program};
                command.insert(command.end(), options.begin(), options.end());
                command.insert(command.end(), {file(folder).string(), lines.instrument});
                return command;
              },
          .file = file};
}

std::vector<Logger> allLoggers(const Options& options) {
  std::vector<Logger> loggers{kalmiraLog(options.program, false), kalmiraLog(options.program, true)};
  const std::vector<Logger> peers{plainLogger("picocom", {"-b", "9600", "--quiet", "--noreset", "--logfile"}),
                                  plainLogger("tio", {"-b", "9600", "--log", "--log-file"})};
  for (const auto& peer : peers) {
    if (isInstalled(peer.name)) {
      loggers.push_back(peer);
    } else {
      fmt::print("{} is not installed (Debian has it: apt-get install {})\n", peer.name, peer.name);
    }
  }
  return loggers;
}

// `share` 0.5 is the median, 1 the largest. There must be values.
double quantile(std::vector<double> values, double share) {
  std::sort(values.begin(), values.end());
  const auto rank = static_cast<std::size_t>(share * static_cast<double>(values.size()));
  return values[std::min(rank, values.size() - 1)];
}

struct Total {
  std::vector<double> latency_ms;
  std::vector<double> cpuSecondsPerHour;
  double peakMegabytes = 0;
  std::size_t sent = 0;
  std::size_t lost = 0;
};

void add(Total& total, const RunFigures& run) {
  total.latency_ms.insert(total.latency_ms.end(), run.latency_ms.begin(), run.latency_ms.end());
  total.cpuSecondsPerHour.push_back(run.cpuSecondsPerHour);
  total.peakMegabytes = std::max(total.peakMegabytes, run.peakMegabytes);
  total.sent += run.sent;
  total.lost += run.lost;
}

double loadAverage() {
  double load = 0;
  return ::getloadavg(&load, 1) == 1 ? load : 0;
}

void compare(const Options& options) {
  const auto loggers = allLoggers(options);
  std::vector<Total> totals(loggers.size());
  // In turns, so that whatever else the machine does meets all of them.
  for (int round = 0; round < options.rounds; ++round) {
    for (std::size_t i = 0; i < loggers.size(); ++i) {
      add(totals[i], measureRun(loggers[i], {}, options.seconds));
    }
  }
  fmt::print("{:22}{:>28}{:>10}{:>10}{:>10}{:>12}\n", "", "latency byte to file, ms", "CPU", "peak", "records",
             "lost at");
  fmt::print("{:22}{:>10}{:>9}{:>9}{:>10}{:>10}{:>10}{:>12}\n", "logger", "median", "99 %", "worst", "s/h", "MB",
             "sent", "SIGKILL");
  for (std::size_t i = 0; i < loggers.size(); ++i) {
    const auto& total = totals[i];
    const auto latency = [&](double share) {
      // Nothing has arrived: all of it was still in the logger's buffers.
      return total.latency_ms.empty() ? "-" : fmt::format("{:.3f}", quantile(total.latency_ms, share));
    };
    fmt::print("{:22}{:>10}{:>9}{:>9}{:>10.2f}{:>10.1f}{:>10}{:>12}\n", loggers[i].name, latency(0.5), latency(0.99),
               latency(1), quantile(total.cpuSecondsPerHour, 0.5), total.peakMegabytes, total.sent, total.lost);
  }
  fmt::print("-: nothing reached the file during the run, all of it was in the logger's own buffer\n");
  fmt::print("11 records/s (GPS 10 sentences/s), {} runs of {:g} s each, in turns; load average {:.1f}\n",
             options.rounds, options.seconds, loadAverage());
}

void figure(std::string_view name, double value, std::string_view unit, std::string_view target) {
  fmt::print("kalmira-log: {}\t{:.3g}\t{}\t{}\n", name, value, unit, target);
}

void ownFigures(const Options& options) {
  constexpr int kStarts = 11;
  const auto logger = kalmiraLog(options.program, true);
  Total total;
  for (int round = 0; round < options.rounds; ++round) {
    add(total, measureRun(logger, {}, options.seconds));
  }
  std::vector<double> openToRead_ms;
  std::vector<double> openToFile_ms;
  std::vector<double> startToFile_ms;
  for (int i = 0; i < kStarts; ++i) {
    const auto start = measureStart(logger);
    openToRead_ms.push_back(start.openToRead_ms);
    openToFile_ms.push_back(start.openToFile_ms);
    startToFile_ms.push_back(start.startToFile_ms);
  }
  constexpr double kSecondsToPercent = 100.0 / 3600.0;
  figure("processor", quantile(total.cpuSecondsPerHour, 0.5) * kSecondsToPercent, "% of a core", "< 0.3");
  figure("resident memory, peak", total.peakMegabytes, "MB", "< 16");
  figure("port opened to first record read", quantile(openToRead_ms, 0.5), "ms", "< 30");
  figure("port opened to first record in the file", quantile(openToFile_ms, 0.5), "ms", "");
  figure("program start to first record in the file", quantile(startToFile_ms, 0.5), "ms", "");
  if (total.latency_ms.empty()) throw std::runtime_error("nothing has reached the file");
  figure("record to file, median", quantile(total.latency_ms, 0.5), "ms", "< 0.3");
  figure("record to file, 99th percentile", quantile(total.latency_ms, 0.99), "ms", "< 2");
  figure("records lost at SIGKILL", static_cast<double>(total.lost), "", "< 1");
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!parseOptions({argv + 1, argv + argc}, options)) {
    fmt::print(stderr, "{}", kUsage);
    return 2;
  }
  try {
    options.own ? ownFigures(options) : compare(options);
  } catch (const std::exception& problem) {
    fmt::print(stderr, "peers: {}\n", problem.what());
    return 1;
  }
  return 0;
}
