#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>
#include <optional>

#include "link/device_texts.h"
#include "ui/gps/monitor_window.h"
#include "ui/setup/gps_port_setup_dialog.h"
#include "ui/shell/main_window.h"

namespace kalmira {

// What the set-up commands need of the program. What is referred to outlives them.
struct SetupHost {
  const Clock& clock;
  int storageClass = kDefaultStorageClass;
  std::function<RememberedKind()> instrument;  // the one in use
  std::function<Settings&()> settings;         // and its record
  std::function<void(const Settings&)> saveSettings;
  std::function<const Theme&()> theme;
  ComAssignments& assigned;  // what the operator gave the COM numbers, in this run
  std::function<std::vector<SerialDevice>()> presentDevices;
  DeviceLook lookAtDevice;
  // The operator has assigned devices anew; `assigned` still holds what was before.
  std::function<void(const ComAssignments& changed)> rememberDevices;
  PortFactory portFactory;
  // Shows the monitor in the main window's place; nullptr: the menu again.
  std::function<void(QWidget* window)> cover;
};

// The main menu's set-up commands: dialogs that ask, and the taking and saving of what was set up.
class SetupActions {
 public:
  explicit SetupActions(SetupHost host) : host_(std::move(host)) {}
  SetupActions(const SetupActions&) = delete;
  SetupActions& operator=(const SetupActions&) = delete;

  // Commands 1 to 4. They refer to this object.
  MenuActions menuActions();
  // "Display Options" of a session's menu: an ORLA's ice traces are there only with the ice display.
  // The settings as changed, for the session to take and save; nothing when cancelled.
  std::optional<Settings> runSessionDisplayOptions(QWidget* parent, const Settings& settings);

 private:
  SetupFrame frameFor(const QWidget* parent) const;
  PortLists portLists();
  std::string deviceOf(int comNumber) const;
  void take(const std::optional<Settings>& changed);
  void runLoggerSetup(QWidget* parent);
  void runGpsSetup(QWidget* parent);
  void runSurveySetup(QWidget* parent);
  void runDisplayOptions(QWidget* parent);
  void assignDevices(QWidget* parent);
  void openMonitor(QWidget* parent);

  SetupHost host_;
  QPointer<MonitorGPSWnd> monitor_;
};

}  // namespace kalmira
