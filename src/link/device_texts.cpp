#include "link/device_texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace kalmira {
namespace {

std::string lastPart(const std::string& path) { return std::filesystem::path(path).filename().string(); }

// Two names of one device.
bool sameDevice(const std::string& a, const std::string& b) {
  std::error_code error;
  const auto target = std::filesystem::canonical(a, error);
  return a == b || (!error && target == std::filesystem::canonical(b, error) && !error);
}

std::string named(const std::string& name, const std::string& description) {
  return description.empty() ? name : fmt::format("{}, {}", name, description);
}

}  // namespace

DeviceText deviceText(const std::string& path, const std::vector<SerialDevice>& present, const DeviceLook& look) {
  if (path.empty()) return {.text = "No device: connect one, or choose it at \"Devices...\"", .trouble = true};
  const auto* device = findDevice(present, path);
  // The system's own name is the shorter one.
  const auto& shortest = device == nullptr ? path : device->path;
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
