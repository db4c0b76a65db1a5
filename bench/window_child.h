#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace kalmira::bench {

// A program of which only the standard output matters. Ended with its owner.
class WindowChild {
 public:
  // Throws std::runtime_error when it cannot be started.
  explicit WindowChild(const std::vector<std::string>& command);
  ~WindowChild();
  WindowChild(const WindowChild&) = delete;
  WindowChild& operator=(const WindowChild&) = delete;

  // The next line; throws when there is none any more.
  std::string line();
  // Waits until it has ended by itself: the exit status.
  int end();

 private:
  pid_t pid_ = -1;
  int output_ = -1;
};

}  // namespace kalmira::bench
