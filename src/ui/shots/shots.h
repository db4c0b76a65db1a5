#pragma once

#include <QSize>
#include <filesystem>
#include <string>

namespace kalmira::shots {

// Writes a PNG picture of every window and dialog into `folder`, for every instrument, in a window of this size, by
// day and some by night, some with large text, from a simulated survey. Wants a QApplication and the program's
// resources. Returns an empty text, or what went wrong.
std::string takeShots(const std::filesystem::path& folder, QSize size);

}  // namespace kalmira::shots
