#include "peers_stream.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <ctime>
#include <stdexcept>
#include <string_view>
#include <thread>

#include "platform/text.h"
#include "sim/world.h"

namespace kalmira::bench {
namespace {

// A vertical dipole, range 2; then two numbers of a sign and four digits.
constexpr std::string_view kRecordStart = "T\x04";
constexpr std::size_t kNumbers = 10000;

Nanoseconds inNanoseconds(double seconds) { return std::llround(seconds * 1e9); }

}  // namespace

Nanoseconds now() { return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count(); }

void sleepUntil(Nanoseconds time) { std::this_thread::sleep_for(std::chrono::nanoseconds(time - now())); }

std::string numberedRecord(std::size_t number) {
  return fmt::format("{}+{:04}+{:04}", kRecordStart, number % kNumbers, number / kNumbers % kNumbers);
}

std::optional<std::size_t> recordNumber(std::string_view bytes) {
  if (bytes.size() < kRecordBytes || !bytes.starts_with(kRecordStart)) return std::nullopt;
  const auto low = static_cast<std::size_t>(parseInt(bytes.substr(2, 5)));
  const auto high = static_cast<std::size_t>(parseInt(bytes.substr(7, 5)));
  const auto number = high * kNumbers + low;
  if (numberedRecord(number) != bytes.substr(0, kRecordBytes)) return std::nullopt;
  return number;
}

Sending recordToSend(std::size_t number) {
  return {.due = 0, .gps = false, .number = number, .bytes = numberedRecord(number) + '\r'};
}

std::vector<Sending> surveyStream(double seconds, double recordRate, double gpsRate, std::size_t firstNumber) {
  constexpr std::uint64_t kSeed = 1;
  std::vector<Sending> stream;
  const auto records = static_cast<std::size_t>(seconds * recordRate);
  for (std::size_t i = 0; i < records; ++i) {
    stream.push_back(recordToSend(firstNumber + i));
    stream.back().due = inNanoseconds(static_cast<double>(i) / recordRate);
  }
  const auto sentences = static_cast<std::size_t>(seconds * gpsRate);
  for (std::size_t i = 0; i < sentences; ++i) {
    const double time_s = static_cast<double>(i) / gpsRate;
    stream.push_back({.due = inNanoseconds(time_s),
                      .gps = true,
                      .number = i,
                      .bytes = sim::withChecksum(sim::nmeaBody(kSeed, i, time_s), 0) + "\r\n"});
  }
  std::stable_sort(stream.begin(), stream.end(), [](const Sending& a, const Sending& b) { return a.due < b.due; });
  return stream;
}

GrowingFile::~GrowingFile() {
  if (file_ >= 0) ::close(file_);
  if (changes_ >= 0) ::close(changes_);
}

bool GrowingFile::open() {
  if (file_ >= 0) return true;
  file_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
  if (file_ < 0) return false;
  changes_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (::inotify_add_watch(changes_, path_.c_str(), IN_MODIFY) < 0) throw std::runtime_error("no inotify");
  return true;
}

void GrowingFile::waitForGrowth(Nanoseconds time) {
  constexpr Nanoseconds kSecond = 1'000'000'000;
  const auto left = std::max<Nanoseconds>(time - now(), 0);
  const timespec timeout{.tv_sec = left / kSecond, .tv_nsec = left % kSecond};
  pollfd change{.fd = open() ? changes_ : -1, .events = POLLIN, .revents = 0};
  if (::ppoll(&change, 1, &timeout, nullptr) <= 0) return;
  std::array<char, 4096> events{};
  (void)!::read(changes_, events.data(), events.size());
}

std::vector<std::size_t> GrowingFile::take() {
  if (!open()) return {};
  std::array<char, 4096> block{};
  ssize_t count = 0;
  while ((count = ::pread(file_, block.data(), block.size(), offset_)) > 0) {
    rest_.append(block.data(), static_cast<std::size_t>(count));
    offset_ += count;
  }
  std::vector<std::size_t> numbers;
  std::size_t start = 0;
  while (start + whole_bytes_ <= rest_.size()) {
    const auto number = recordNumber(std::string_view(rest_).substr(start));
    if (number) numbers.push_back(*number);
    start += number ? whole_bytes_ : 1;
  }
  rest_.erase(0, start);
  return numbers;
}

}  // namespace kalmira::bench
