#pragma once

#include <QGuiApplication>
#include <QWidget>
#include <filesystem>
#include <optional>
#include <string>

#include "datafile/creation.h"

// What the windows ask about files. The dialogs are Qt's own and not the desktop's: the same everywhere, and fit for
// fingers; in a narrow window they show only what is needed to name a file. Each gives the path chosen, nothing when it
// was cancelled.
namespace kalmira {

// "Create Data File": in the kind's data folder, with the kind's filter and extension, starting with the proposed name.
// Whether a file of that name exists already is for the caller to say.
std::optional<std::filesystem::path> runCreateFileDialog(QWidget* parent, const DataPlace& place,
                                                         const std::string& proposal);

// "Open Data File": in the kind's data folder, with the kind's filter; a second filter shows the files of all kinds.
std::optional<std::filesystem::path> runOpenFileDialog(QWidget* parent, const DataPlace& place);

// A save dialog that starts with the name `proposal`. What is typed without an extension gets `extension` ("png");
// whether the file exists is for the caller to ask.
struct SaveQuestion {
  std::string title;
  std::string filter;  // "Picture (*.png)"
  std::string extension;
  std::filesystem::path proposal;
};
std::optional<std::filesystem::path> runSaveDialog(QWidget* parent, const SaveQuestion& question);

// A large file takes a moment; the operator sees that it is being worked on as long as this lives.
class WaitingCursor {
 public:
  WaitingCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitingCursor() { QGuiApplication::restoreOverrideCursor(); }
  WaitingCursor(const WaitingCursor&) = delete;
  WaitingCursor& operator=(const WaitingCursor&) = delete;
};

}  // namespace kalmira
