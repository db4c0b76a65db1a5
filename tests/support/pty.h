#pragma once

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <string>
#include <string_view>

namespace kalmira {

// A pseudo-terminal: the test plays the device at the one end, the program opens `name`.
class Pty {
 public:
  Pty() {
    std::array<char, 64> buffer{};
    if (grantpt(master_) == 0 && unlockpt(master_) == 0 && ptsname_r(master_, buffer.data(), buffer.size()) == 0) {
      name = buffer.data();
    }
  }
  ~Pty() { unplug(); }
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;

  std::string name;
  bool send(std::string_view bytes) const {
    return ::write(master_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
  }
  std::string receive() const {
    std::array<char, 256> buffer{};
    const ssize_t count = ::read(master_, buffer.data(), buffer.size());
    return {buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
  }
  // In pieces, as it may come, until what has come ends so.
  std::string receiveUpTo(char end) const {
    std::string all;
    for (auto piece = receive(); !piece.empty(); piece = receive()) {
      all += piece;
      if (all.back() == end) break;
    }
    return all;
  }
  int master() const { return master_; }
  void unplug() {
    if (master_ >= 0) ::close(master_);
    master_ = -1;
  }

 private:
  int master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
};

// What the system calls a program: under an emulator, that one's name.
inline std::string nameOf(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  std::getline(file, name);
  return name;
}

}  // namespace kalmira
