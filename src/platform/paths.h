#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kalmira {

// Turns a catalogue path ("Storage\KALINI\ORLA.INI", "\KALINI", "C_DRIVE\DATAORLA\") into a path of this
// machine below the storage root. A leading backslash stands for the root itself.
std::filesystem::path localPath(const std::filesystem::path& root, std::string_view cataloguePath);

// Commits the folder's entries (none: the working folder's) to the disk, so that a file just made in it
// survives a power cut. Where a file system cannot do that, nothing happens.
void syncFolder(const std::filesystem::path& folder);

// Makes a folder and those above it, and commits each that is new into the one above. Empty, or the system's
// word for why it could not be made.
std::string makeFolders(const std::filesystem::path& folder);

// The content of a regular file of at most a megabyte; nothing when there is none such or it cannot be read.
std::optional<std::string> readSmallFile(const std::filesystem::path& path);

}  // namespace kalmira
