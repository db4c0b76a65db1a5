#pragma once

#include <filesystem>
#include <string>

namespace kalmira::shots {

// Writes a PNG picture of every window and dialog into `folder`, for every instrument, upright and lying, by
// day and some by night, from a simulated survey. Wants a QApplication and the program's resources. Returns
// an empty text, or what went wrong.
std::string takeShots(const std::filesystem::path& folder);

}  // namespace kalmira::shots
