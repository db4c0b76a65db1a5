#pragma once

#include <QPointer>
#include <QWidget>
#include <filesystem>
#include <functional>

#include "ui/shell/main_window.h"
#include "ui/viewer/font_window.h"
#include "ui/viewer/view_files_window.h"

namespace kalmira {

// What the viewer's command needs of the program. What is referred to outlives it.
struct ViewActionsHost {
  std::filesystem::path root;
  int storageClass = kDefaultStorageClass;
  bool teskRangeTimes10 = false;
  std::function<RememberedKind()> instrument;  // the one in use
  std::function<Settings&()> settings;         // and its record
  std::function<void(const Settings&)> saveSettings;
  std::function<const Theme&()> theme;
  // Shows a window in the main window's place; nullptr: the menu again.
  std::function<void(QWidget* window)> cover;
};

// The main menu's "View Files", and the font window.
class ViewActions {
 public:
  explicit ViewActions(ViewActionsHost host) : host_(std::move(host)) {}
  ViewActions(const ViewActions&) = delete;
  ViewActions& operator=(const ViewActions&) = delete;

  // Shows the viewer over `parent`; with a file, on that file.
  void viewFiles(QWidget* parent, const std::filesystem::path& file = {});
  void showFonts(QWidget* parent);

 private:
  bool isInUse(Kind kind, bool ice) const;
  Settings settingsFor(Kind kind, bool ice) const;
  void takeSettings(Kind kind, bool ice, const Settings& changed);
  void uncover(QWidget* window);

  ViewActionsHost host_;
  QPointer<ViewFilesWnd> viewer_;
  QPointer<FontWnd> fonts_;
};

}  // namespace kalmira
