#include "link/device_claim.h"

#include <fmt/format.h>

#ifndef _WIN32
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>
#endif
#ifdef __linux__
#include <linux/serial.h>
#endif

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "platform/files.h"
#include "platform/text.h"

namespace kalmira {

std::string missingText(std::string_view path) {
  return fmt::format("There is no device {}: check the cable and the port", path);
}

std::string heldText(std::string_view path, std::string_view holder, int pid) {
  if (holder.empty()) return fmt::format("{} is held by another program: end that program", path);
  return fmt::format("{} is held by {} (process {}): end that program", path, holder, pid);
}

std::string deniedText(std::string_view path, std::string_view owner, std::string_view group) {
  if (group.empty()) return fmt::format("No permission: only {} may use {}", owner, path);
  return fmt::format(
      "No permission: {} is for members of the group {}: run \"sudo usermod -a -G {} $USER\" and log in "
      "again",
      path, group, group);
}

std::string notSerialText(std::string_view path, bool isFolder) {
  return fmt::format("{} is {}, not a serial port", path, isFolder ? "a folder" : "a file");
}

#ifndef _WIN32

namespace {

namespace fs = std::filesystem;

struct Holder {
  int pid = 0;  // 0: not known
  std::string name;
};

Holder holderOf(int pid) { return {pid, firstLineOf(fmt::format("/proc/{}/comm", pid))}; }

bool isRunning(int pid) { return kill(pid, 0) == 0 || errno == EPERM; }

// The lock file of the terminal programs: one line with the number of the process. The serial port library writes files
// of the same name with more lines, and judges those itself. Nothing when no running program holds it; a file that a
// dead one left is removed.
std::optional<Holder> lockFileHolder(const std::string& path) {
  std::string name = path.starts_with("/dev/") ? path.substr(5) : path;
  for (char& c : name) {
    if (c == '/') c = '_';
  }
  const fs::path file = "/var/lock/LCK.." + name;
  std::ifstream in(file);
  std::string process;
  std::string more;
  if (!std::getline(in, process) || std::getline(in, more)) return std::nullopt;
  const int pid = parseInt(process);
  if (pid <= 0) return std::nullopt;
  if (isRunning(pid)) return holderOf(pid);
  std::error_code ignored;
  fs::remove(file, ignored);
  return std::nullopt;
}

// Whoever holds an advisory lock on the device, by the kernel's list of locks, a line each:
//   1: FLOCK  ADVISORY  WRITE 23073 00:1b:5 0 EOF
std::optional<Holder> lockHolder(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  const auto file = fmt::format(" {:02x}:{:02x}:{} ", major(status.st_dev), minor(status.st_dev), status.st_ino);
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    const auto at = line.find(file);
    if (at == std::string::npos || at == 0) continue;
    const auto number = line.rfind(' ', at - 1);
    const int pid = number == std::string::npos ? 0 : parseInt(line.substr(number, at - number));
    if (pid > 0) return holderOf(pid);
  }
  return std::nullopt;
}

// Whoever holds the device or, when no lock tells, has it open, of the processes that this user may look at.
Holder findHolder(const std::string& path) {
  if (const auto holder = lockHolder(path)) return *holder;
  std::error_code error;
  for (fs::directory_iterator process("/proc", error), end; !error && process != end; process.increment(error)) {
    const int pid = parseInt(process->path().filename().string());
    if (pid <= 0) continue;
    std::error_code closed;
    for (fs::directory_iterator file(process->path() / "fd", closed), last; !closed && file != last;
         file.increment(closed)) {
      std::error_code unreadable;
      if (fs::read_symlink(file->path(), unreadable) == path) return holderOf(pid);
    }
  }
  return {};
}

PortError held(const std::string& path, const Holder& holder) {
  return {PortErrorKind::held, heldText(path, holder.name, holder.pid)};
}

std::string userName(uid_t user) {
  std::array<char, 1024> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) return entry.pw_name;
  return fmt::format("user {}", user);
}

std::string groupName(gid_t groupId) {
  std::array<char, 4096> buffer{};
  group entry{};
  group* found = nullptr;
  if (getgrgid_r(groupId, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
    return entry.gr_name;
  }
  return fmt::format("{}", groupId);
}

PortError denied(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return {PortErrorKind::denied, "No permission to use " + path};
  constexpr mode_t kGroupUse = S_IRGRP | S_IWGRP;
  const bool groupMayUse = (status.st_mode & kGroupUse) == kGroupUse && status.st_gid != 0;
  return {PortErrorKind::denied,
          deniedText(path, userName(status.st_uid), groupMayUse ? groupName(status.st_gid) : std::string())};
}

PortError openingError(const std::string& path, int reason) {
  switch (reason) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
    case EIO:  // a device node with nothing behind it
      return {PortErrorKind::missing, missingText(path)};
    case EBUSY: return held(path, findHolder(path));
    case EACCES:
    case EPERM: return denied(path);
    default: return {PortErrorKind::other, fmt::format("{}: {}", path, std::generic_category().message(reason))};
  }
}

bool isPseudoTerminal(std::string_view path) { return path.starts_with("/dev/pts/"); }

bool isExclusive([[maybe_unused]] int descriptor) {
  int exclusive = 0;
#ifdef TIOCGEXCL
  if (ioctl(descriptor, TIOCGEXCL, &exclusive) != 0) return false;
#endif
  return exclusive != 0;
}

}  // namespace

std::optional<PortError> DeviceClaim::take(const std::string& path) {
  release();
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return openingError(path, errno);
  if (!S_ISCHR(status.st_mode)) {
    return PortError{PortErrorKind::notSerial, notSerialText(path, S_ISDIR(status.st_mode))};
  }
  if (const auto holder = lockFileHolder(path)) return held(path, *holder);
  const int descriptor = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return openingError(path, errno);
  descriptor_ = descriptor;
  if (isatty(descriptor) == 0) {
    release();
    return PortError{PortErrorKind::notSerial, notSerialText(path, false)};
  }
  const bool isTaken =
      (isExclusive(descriptor) && !isPseudoTerminal(path)) || flock(descriptor, LOCK_EX | LOCK_NB) != 0;
  if (!isTaken) return std::nullopt;
  // Ours is closed first, so that it is not found as the holder.
  release();
  return held(path, findHolder(path));
}

std::optional<PortError> lookAtDevice(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return openingError(path, errno);
  if (!S_ISCHR(status.st_mode)) {
    return PortError{PortErrorKind::notSerial, notSerialText(path, S_ISDIR(status.st_mode))};
  }
  if (faccessat(AT_FDCWD, path.c_str(), R_OK | W_OK, AT_EACCESS) != 0) return openingError(path, errno);
  return std::nullopt;
}

void DeviceClaim::release() {
  // Nothing was written here: a failing close loses nothing.
  if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
}

LineSettings DeviceClaim::found() const {
  struct Speed {
    speed_t code;
    int baud;
  };
  static constexpr std::array kSpeeds{Speed{B1200, 1200},     Speed{B2400, 2400},     Speed{B4800, 4800},
                                      Speed{B9600, 9600},     Speed{B19200, 19200},   Speed{B38400, 38400},
                                      Speed{B57600, 57600},   Speed{B115200, 115200}, Speed{B230400, 230400},
                                      Speed{B460800, 460800}, Speed{B921600, 921600}};
  LineSettings line;
  termios present{};
  if (tcgetattr(descriptor_, &present) != 0) return line;
  const speed_t speed = cfgetospeed(&present);
  for (const Speed& known : kSpeeds) {
    if (known.code == speed) line.baud = known.baud;
  }
  line.dataBits = (present.c_cflag & CSIZE) == CS7 ? 7 : 8;
  const Parity parity = (present.c_cflag & PARODD) != 0 ? Parity::odd : Parity::even;
  line.parity = (present.c_cflag & PARENB) != 0 ? parity : Parity::none;
  line.stopBits = (present.c_cflag & CSTOPB) != 0 ? 2 : 1;
  return line;
}

void dropLastingExclusiveMode(int descriptor, std::string_view path) {
  if (isPseudoTerminal(path)) ioctl(descriptor, TIOCNXCL);
}

#else

std::optional<PortError> DeviceClaim::take(const std::string&) { return std::nullopt; }
std::optional<PortError> lookAtDevice(const std::string&) { return std::nullopt; }
void DeviceClaim::release() {}
LineSettings DeviceClaim::found() const { return {}; }
void dropLastingExclusiveMode(int, std::string_view) {}

#endif

void askForLowLatency([[maybe_unused]] int descriptor) {
#ifdef __linux__
  serial_struct serial{};
  if (ioctl(descriptor, TIOCGSERIAL, &serial) != 0) return;
  serial.flags = static_cast<int>(static_cast<unsigned>(serial.flags) | ASYNC_LOW_LATENCY);
  ioctl(descriptor, TIOCSSERIAL, &serial);
#endif
}

}  // namespace kalmira
