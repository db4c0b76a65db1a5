#include "sim/terminal_outlet.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace kalmira::sim {
namespace {

namespace fs = std::filesystem;

std::string makeLink(const fs::path& device, const fs::path& link) {
  std::error_code error;
  const auto status = fs::symlink_status(link, error);
  if (fs::is_symlink(status)) {
    fs::remove(link, error);
  } else if (fs::exists(status)) {
    return fmt::format("cannot make the link {}: something else is there and is left alone", link.string());
  }
  error.clear();
  fs::create_symlink(device, link, error);
  if (error) return fmt::format("cannot make the link {}: {}", link.string(), error.message());
  return {};
}

void removeLink(const fs::path& device, const fs::path& link) {
  std::error_code error;
  if (fs::read_symlink(link, error) == device) fs::remove(link, error);
}

}  // namespace

TerminalOutlet::TerminalOutlet(fs::path instrumentLink, fs::path gpsLink, std::FILE* names)
    : lines_{{{.name = "instrument", .link = std::move(instrumentLink), .terminal = {}},
              {.name = "gps", .link = std::move(gpsLink), .terminal = {}}}},
      names_(names) {}

std::string TerminalOutlet::plugLine(Line& line) {
  if (auto error = line.terminal.open(); !error.empty()) return error;
  if (!line.link.empty()) {
    if (auto error = makeLink(line.terminal.device(), line.link); !error.empty()) return error;
    line.linked = true;
  }
  const auto text = fmt::format("{} {}\n", line.name, line.terminal.device());
  if (std::fputs(text.c_str(), names_) < 0 || std::fflush(names_) != 0) return "cannot print the devices' names";
  return {};
}

std::string TerminalOutlet::plug() {
  for (auto& line : lines_) {
    if (auto error = plugLine(line); !error.empty()) {
      unplug();
      return error;
    }
  }
  return {};
}

void TerminalOutlet::unplug() {
  for (auto& line : lines_) {
    if (std::exchange(line.linked, false)) removeLink(line.terminal.device(), line.link);
    line.terminal.close();
  }
}

void TerminalOutlet::send(Port port, std::string_view bytes, double time_s) {
  lines_[port == Port::instrument ? 0 : 1].terminal.send(bytes, time_s);
}

bool TerminalOutlet::caughtUp() const {
  return std::all_of(lines_.begin(), lines_.end(), [](const Line& line) { return line.terminal.caughtUp(); });
}

}  // namespace kalmira::sim
