#pragma once

#include <QWidget>
#include <filesystem>
#include <optional>
#include <string>

#include "datafile/creation.h"

namespace kalmira {

// "Create Data File": a save dialog in the kind's data folder, with the kind's filter and extension, that
// starts with the proposed name. The path chosen, nothing when cancelled. Whether a file of that name exists
// already is for the caller to say.
std::optional<std::filesystem::path> runCreateFileDialog(QWidget* parent, const DataPlace& place,
                                                         const std::string& proposal);

}  // namespace kalmira
