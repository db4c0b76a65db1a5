#pragma once

#include <QWidget>
#include <optional>
#include <string>

namespace kalmira {

// "GPS Message": shows the message (UTF-8) for editing. What was confirmed, nothing when it was cancelled.
std::optional<std::string> runMessageEntryDialog(QWidget* parent, const std::string& message);

}  // namespace kalmira
