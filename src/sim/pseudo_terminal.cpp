#include "sim/pseudo_terminal.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

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
  // A program that took the line for itself and was killed can no longer let go of it; on a real line the
  // last close does that.
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

}  // namespace kalmira::sim
