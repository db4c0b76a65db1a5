#include "window_child.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>

extern char** environ;  // NOLINT(readability-redundant-declaration): POSIX has the program declare it

namespace kalmira::bench {

WindowChild::WindowChild(const std::vector<std::string>& command) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  output_ = ends[0];
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  auto kept = command;
  std::vector<char*> arguments;
  arguments.reserve(kept.size() + 1);
  for (auto& argument : kept) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  const int error = ::posix_spawn(&pid_, arguments[0], &actions, nullptr, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  if (error == 0) return;
  ::close(output_);
  throw std::runtime_error(command.front() + " does not run");
}

WindowChild::~WindowChild() {
  if (pid_ >= 0) ::kill(pid_, SIGKILL);
  end();
  ::close(output_);
}

std::string WindowChild::line() {
  std::string out;
  for (char c = 0;;) {
    const auto count = ::read(output_, &c, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) throw std::runtime_error("a program has ended too early");
    if (c == '\n') return out;
    out += c;
  }
}

int WindowChild::end() {
  int status = 0;
  while (pid_ >= 0 && ::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace kalmira::bench
