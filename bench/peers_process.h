#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace kalmira::bench {

// A serial logger as a child process, and what the system knows about it.
class LoggerProcess {
 public:
  LoggerProcess() = default;
  LoggerProcess(const LoggerProcess&) = delete;
  LoggerProcess& operator=(const LoggerProcess&) = delete;
  ~LoggerProcess() { kill(); }

  // The first argument is the program, looked for in PATH. Its input is a pipe on which nothing comes, its
  // output goes nowhere. An empty text, or why it does not run.
  std::string start(const std::vector<std::string>& arguments);
  bool runs();
  // Of all its threads since its start, also of those that have ended.
  double cpuSeconds() const;
  // The most memory it ever had at once, in units of 1,000,000 bytes; 0 when it does not run.
  double peakMegabytes() const;
  // Without any warning. Returns when it is gone.
  void kill();

 private:
  pid_t pid_ = -1;
  int input_ = -1;
};

bool isInstalled(const std::string& program);

}  // namespace kalmira::bench
