#pragma once

#include <QSize>
#include <filesystem>
#include <string>
#include <vector>

namespace kalmira::shots {

// Writes a PNG picture of every window and dialog into `folder`, for every instrument, on screens of these sizes, by
// day and some by night, from a simulated survey. Wants a QApplication and the program's resources. Returns an empty
// text, or what went wrong.
std::string takeShots(const std::filesystem::path& folder, const std::vector<QSize>& sizes);

}  // namespace kalmira::shots
