#pragma once

#include <filesystem>
#include <optional>

namespace kalmira {

// The charge of the machine's own battery in percent, 0 to 100; the mean when it has several. Nothing when it
// has none, or none that tells. `powerSupplies` is the kernel's power-supply folder. From any thread.
std::optional<int> batteryPercent(const std::filesystem::path& powerSupplies = "/sys/class/power_supply");

}  // namespace kalmira
