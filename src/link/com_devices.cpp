#include "link/com_devices.h"

#include <fmt/format.h>

#include <QSerialPortInfo>
#include <algorithm>
#include <cctype>
#include <string_view>
#include <system_error>

#include "link/network_port.h"

namespace kalmira {
namespace {

bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

// Takes the run of digits, or the single other character, that `text` begins with.
std::string_view takePiece(std::string_view& text) {
  std::size_t length = 1;
  if (isDigit(text[0])) {
    while (length < text.size() && isDigit(text[length])) ++length;
  }
  const auto piece = text.substr(0, length);
  text.remove_prefix(length);
  return piece;
}

// ttyS2 comes before ttyS10.
bool comesBefore(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    const auto pieceA = takePiece(a);
    const auto pieceB = takePiece(b);
    if (pieceA == pieceB) continue;
    const bool numbers = isDigit(pieceA[0]) && isDigit(pieceB[0]);
    if (numbers && pieceA.size() != pieceB.size()) return pieceA.size() < pieceB.size();
    return pieceA < pieceB;
  }
  return a.size() < b.size();
}

bool isDevice(const SerialDevice& device, const std::string& path) {
  return path == device.path || path == device.stablePath || sameDevice(path, device.path);
}

std::string lastPart(const std::string& path) { return std::filesystem::path(path).filename().string(); }

std::string named(const std::string& name, const std::string& description) {
  return description.empty() ? name : fmt::format("{}, {}", name, description);
}

}  // namespace

std::string realDevice(const std::string& path) {
  std::error_code error;
  const auto target = std::filesystem::canonical(path, error);
  return error ? path : target.string();
}

bool sameDevice(const std::string& a, const std::string& b) {
  const auto addressA = parseNetworkAddress(a);
  if (addressA) return addressA == parseNetworkAddress(b);
  return realDevice(a) == realDevice(b);
}

ComAssignments resolveComDevices(const ComAssignments& assigned, std::vector<SerialDevice> present) {
  std::erase_if(present, [&assigned](const SerialDevice& device) {
    return std::any_of(assigned.begin(), assigned.end(),
                       [&device](const std::string& path) { return !path.empty() && isDevice(device, path); });
  });
  std::sort(present.begin(), present.end(),
            [](const SerialDevice& a, const SerialDevice& b) { return comesBefore(a.path, b.path); });
  auto devices = assigned;
  auto next = present.begin();
  for (auto& path : devices) {
    if (!path.empty() || next == present.end()) continue;
    path = next->stablePath.empty() ? next->path : next->stablePath;
    ++next;
  }
  return devices;
}

const SerialDevice* findDevice(const std::vector<SerialDevice>& present, const std::string& path) {
  const auto found = std::find_if(present.begin(), present.end(),
                                  [&path](const SerialDevice& device) { return isDevice(device, path); });
  return found == present.end() ? nullptr : &*found;
}

std::string stableNameOf(const std::string& device, const std::filesystem::path& folder) {
  const auto wanted = realDevice(device);
  std::string found;
  std::error_code error;
  for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
    const auto link = it->path().string();
    if (realDevice(link) == wanted && (found.empty() || link < found)) found = link;
  }
  return found;
}

std::vector<SerialDevice> serialDevices() {
  std::vector<SerialDevice> devices;
  for (const auto& port : QSerialPortInfo::availablePorts()) {
    const auto path = port.systemLocation().toStdString();
    devices.push_back({.path = path,
                       .stablePath = stableNameOf(path, "/dev/serial/by-id"),
                       .description = port.description().toStdString()});
  }
  return devices;
}

DeviceText deviceTextOf(const std::string& path, const std::vector<SerialDevice>& present, const DeviceLook& look) {
  if (path.empty()) return {.text = "No device: connect one, or choose it at \"Devices...\"", .trouble = true};
  const auto* device = findDevice(present, path);
  // The system's own name is the shorter one.
  const auto& shortest = device == nullptr ? path : device->path;
  if (isNetworkName(path)) return {.text = path + ", over the network", .trouble = !parseNetworkAddress(path)};
  if (const auto error = look(shortest)) return {.text = error->text, .trouble = true};
  return {.text = device == nullptr ? path : named(device->path, device->description)};
}

std::vector<DeviceChoice> deviceChoices(const ComAssignments& assigned, const std::vector<SerialDevice>& present) {
  std::vector<DeviceChoice> choices{{.path = {}, .text = "Automatic"}};
  for (const auto& device : present) {
    choices.push_back({.path = device.stablePath.empty() ? device.path : device.stablePath,
                       .text = named(lastPart(device.path), device.description)});
  }
  for (const auto& path : assigned) {
    if (path.empty() || choiceOf(choices, path) != 0) continue;
    if (const auto* device = findDevice(present, path)) {
      // Assigned by another of its names: the assignment stays as it was made.
      choices[static_cast<std::size_t>(device - present.data()) + 1].path = path;
    } else {
      choices.push_back({.path = path, .text = path});
    }
  }
  return choices;
}

std::size_t choiceOf(const std::vector<DeviceChoice>& choices, const std::string& assigned) {
  const auto found = std::find_if(choices.begin(), choices.end(),
                                  [&assigned](const DeviceChoice& choice) { return choice.path == assigned; });
  return found == choices.end() ? 0 : static_cast<std::size_t>(found - choices.begin());
}

void assignDevice(ComAssignments& assigned, int comNumber, const std::string& path) {
  if (comNumber < 1 || comNumber > kComPorts) return;
  for (auto& other : assigned) {
    if (!path.empty() && !other.empty() && sameDevice(other, path)) other.clear();
  }
  assigned[static_cast<std::size_t>(comNumber - 1)] = path;
}

std::string comRowText(int comNumber, const std::string& path, bool automatic,
                       const std::vector<SerialDevice>& present) {
  if (path.empty()) return fmt::format("{}  -", comName(comNumber));
  const auto* device = findDevice(present, path);
  const auto name = device == nullptr ? lastPart(path) : named(lastPart(device->path), device->description);
  return fmt::format("{}  {}{}", comName(comNumber), name, automatic ? " (automatic)" : "");
}

}  // namespace kalmira
