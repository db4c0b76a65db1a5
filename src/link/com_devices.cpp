#include "link/com_devices.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <system_error>

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

// What a path leads to once links are followed; the path itself when it leads nowhere.
std::filesystem::path targetOf(const std::filesystem::path& path) {
  std::error_code error;
  auto target = std::filesystem::canonical(path, error);
  return error ? path : target;
}

bool isDevice(const SerialDevice& device, const std::string& path) {
  return path == device.path || path == device.stablePath || targetOf(path) == targetOf(device.path);
}

}  // namespace

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
  const auto wanted = targetOf(device);
  std::string found;
  std::error_code error;
  for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
    const auto link = it->path().string();
    if (targetOf(link) == wanted && (found.empty() || link < found)) found = link;
  }
  return found;
}

}  // namespace kalmira
