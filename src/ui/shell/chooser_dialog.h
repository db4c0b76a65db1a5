#pragma once

#include <QWidget>
#include <optional>

#include "ui/screen/theme.h"
#include "ui/shell/remembered.h"

namespace kalmira {

// Asks which instrument is used: pictures and names of the eight models, and for the ORLA whether it is for ice work.
// By touch, arrow keys, or the digits 0 to 7. Nothing when it was closed without a choice. `parent` may be nullptr: the
// very first start has no window yet.
std::optional<RememberedKind> runChooserDialog(QWidget* parent, const Theme& theme,
                                               std::optional<RememberedKind> current);

}  // namespace kalmira
