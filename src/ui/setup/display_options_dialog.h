#pragma once

#include <QWidget>
#include <optional>

#include "settings/settings.h"
#include "settings/setup_frame.h"
#include "ui/screen/theme.h"

namespace kalmira {

// "Display Options" of the frame's kind: its traces, and the grid. Hands back the settings as changed, or
// nothing when it was cancelled. Traces that the kind does not have keep what they had.
std::optional<Settings> runDisplayOptionsDialog(QWidget* parent, const SetupFrame& frame, const Theme& theme,
                                                const Settings& settings);

}  // namespace kalmira
