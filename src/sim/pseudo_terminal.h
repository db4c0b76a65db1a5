#pragma once

#include <string>
#include <string_view>

namespace kalmira::sim {

// One end of a serial line that exists only in this machine; a program opens the other end by device(). Holds
// the far end open too, so that sending works before the program comes and after it has gone.
class PseudoTerminal {
 public:
  PseudoTerminal() = default;
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;
  ~PseudoTerminal() { close(); }

  // Raw, without echo. An empty text, or why there is none.
  std::string open();
  // Whoever has the device open sees a line that hung up.
  void close();
  const std::string& device() const { return device_; }

  // All bytes in one write, never waiting. When nobody has caught up with the stream for five seconds, or no
  // more fits, everything that waits is thrown away first: whoever comes late gets what is sent now, as on a
  // wire. `time_s` only ever grows. Bytes from the other side are taken and forgotten.
  void send(std::string_view bytes, double time_s);

  // Whether everything sent has been taken.
  bool caughtUp() const;

 private:
  void dropUnread();

  int near_ = -1;
  int far_ = -1;
  double caught_up_s_ = 0;
  std::string device_;
};

}  // namespace kalmira::sim
