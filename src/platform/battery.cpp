#include "platform/battery.h"

#include <fstream>
#include <string>
#include <system_error>

#include "platform/text.h"

namespace kalmira {
namespace {

namespace fs = std::filesystem;

std::string firstLine(const fs::path& file) {
  std::ifstream in(file);
  std::string line;
  std::getline(in, line);
  return line;
}

// A mouse or a headset has a battery too; the kernel gives those the scope "Device".
std::optional<int> systemBatteryPercent(const fs::path& supply) {
  if (firstLine(supply / "type") != "Battery" || firstLine(supply / "scope") == "Device") return std::nullopt;
  const std::string capacity = firstLine(supply / "capacity");
  if (capacity.empty()) return std::nullopt;
  const int percent = parseInt(capacity);
  if (percent < 0 || percent > 100) return std::nullopt;
  return percent;
}

}  // namespace

std::optional<int> batteryPercent(const fs::path& powerSupplies) {
  int sum = 0;
  int count = 0;
  std::error_code error;
  for (fs::directory_iterator it(powerSupplies, error), end; !error && it != end; it.increment(error)) {
    if (const auto percent = systemBatteryPercent(it->path())) {
      sum += *percent;
      ++count;
    }
  }
  if (count == 0) return std::nullopt;
  return (sum + count / 2) / count;
}

}  // namespace kalmira
