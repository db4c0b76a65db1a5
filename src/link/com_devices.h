#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <optional>
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

// The device that a path leads to once links are followed; the path itself when it leads nowhere.
std::string realDevice(const std::string& path);
// Two names of one device.
bool sameDevice(const std::string& a, const std::string& b);

// Assigned device paths by COM number less 1; empty: not assigned.
using ComAssignments = std::array<std::string, kComPorts>;

// Every number's device: the assigned one, or else, in order of name, the machine's serial ports that are assigned to
// no number. Stable names are taken where there are any. Empty where the ports run out.
ComAssignments resolveComDevices(const ComAssignments& assigned, std::vector<SerialDevice> present);

// The one of `present` that a path of either form leads to; nullptr when it is not there.
const SerialDevice* findDevice(const std::vector<SerialDevice>& present, const std::string& path);

// The link in `folder` that leads to `device`, the first in order of name; empty when there is none.
std::string stableNameOf(const std::string& device, const std::filesystem::path& folder);

// The machine's serial ports, in order of name (Qt SerialPort).
std::vector<SerialDevice> serialDevices();

// What the operator is told about the devices behind COM1 to COM12, and the assigning of them.

// What keeps this user from opening the device at a path; see lookAtDevice.
using DeviceLook = std::function<std::optional<PortError>(const std::string& path)>;

struct DeviceText {
  std::string text;      // UTF-8
  bool trouble = false;  // nothing can be read from it as things stand
};

// About the device at `path`, empty for none: where it is and what the system calls it, or what is in the way and what
// helps.
DeviceText deviceTextOf(const std::string& path, const std::vector<SerialDevice>& present, const DeviceLook& look);

// An entry of the list from which a COM number's device is chosen.
struct DeviceChoice {
  std::string path;  // as it is assigned; empty: left to the order of the ports
  std::string text;
};
// "Automatic", the machine's ports in the order given, then what is assigned to a number and not there.
std::vector<DeviceChoice> deviceChoices(const ComAssignments& assigned, const std::vector<SerialDevice>& present);
// The position of a COM number's device among the choices.
std::size_t choiceOf(const std::vector<DeviceChoice>& choices, const std::string& assigned);

// Gives the number the device, and takes it from any other: two numbers with one device would be in each other's way.
void assignDevice(ComAssignments& assigned, int comNumber, const std::string& path);

// "COM3:  ttyUSB0  USB adapter": the number in the list of all. `path` is its device as things stand.
std::string comRowText(int comNumber, const std::string& path, bool automatic,
                       const std::vector<SerialDevice>& present);

}  // namespace kalmira
