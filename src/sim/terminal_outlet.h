#pragma once

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

#include "sim/player.h"

namespace kalmira::sim {

// One end of a serial line that exists only in this machine; a program opens the other end by device(). Holds the far
// end open too, so that sending works before the program comes and after it has gone.
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

  // All bytes in one write, never waiting. When nobody has caught up with the stream for five seconds, or no more fits,
  // everything that waits is thrown away first: whoever comes late gets what is sent now, as on a wire. `time_s` only
  // ever grows. Bytes from the other side are taken and forgotten.
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

// A pseudo-terminal for each port, each with a symbolic link to it when one is wanted.
class TerminalOutlet final : public Outlet {
 public:
  // Empty paths: no link. `names` gets a line "instrument DEVICE" and a line "gps DEVICE" whenever the devices have
  // been made; it must outlive the outlet. Starts unplugged.
  TerminalOutlet(std::filesystem::path instrumentLink, std::filesystem::path gpsLink, std::FILE* names);
  ~TerminalOutlet() override { unplug(); }

  // A link replaces an old symbolic link, never anything else. After a failure nothing is left behind.
  std::string plug() override;
  // Takes the links away, unless they lead elsewhere by now, and then the devices.
  void unplug() override;
  void send(Port port, std::string_view bytes, double time_s) override;
  // Whether both ports' readers have taken everything.
  bool caughtUp() const;

 private:
  struct Line {
    const char* name;
    std::filesystem::path link;
    PseudoTerminal terminal;
    bool linked = false;
  };
  std::string plugLine(Line& line);

  std::array<Line, 2> lines_;
  std::FILE* names_;
};

}  // namespace kalmira::sim
