#include "sim/terminal_outlet.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

namespace kalmira::sim {
namespace {

constexpr double kStale_s = 5;

std::string failure(std::string_view what) {
  return fmt::format("cannot make a pseudo-terminal: {}: {}", what, std::strerror(errno));
}

bool makeRaw(int terminal) {
  termios settings{};
  if (tcgetattr(terminal, &settings) != 0) return false;
  cfmakeraw(&settings);
  return tcsetattr(terminal, TCSANOW, &settings) == 0;
}

bool writeWhole(int file, std::string_view bytes) {
  return ::write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
}

// What the other side says to the instrument or the receiver: nobody listens, but the line must not clog.
void discardInput(int file) {
  std::array<char, 256> bytes{};
  while (::read(file, bytes.data(), bytes.size()) > 0) {
  }
}

namespace fs = std::filesystem;

std::string makeLink(const fs::path& device, const fs::path& link) {
  std::error_code error;
  const auto status = fs::symlink_status(link, error);
  if (fs::is_symlink(status)) {
    fs::remove(link, error);
  } else if (fs::exists(status)) {
    return fmt::format("cannot make the link {}: something else is there and is left alone", link.string());
  }
  error.clear();
  fs::create_symlink(device, link, error);
  if (error) return fmt::format("cannot make the link {}: {}", link.string(), error.message());
  return {};
}

void removeLink(const fs::path& device, const fs::path& link) {
  std::error_code error;
  if (fs::read_symlink(link, error) == device) fs::remove(link, error);
}

}  // namespace

std::string PseudoTerminal::open() {
  close();
  near_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (near_ < 0) return failure("open");
  if (::grantpt(near_) != 0 || ::unlockpt(near_) != 0) return failure("unlock");
  const char* name = ::ptsname(near_);
  if (name == nullptr) return failure("name");
  device_ = name;
  far_ = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (far_ < 0) return failure(device_);
  if (!makeRaw(far_)) return failure("raw mode");
  caught_up_s_ = 0;
  return {};
}

void PseudoTerminal::close() {
  for (int* file : {&far_, &near_}) {
    // Nothing is buffered here, so there is nothing that a failing close could lose.
    if (*file >= 0) ::close(*file);
    *file = -1;
  }
}

bool PseudoTerminal::caughtUp() const {
  int waiting = 0;
  return ::ioctl(far_, FIONREAD, &waiting) != 0 || waiting == 0;
}

void PseudoTerminal::dropUnread() {
  ::tcflush(near_, TCOFLUSH);
  ::tcflush(far_, TCIFLUSH);
  // A program that took the line for itself and was killed can no longer let go of it; on a real line the last close
  // does that.
  ::ioctl(far_, TIOCNXCL);
}

void PseudoTerminal::send(std::string_view bytes, double time_s) {
  discardInput(near_);
  if (caughtUp()) caught_up_s_ = time_s;
  if (time_s - caught_up_s_ <= kStale_s && writeWhole(near_, bytes)) return;
  dropUnread();
  caught_up_s_ = time_s;
  // Now there is room; should the line refuse even so, these bytes are lost like all that nobody takes.
  (void)writeWhole(near_, bytes);
}

TerminalOutlet::TerminalOutlet(fs::path instrumentLink, fs::path gpsLink, std::FILE* names)
    : lines_{{{.name = "instrument", .link = std::move(instrumentLink), .terminal = {}},
              {.name = "gps", .link = std::move(gpsLink), .terminal = {}}}},
      names_(names) {}

std::string TerminalOutlet::plugLine(Line& line) {
  if (auto error = line.terminal.open(); !error.empty()) return error;
  if (!line.link.empty()) {
    if (auto error = makeLink(line.terminal.device(), line.link); !error.empty()) return error;
    line.linked = true;
  }
  const auto text = fmt::format("{} {}\n", line.name, line.terminal.device());
  if (std::fputs(text.c_str(), names_) < 0 || std::fflush(names_) != 0) return "cannot print the devices' names";
  return {};
}

std::string TerminalOutlet::plug() {
  for (auto& line : lines_) {
    if (auto error = plugLine(line); !error.empty()) {
      unplug();
      return error;
    }
  }
  return {};
}

void TerminalOutlet::unplug() {
  for (auto& line : lines_) {
    if (std::exchange(line.linked, false)) removeLink(line.terminal.device(), line.link);
    line.terminal.close();
  }
}

void TerminalOutlet::send(Port port, std::string_view bytes, double time_s) {
  lines_[port == Port::instrument ? 0 : 1].terminal.send(bytes, time_s);
}

bool TerminalOutlet::caughtUp() const {
  return std::all_of(lines_.begin(), lines_.end(), [](const Line& line) { return line.terminal.caughtUp(); });
}

}  // namespace kalmira::sim
