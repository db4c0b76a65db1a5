#pragma once

#include <deque>
#include <string>

#include "platform/worker.h"

namespace kalmira {

// Prints lines from a thread of its own, so that a reader of our output that stands still (a stopped pager, a
// full pipe) holds up no reading. Members may be called from any thread and return at once, but for finish.
class OutputThread {
 public:
  OutputThread(int outputFd, int statusFd);
  ~OutputThread() { finish(); }

  // One line on the output; a line end is added. When far too many wait, panel texts are left out.
  void line(std::string text);
  // Replaces the line kept at the bottom of the terminal behind statusFd.
  void status(std::string text);
  // Waits until everything is printed, at most two seconds, and ends the thread. False when it cannot end,
  // for the terminal stands still: the program must then be left without destroying this object.
  bool finish();

 private:
  struct Item {
    bool status = false;
    std::string text;
  };
  void run();
  bool print(const Item& item);

  int output_fd_;
  int status_fd_;
  Worker worker_{"output"};
  std::deque<Item> queue_;  // as the rest, but for status_shown_, under the worker's lock
  std::size_t dropped_ = 0;
  bool idle_ = false;
  bool status_shown_ = false;
};

}  // namespace kalmira
