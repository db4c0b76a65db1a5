#pragma once

#include <QWidget>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "datafile/creation.h"

namespace kalmira {

// "Open Data File": in the kind's data folder, with the kind's filter; a second filter shows the files of all
// kinds. The path chosen, nothing when cancelled.
std::optional<std::filesystem::path> runOpenFileDialog(QWidget* parent, const DataPlace& place);

// A save dialog that starts with the name `proposal`. What is typed without an extension gets `extension`
// ("png"); whether the file exists is for the caller to ask.
struct SaveQuestion {
  std::string title;
  std::vector<std::string> filters;  // "Picture (*.png)"
  std::string extension;
  std::filesystem::path proposal;
};
std::optional<std::filesystem::path> runSaveDialog(QWidget* parent, const SaveQuestion& question);

}  // namespace kalmira
