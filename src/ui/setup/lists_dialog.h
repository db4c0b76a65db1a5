#pragma once

#include <functional>
#include <span>
#include <string>

#include "settings/setup_lists.h"

class QDialog;
class QWidget;

// What the logger setup and the GPS port setup have in common: their lists, and the devices behind COM
// numbers.
namespace kalmira {

// What is said about the device behind a COM number.
struct DeviceLine {
  std::string text;      // UTF-8: the path and the system's description, or what is in the way
  bool trouble = false;  // nothing can be read from it as things stand
};

// How the dialogs learn of the machine's devices. What is missing is not shown.
struct PortLists {
  // COM 1 to 12. Asked again every second, for devices come and go.
  std::function<DeviceLine(int comNumber)> deviceLine;
  // "Devices...": lets the operator say which device is which.
  std::function<void(QWidget* parent)> assignDevices;
};

// Fills the template's lists with their entries and selects what the settings say.
void fillLists(const QDialog& dialog, std::span<const SetupList> lists, const Settings& settings);
// The settings with what is selected in the lists.
Settings withLists(const QDialog& dialog, std::span<const SetupList> lists, Settings settings);

// Keeps the label `line` saying which device stands behind the entry selected in `list`, as long as the
// dialog lives; `comOf` gives the COM number of a position, 0 for none.
void showDeviceOf(QDialog& dialog, const char* list, const char* line, const PortLists& ports,
                  int (*comOf)(int position));
// Lets the dialog grow, within its window, when a line of text in its form has become longer. It never
// shrinks: buttons are not to jump about under a finger.
void makeRoom(QDialog& dialog);
// Makes the template's button "devices" work. To be called before showDeviceOf, which shows what it changed.
void connectDevicesButton(QDialog& dialog, const PortLists& ports);

}  // namespace kalmira
