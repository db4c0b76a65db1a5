#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "link/port.h"

// Which device stands behind COM1 to COM12.
namespace kalmira {

struct SerialDevice {
  std::string path;         // "/dev/ttyUSB0"
  std::string stablePath;   // "/dev/serial/by-id/..." where the system has one, else empty
  std::string description;  // "USB adapter", as the system names it
};

// Assigned device paths by COM number less 1; empty: not assigned.
using ComAssignments = std::array<std::string, kComPorts>;

// Every number's device: the assigned one, or else, in order of name, the machine's serial ports that are
// assigned to no number. Stable names are taken where there are any. Empty where the ports run out.
ComAssignments resolveComDevices(const ComAssignments& assigned, std::vector<SerialDevice> present);

// The one of `present` that a path of either form leads to; nullptr when it is not there.
const SerialDevice* findDevice(const std::vector<SerialDevice>& present, const std::string& path);

// The link in `folder` that leads to `device`, the first in order of name; empty when there is none.
std::string stableNameOf(const std::string& device, const std::filesystem::path& folder);

// The machine's serial ports, in order of name (Qt SerialPort).
std::vector<SerialDevice> serialDevices();

}  // namespace kalmira
