#include "peers_run.h"

#include <fmt/format.h>
#include <sched.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <map>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "peers_process.h"
#include "peers_stream.h"
#include "sim/terminal_outlet.h"

namespace kalmira::bench {
namespace {

constexpr Nanoseconds kMillisecond = 1'000'000;
constexpr Nanoseconds kStartLimit = 10'000 * kMillisecond;

double inMilliseconds(Nanoseconds time) { return static_cast<double>(time) * 1e-6; }

// Where the logger writes; removed with all that is in it.
class WorkFolder {
 public:
  WorkFolder() {
    auto name = (std::filesystem::temp_directory_path() / "kalmira_peers_XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  ~WorkFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// One logger with its lines and its file.
struct Stage {
  explicit Stage(const Logger& loggerOfRun) : logger(loggerOfRun) {
    for (auto* line : {&instrument, &gps}) {
      if (const auto problem = line->open(); !problem.empty()) throw std::runtime_error(problem);
    }
  }

  void start() {
    const Lines lines{.instrument = instrument.device(), .gps = gps.device()};
    const auto problem = process.start(logger.command(lines, folder.path()));
    if (!problem.empty()) throw std::runtime_error(problem);
  }

  void send(const Sending& sending) {
    (sending.gps ? gps : instrument).send(sending.bytes, inMilliseconds(now()) * 1e-3);
  }

  void mustRun() {
    if (!process.runs()) throw std::runtime_error(logger.name + " has ended by itself");
  }

  const Logger& logger;
  WorkFolder folder;
  sim::PseudoTerminal instrument;
  sim::PseudoTerminal gps;
  GrowingFile file{logger.file(folder.path()), logger.wholeBytes};
  LoggerProcess process;
};

// Records on their way to the file.
class Watch {
 public:
  explicit Watch(Stage& stage) : stage_(stage) {}

  void sent(std::size_t number, Nanoseconds when) { under_way_[number] = when; }

  // Until `time`. Sleeps between changes of the file: looking without a pause would take a processor away
  // from the logger and from the system's own carrying of the bytes.
  void until(Nanoseconds time) {
    while (now() < time) {
      stage_.file.waitForGrowth(time);
      take(now());
    }
  }

  std::size_t missing() {
    take(now());
    return under_way_.size();
  }
  const std::vector<double>& latency_ms() const { return latency_ms_; }

 private:
  void take(Nanoseconds at) {
    for (const auto number : stage_.file.take()) {
      const auto found = under_way_.find(number);
      if (found == under_way_.end()) continue;
      latency_ms_.push_back(inMilliseconds(at - found->second));
      under_way_.erase(found);
    }
  }

  Stage& stage_;
  std::map<std::size_t, Nanoseconds> under_way_;
  std::vector<double> latency_ms_;
};

// Sends records at the stream's rate until one has reached the file. Returns the number that comes next.
std::size_t warmUp(Stage& stage, const StreamRates& rates) {
  const auto begun = now();
  for (std::size_t number = 0; now() - begun < kStartLimit; ++number) {
    stage.mustRun();
    stage.send(recordToSend(number));
    sleepUntil(now() + static_cast<Nanoseconds>(1e9 / rates.records_hz));
    if (!stage.file.take().empty()) return number + 1;
  }
  // A logger that keeps records in a buffer has shown nothing yet; that is its right, and will be measured.
  stage.mustRun();
  return static_cast<std::size_t>(inMilliseconds(kStartLimit) * 1e-3 * rates.records_hz) + 1;
}

// Tells what is done with a device, by whomever.
class DeviceWatch {
 public:
  explicit DeviceWatch(const std::string& device) : watch_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (::inotify_add_watch(watch_, device.c_str(), IN_OPEN | IN_ACCESS) < 0) {
      throw std::runtime_error("no inotify");
    }
  }
  DeviceWatch(const DeviceWatch&) = delete;
  DeviceWatch& operator=(const DeviceWatch&) = delete;
  ~DeviceWatch() { ::close(watch_); }

  // The time when it was first seen to have happened.
  std::optional<Nanoseconds> opened() { return look(), opened_; }
  std::optional<Nanoseconds> read() { return look(), read_; }

 private:
  void look() {
    alignas(inotify_event) std::array<char, 4096> events{};
    const ssize_t count = ::read(watch_, events.data(), events.size());
    const auto at = now();
    inotify_event event{};
    for (ssize_t i = 0; i < count; i += static_cast<ssize_t>(sizeof event + event.len)) {
      std::memcpy(&event, events.data() + i, sizeof event);
      if ((event.mask & IN_OPEN) != 0 && !opened_) opened_ = at;
      if ((event.mask & IN_ACCESS) != 0 && !read_) read_ = at;
    }
  }

  int watch_;
  std::optional<Nanoseconds> opened_;
  std::optional<Nanoseconds> read_;
};

}  // namespace

RunFigures measureRun(const Logger& logger, const StreamRates& rates, double seconds) {
  Stage stage(logger);
  stage.start();
  const auto first = warmUp(stage, rates);
  const auto stream = surveyStream(seconds, rates.records_hz, logger.gps ? rates.gps_hz : 0, first);
  Watch watch(stage);
  RunFigures figures;
  const double cpuBefore = stage.process.cpuSeconds();
  const auto begun = now();
  for (const auto& sending : stream) {
    watch.until(begun + sending.due);
    if (!sending.gps) {
      watch.sent(sending.number, now());
      ++figures.sent;
    }
    stage.send(sending);
  }
  watch.until(now() + kSettle_ms * kMillisecond);
  stage.mustRun();
  const double elapsed_s = inMilliseconds(now() - begun) * 1e-3;
  figures.cpuSecondsPerHour = (stage.process.cpuSeconds() - cpuBefore) / elapsed_s * 3600;
  figures.peakMegabytes = stage.process.peakMegabytes();
  stage.process.kill();
  figures.latency_ms = watch.latency_ms();
  figures.lost = watch.missing();
  return figures;
}

StartFigures measureStart(const Logger& logger) {
  Stage stage(logger);
  DeviceWatch port(stage.instrument.device());
  const auto begun = now();
  stage.start();
  while (!port.opened()) {
    stage.mustRun();
    if (now() - begun > kStartLimit) throw std::runtime_error(logger.name + " opens no port");
  }
  const auto opened = *port.opened();
  auto due = opened;
  for (std::size_t number = 0; !port.read() || stage.file.take().empty();) {
    const auto at = now();
    if (at - opened > kStartLimit) throw std::runtime_error(logger.name + " logs nothing");
    if (at < due) {
      ::sched_yield();
      continue;
    }
    stage.send(recordToSend(number++));
    due += kMillisecond;
  }
  const auto logged = now();
  return {.openToRead_ms = inMilliseconds(*port.read() - opened),
          .openToFile_ms = inMilliseconds(logged - opened),
          .startToFile_ms = inMilliseconds(logged - begun)};
}

}  // namespace kalmira::bench
