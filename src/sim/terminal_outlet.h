#pragma once

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

#include "sim/player.h"
#include "sim/pseudo_terminal.h"

namespace kalmira::sim {

// A pseudo-terminal for each port, each with a symbolic link to it when one is wanted.
class TerminalOutlet final : public Outlet {
 public:
  // Empty paths: no link. `names` gets a line "instrument DEVICE" and a line "gps DEVICE" whenever the
  // devices have been made; it must outlive the outlet. Starts unplugged.
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
