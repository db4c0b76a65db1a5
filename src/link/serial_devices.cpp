#include <QSerialPortInfo>

#include "link/com_devices.h"

namespace kalmira {

std::vector<SerialDevice> serialDevices() {
  std::vector<SerialDevice> devices;
  for (const auto& port : QSerialPortInfo::availablePorts()) {
    const auto path = port.systemLocation().toStdString();
    devices.push_back({.path = path,
                       .stablePath = stableNameOf(path, "/dev/serial/by-id"),
                       .description = port.description().toStdString()});
  }
  return devices;
}

}  // namespace kalmira
