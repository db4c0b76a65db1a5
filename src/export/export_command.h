#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace kalmira {

inline constexpr int kExportDone = 0;
inline constexpr int kExportFailed = 1;  // a file gave nothing, or the table could not be written
inline constexpr int kExportUsage = 2;

// kalmira-export: `arguments` without the program's name. The table goes to standard output or to the file
// that -o names; `say` gets one line a message, without its line end.
int runExport(std::span<const std::string> arguments, const std::function<void(std::string_view)>& say);

}  // namespace kalmira
