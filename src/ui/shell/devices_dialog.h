#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "link/device_texts.h"

class QWidget;

namespace kalmira {

// How the dialog learns of the machine's devices.
struct DeviceSight {
  std::function<std::vector<SerialDevice>()> present;  // asked again every second
  DeviceLook look;
};

// "Devices": which device stands behind COM1 to COM12. Hands back the changed assignments when it was left by
// OK, nothing when it was cancelled. Waits until it is closed; remembers nothing by itself.
std::optional<ComAssignments> runDevicesDialog(QWidget* parent, const ComAssignments& assigned,
                                               const DeviceSight& sight);

}  // namespace kalmira
