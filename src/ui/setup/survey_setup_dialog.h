#pragma once

#include <QWidget>
#include <optional>

#include "settings/settings.h"
#include "settings/setup_frame.h"

namespace kalmira {

// "Survey Setup" of the frame's kind. Hands back the settings as changed, or nothing when it was cancelled. A
// value out of range is corrected and marked when OK is pressed first, and accepted the second time. Choices
// that the settings do not hold rightly are shown as a new logger has them.
std::optional<Settings> runSurveySetupDialog(QWidget* parent, const SetupFrame& frame,
                                             const Settings& settings);

}  // namespace kalmira
