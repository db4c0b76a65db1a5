#pragma once

#include <optional>

#include "ui/setup/lists_dialog.h"

namespace kalmira {

// "Logger Setup" of the frame's kind: the changed settings when it was left by OK, nothing when it was
// cancelled. Waits until it is closed; saves nothing by itself.
std::optional<Settings> runLoggerSetupDialog(QWidget* parent, const SetupFrame& frame,
                                             const Settings& settings, const PortLists& ports);

}  // namespace kalmira
