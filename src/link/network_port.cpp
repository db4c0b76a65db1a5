#include "link/network_port.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <future>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/text.h"

namespace kalmira {
namespace {

using Moment = std::chrono::steady_clock::time_point;
constexpr auto kOpening = std::chrono::milliseconds(900);
constexpr auto kSilence = std::chrono::seconds(3);
constexpr std::string_view kTcp = "tcp://";
constexpr std::string_view kGpsd = "gpsd://";
constexpr std::string_view kGpsdPort = "2947";
constexpr std::string_view kWatch = "?WATCH={\"enable\":true,\"nmea\":true}\n";

constexpr std::int64_t kLookForStopMs = 50;

int millisecondsUntil(Moment end) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
  return static_cast<int>(std::max<std::int64_t>(0, left.count()));
}

// How long opening may wait.
struct Patience {
  Moment end;
  const std::atomic<bool>* stop;

  bool isOver() const { return std::chrono::steady_clock::now() >= end || (stop != nullptr && *stop); }
  // Until it has to be asked again.
  int stepMs() const { return static_cast<int>(std::min<std::int64_t>(kLookForStopMs, millisecondsUntil(end))); }
};

struct Found {
  std::vector<std::pair<sockaddr_storage, socklen_t>> addresses;
  std::string problem;
};

Found lookUp(const NetworkAddress& address) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* list = nullptr;
  const int error = ::getaddrinfo(address.host.c_str(), address.port.c_str(), &hints, &list);
  if (error != 0) return {.addresses = {}, .problem = ::gai_strerror(error)};
  Found found;
  for (const auto* item = list; item != nullptr; item = item->ai_next) {
    auto& [storage, length] = found.addresses.emplace_back();
    std::copy_n(reinterpret_cast<const char*>(item->ai_addr), item->ai_addrlen, reinterpret_cast<char*>(&storage));
    length = item->ai_addrlen;
  }
  ::freeaddrinfo(list);
  return found;
}

// No call for looking up a name can be ended: one that takes too long is left to itself.
Found lookUpFor(const NetworkAddress& address, const Patience& patience) {
  std::promise<Found> promise;
  auto future = promise.get_future();
  std::thread([promise = std::move(promise), address]() mutable { promise.set_value(lookUp(address)); }).detach();
  while (future.wait_for(std::chrono::milliseconds(patience.stepMs())) != std::future_status::ready) {
    if (patience.isOver()) return {.addresses = {}, .problem = "its name is not found"};
  }
  return future.get();
}

// A connected socket, or -1 with errno.
int connectFor(const sockaddr_storage& address, socklen_t length, const Patience& patience) {
  const int fd = ::socket(address.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (fd < 0) return -1;
  int error = ::connect(fd, reinterpret_cast<const sockaddr*>(&address), length) == 0 ? 0 : errno;
  if (error == EINPROGRESS) {
    pollfd wait{.fd = fd, .events = POLLOUT, .revents = 0};
    socklen_t size = sizeof error;
    int ready = 0;
    do {
      ready = ::poll(&wait, 1, patience.stepMs());
    } while (ready != 1 && !patience.isOver());
    if (ready != 1) {
      error = ETIMEDOUT;
    } else if (::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size) != 0) {
      error = errno;
    }
  }
  if (error == 0) return fd;
  ::close(fd);
  errno = error;
  return -1;
}

class NetworkPort final : public Port {
 public:
  ~NetworkPort() override { close(); }

  void giveUpWhen(const std::atomic<bool>& set) override { stop_ = &set; }
  std::optional<PortError> open(const std::string& device, const LineSettings&) override {
    close();
    const auto address = parseNetworkAddress(device);
    if (!address) return PortError{PortErrorKind::missing, device + " is no address: tcp://HOST:PORT is one"};
    const Patience patience{.end = std::chrono::steady_clock::now() + kOpening, .stop = stop_};
    auto found = lookUpFor(*address, patience);
    for (const auto& [socketAddress, length] : found.addresses) {
      fd_ = connectFor(socketAddress, length, patience);
      if (fd_ >= 0) break;
      found.problem = std::generic_category().message(errno);
    }
    if (fd_ < 0) return PortError{PortErrorKind::missing, fmt::format("{}: {}", device, found.problem)};
    const int on = 1;
    // Where the system does not have it, silence is noticed all the same.
    (void)::setsockopt(fd_, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
    gpsd_ = address->gpsd;
    reports_ = {};
    last_byte_ = std::chrono::steady_clock::now();
    if (gpsd_ && ::send(fd_, kWatch.data(), kWatch.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(kWatch.size())) {
      close();
      return PortError{PortErrorKind::missing, device + " does not take a request"};
    }
    return std::nullopt;
  }

  ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) override {
    if (fd_ < 0) return {.count = 0, .gone = true};
    pollfd wait{.fd = fd_, .events = POLLIN, .revents = 0};
    const int ready = ::poll(&wait, 1, timeoutMs);
    if (ready < 0 && errno == EINTR) return {};
    if (ready == 0) return {.count = 0, .gone = std::chrono::steady_clock::now() - last_byte_ > kSilence};
    const auto count = ::recv(fd_, buffer.data(), buffer.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return {};
    if (count <= 0) return {.count = 0, .gone = true};
    last_byte_ = std::chrono::steady_clock::now();
    const auto got = buffer.first(static_cast<std::size_t>(count));
    return {.count = gpsd_ ? reports_.withoutReports(got) : got.size(), .gone = false};
  }

  void purge() override {
    std::array<std::uint8_t, 4096> dropped{};
    // What is left of a report goes on being dropped.
    while (fd_ >= 0 && ::recv(fd_, dropped.data(), dropped.size(), MSG_DONTWAIT) > 0) {
    }
  }
  unsigned modemStatus() override { return 0; }
  bool write(std::span<const std::uint8_t> bytes, int timeoutMs) override {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!bytes.empty()) {
      pollfd wait{.fd = fd_, .events = POLLOUT, .revents = 0};
      if (fd_ < 0 || ::poll(&wait, 1, millisecondsUntil(end)) != 1) return false;
      const auto count = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (count < 0) return false;
      bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
  }
  void close() override {
    if (fd_ >= 0) ::close(std::exchange(fd_, -1));
  }

 private:
  int fd_ = -1;
  const std::atomic<bool>* stop_ = nullptr;
  bool gpsd_ = false;
  ReportFilter reports_;
  Moment last_byte_{};
};

// Decides when it is opened: a COM number may get another device between two tries.
class AnyPort final : public Port {
 public:
  void giveUpWhen(const std::atomic<bool>& set) override { stop_ = &set; }
  std::optional<PortError> open(const std::string& device, const LineSettings& line) override {
    port_ = isNetworkName(device) ? makeNetworkPort() : makeQtSerialPort();
    if (stop_ != nullptr) port_->giveUpWhen(*stop_);
    return port_->open(device, line);
  }
  ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) override {
    return port_ ? port_->read(buffer, timeoutMs) : ReadResult{.count = 0, .gone = true};
  }
  void purge() override {
    if (port_) port_->purge();
  }
  unsigned modemStatus() override { return port_ ? port_->modemStatus() : 0; }
  bool write(std::span<const std::uint8_t> bytes, int timeoutMs) override {
    return port_ && port_->write(bytes, timeoutMs);
  }
  void close() override {
    if (port_) port_->close();
  }

 private:
  std::unique_ptr<Port> port_;
  const std::atomic<bool>* stop_ = nullptr;
};

}  // namespace

bool isNetworkName(std::string_view device) { return device.find("://") != std::string_view::npos; }

std::optional<NetworkAddress> parseNetworkAddress(std::string_view device) {
  NetworkAddress address;
  address.gpsd = device.starts_with(kGpsd);
  if (!address.gpsd && !device.starts_with(kTcp)) return std::nullopt;
  device.remove_prefix(address.gpsd ? kGpsd.size() : kTcp.size());
  if (device.starts_with('[')) {
    const auto end = device.find(']');
    if (end == std::string_view::npos) return std::nullopt;
    address.host = device.substr(1, end - 1);
    device.remove_prefix(end + 1);
    if (address.host.find(':') == std::string::npos) return std::nullopt;
  } else {
    address.host = device.substr(0, device.find(':'));
    device.remove_prefix(address.host.size());
  }
  const bool whole = address.host.find_first_of(" /\t@") == std::string::npos && !hasControlCharacters(address.host);
  if (address.host.empty() || !whole) return std::nullopt;
  if (device.empty() && address.gpsd) {
    address.port = kGpsdPort;
    return address;
  }
  if (!device.starts_with(':')) return std::nullopt;
  const auto number = wholeNumber<int>(device.substr(1));
  if (!number || *number < 1 || *number > 65535 ||
      device.find_first_not_of("0123456789", 1) != std::string_view::npos) {
    return std::nullopt;
  }
  address.port = fmt::format("{}", *number);
  return address;
}

std::string networkProblem(std::string_view device, PortRole role) {
  if (!isNetworkName(device)) return {};
  const auto address = parseNetworkAddress(device);
  if (!address) return fmt::format("\"{}\" is no address: tcp://HOST:PORT or gpsd://HOST is one", printable(device));
  if (role == PortRole::marker) return "a marker is a line of a serial port: it has no address";
  if (role == PortRole::instrument && address->gpsd) return "gpsd serves receivers, not instruments";
  return {};
}

std::size_t ReportFilter::withoutReports(std::span<std::uint8_t> bytes) {
  const auto isReport = [this](std::uint8_t byte) {
    if (at_line_start_) in_report_ = byte == '{';
    at_line_start_ = byte == '\n';
    return in_report_;
  };
  std::size_t kept = 0;
  for (const auto byte : bytes) {
    if (!isReport(byte)) bytes[kept++] = byte;
  }
  return kept;
}

std::unique_ptr<Port> makeNetworkPort() { return std::make_unique<NetworkPort>(); }
std::unique_ptr<Port> makePort() { return std::make_unique<AnyPort>(); }

}  // namespace kalmira
