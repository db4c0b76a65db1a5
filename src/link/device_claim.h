#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "link/port.h"

namespace kalmira {

// A serial device taken for this port alone, for as long as the claim lives. Three conventions are in use among
// programs that read serial lines: a lock file, an advisory lock on the device, and the device's own exclusive mode.
// All are looked at and the second is held here; the serial port library adds the other two. Only the advisory lock
// stops a superuser's program too, and only it leaves nothing behind when a program is killed.
class DeviceClaim {
 public:
  DeviceClaim() = default;
  ~DeviceClaim() { release(); }
  DeviceClaim(const DeviceClaim&) = delete;
  DeviceClaim& operator=(const DeviceClaim&) = delete;

  // `path` is the device itself, not a link to it. Nothing about the device is changed.
  std::optional<PortError> take(const std::string& path);
  void release();

  // Of a claimed device: the line settings it was found with.
  LineSettings found() const;

 private:
  int descriptor_ = -1;
};

// What would keep this user from opening the device at `path`, as far as can be seen without touching it; nothing also
// when another program holds it.
std::optional<PortError> lookAtDevice(const std::string& path);

// Tells the device's driver to deliver bytes as they come; adapters that collect them for 16 ms and more can do that.
// Devices that cannot ignore it.
void askForLowLatency(int descriptor);
// A pseudo-terminal keeps its exclusive mode when the program that set it is killed, so that nobody could open it
// again: let go of that mode there. The advisory lock remains.
void dropLastingExclusiveMode(int descriptor, std::string_view path);

// The texts of errors, each for the device at `path`.
std::string missingText(std::string_view path);
// `holder` is a program's name, empty when it is not known.
std::string heldText(std::string_view path, std::string_view holder, int pid);
// `group` is the group whose members may use the device; empty when there is none.
std::string deniedText(std::string_view path, std::string_view owner, std::string_view group);
std::string notSerialText(std::string_view path, bool isFolder);

}  // namespace kalmira
