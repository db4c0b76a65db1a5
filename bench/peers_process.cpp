#include "peers_process.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/text.h"

extern char** environ;  // NOLINT(readability-redundant-declaration): POSIX has the program declare it

namespace kalmira::bench {

std::string LoggerProcess::start(const std::vector<std::string>& arguments) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return "no pipe";
  input_ = ends[1];
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::vector<std::string> kept = arguments;
  std::vector<char*> pointers;
  pointers.reserve(kept.size() + 1);
  for (auto& argument : kept) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  const int error = ::posix_spawnp(&pid_, pointers.front(), &actions, nullptr, pointers.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(ends[0]);
  if (error == 0) return {};
  pid_ = -1;
  return fmt::format("{}: {}", arguments.front(), std::strerror(error));
}

bool LoggerProcess::runs() {
  if (pid_ < 0) return false;
  if (::waitpid(pid_, nullptr, WNOHANG) == 0) return true;
  pid_ = -1;
  return false;
}

double LoggerProcess::cpuSeconds() const {
  clockid_t clock{};
  timespec time{};
  if (pid_ < 0 || ::clock_getcpuclockid(pid_, &clock) != 0 || ::clock_gettime(clock, &time) != 0) return 0;
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double LoggerProcess::peakMegabytes() const {
  std::ifstream status(fmt::format("/proc/{}/status", pid_));
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return parseReal(line.substr(6)) * 1024e-6;  // "VmHWM:   5120 kB"
  }
  return 0;
}

void LoggerProcess::kill() {
  if (pid_ >= 0) {
    ::kill(pid_, SIGKILL);
    while (::waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  if (input_ >= 0) ::close(input_);
  pid_ = input_ = -1;
}

bool isInstalled(const std::string& program) {
  const char* path = std::getenv("PATH");
  std::istringstream folders(path == nullptr ? "" : path);
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (::access((std::filesystem::path(folder) / program).c_str(), X_OK) == 0) return true;
  }
  return false;
}

}  // namespace kalmira::bench
