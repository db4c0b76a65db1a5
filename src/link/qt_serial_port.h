#pragma once

#include <memory>

#include "link/port.h"

namespace kalmira {

// A port of this machine. A QCoreApplication must exist while it is used; no event loop has to run. A
// pseudo-terminal will do as a device: what it cannot do (modem lines) is passed over.
std::unique_ptr<Port> makeQtSerialPort();

}  // namespace kalmira
