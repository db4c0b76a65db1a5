#pragma once

#include <QPointer>
#include <QWidget>
#include <bitset>
#include <filesystem>
#include <functional>
#include <optional>

#include "ui/gps/monitor_window.h"
#include "ui/setup/setup_dialogs.h"
#include "ui/shell/main_window.h"
#include "ui/viewer/font_window.h"
#include "ui/viewer/view_files_window.h"

namespace kalmira {

// What the menu's commands need of the program. What is referred to outlives them.
struct ActionsHost {
  const Clock& clock;
  int storageClass = kDefaultStorageClass;
  std::function<RememberedKind()> instrument;  // the one in use
  std::function<Settings&()> settings;         // and its record
  std::function<void(const Settings&)> saveSettings;
  std::function<const Theme&()> theme;
  ComAssignments& assigned;       // what the operator gave the COM numbers, in this run
  std::filesystem::path& mirror;  // folder of the second copy, likewise
  std::function<std::vector<SerialDevice>()> presentDevices;
  DeviceLook lookAtDevice;
  // The operator has set up devices anew; `assigned` and `mirror` still hold what was before.
  std::function<void(const DeviceSetup& changed)> rememberDevices;
  PortFactory portFactory;
  // Shows a window in the main window's place; nullptr: the menu again.
  std::function<void(QWidget* window)> cover;
  std::filesystem::path root = {};
  bool teskRangeTimes10 = false;
  // The file that is being logged, empty when there is none, and what else a session has to say at once.
  std::function<std::filesystem::path()> loggedFile = [] { return std::filesystem::path(); };
  std::function<std::string()> concern = {};
};

// The main menu's commands but for the session: dialogs that ask, the taking and saving of what was set up, and the
// windows in the menu's place.
class ProgramActions {
 public:
  explicit ProgramActions(ActionsHost host) : host_(std::move(host)) {}
  ProgramActions(const ProgramActions&) = delete;
  ProgramActions& operator=(const ProgramActions&) = delete;

  // Commands 1 to 5. They refer to this object.
  MenuActions actions();
  // Shows the viewer over `parent`.
  void viewFiles(QWidget* parent);
  // The viewer on that file, in place of the one it shows. Waits for dialogs that are open. What cannot be opened is
  // told, and the viewer is left again where it showed nothing.
  void showFile(QWidget* parent, const std::filesystem::path& file);
  void showFonts(QWidget* parent);
  // "Display Options" of a session's menu: an ORLA's ice traces are there only with the ice display.
  // The settings as changed, for the session to take and save; nothing when cancelled.
  std::optional<Settings> runSessionDisplayOptions(QWidget* parent, const Settings& settings);

 private:
  SetupFrame frameFor(const QWidget* parent) const;
  PortLists machinePorts();
  std::string deviceOf(int comNumber) const;
  void take(const std::optional<Settings>& changed);
  void runLoggerSetup(QWidget* parent);
  void runGpsSetup(QWidget* parent);
  void runSurveySetup(QWidget* parent);
  void editNotes(QWidget* parent);
  void runDisplayOptions(QWidget* parent);
  void assignDevices(QWidget* parent);
  void openMonitor(QWidget* parent);
  ViewFilesWnd& openViewer(QWidget* parent);

  bool isInUse(Kind kind, bool ice) const;
  Settings settingsFor(Kind kind, bool ice) const;
  void takeSettings(Kind kind, bool ice, const Settings& changed);
  void uncover();

  ActionsHost host_;
  std::bitset<kKindCount> confirmed_scales_;
  QPointer<QWidget> covering_;  // the monitor, the viewer or the fonts
};

}  // namespace kalmira
