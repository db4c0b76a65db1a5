#pragma once

#include <QWidget>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "datafile/survey_notes.h"
#include "gps/find_receiver.h"
#include "link/com_devices.h"
#include "settings/settings.h"
#include "settings/setup_lists.h"
#include "ui/screen/theme.h"

// The dialogs of the set-up commands. Each waits until it is closed, saves nothing by itself and leaves no port open:
// what was changed is handed back, nothing when it was cancelled.
namespace kalmira {

// "Survey Setup" of the frame's kind. A value out of range is corrected and marked when OK is pressed first, and
// accepted the second time. Choices that the settings do not hold rightly are shown as a new logger has them.
// `editNotes`: behind the button "Notes", which is there only with it; called over the open dialog.
std::optional<Settings> runSurveySetupDialog(QWidget* parent, const SetupFrame& frame, const Settings& settings,
                                             const std::function<void(QWidget* parent)>& editNotes = {});

// "Survey Notes": what is asked of the operator, as it was said last. A value that cannot be taken is told when OK is
// pressed, and its field gets the keyboard.
std::optional<SurveyNotes> runSurveyNotesDialog(QWidget* parent, const SurveyNotes& last);

// "Display Options" of the frame's kind: its traces, and the grid. Traces that the kind does not have keep what they
// had.
std::optional<Settings> runDisplayOptionsDialog(QWidget* parent, const SetupFrame& frame, const Theme& theme,
                                                const Settings& settings);

// How the dialogs with ports learn of the machine's devices. What is missing is not shown.
struct PortLists {
  // Of COM 1 to 12. Asked again every second, for devices come and go.
  std::function<DeviceText(int comNumber)> deviceLine;
  // "Devices...": lets the operator say which device is which.
  std::function<void(QWidget* parent)> assignDevices;
};

// "Logger Setup" of the frame's kind.
std::optional<Settings> runLoggerSetupDialog(QWidget* parent, const SetupFrame& frame, const Settings& settings,
                                             const PortLists& ports);

struct GpsSetupOutcome {
  enum class How {
    cancelled,  // nothing changes
    saved,      // the settings are to be taken and saved
    monitor,    // the settings are to be taken, not saved, and the receiver's sentences to be shown
  };
  How how = How::cancelled;
  Settings settings;
};
// What "Find" needs to listen to a port.
struct ReceiverAccess {
  std::function<std::string(int comNumber)> deviceOf;  // empty: the number has none
  PortFactory portFactory;                             // without one there is no "Find"
  const Clock* clock = nullptr;
};
// "Set GPS Port"
GpsSetupOutcome runGpsPortSetupDialog(QWidget* parent, const Settings& settings, const PortLists& ports,
                                      const ReceiverAccess& access);

struct DeviceSight {
  std::function<std::vector<SerialDevice>()> present;  // asked again every second
  DeviceLook look;
};
// What the program keeps of its devices.
struct DeviceSetup {
  ComAssignments com;
  std::filesystem::path mirror{};  // folder of the second copy; empty: none
};
// "Devices": which device or address stands behind COM1 to COM12, and where a second copy goes.
std::optional<DeviceSetup> runDevicesDialog(QWidget* parent, const DeviceSetup& setup, const DeviceSight& sight);

}  // namespace kalmira
