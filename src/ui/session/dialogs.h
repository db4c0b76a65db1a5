#pragma once

#include <QWidget>
#include <optional>
#include <string>
#include <string_view>

#include "settings/display_options.h"
#include "settings/line_entry.h"

// The small dialogs of a session. Each is made from its named template, waits until it is closed, and changes nothing
// by itself: what was confirmed is handed back, nothing when it was cancelled. `parent` is the window it belongs to; a
// dialog is found there as a child, by its window title, as long as it is open.
namespace kalmira {

// "New Line". `station` is the current one.
std::optional<LineEntry> runNewLineDialog(QWidget* parent, const Settings& settings, double station);

// "New Station"; `templateName` is GetNewStation or GetNewStationwm6. What is no number gives 0, after a question.
std::optional<double> runNewStationDialog(QWidget* parent, std::string_view templateName, const Settings& settings,
                                          double station);

// "Enter Comment"
struct CommentOutcome {
  enum class How { confirmed, cancelledEmpty, cancelledWithText };
  How how = How::cancelledEmpty;
  std::string text;  // UTF-8
};
CommentOutcome runCommentDialog(QWidget* parent);

// "Enter Scale": the scales of the settings, changed within their limits. Its button "Fit" fills in those of `fitted`;
// without them there is no such button.
std::optional<Settings> runProfileScaleDialog(QWidget* parent, std::string_view templateName, Kind kind, bool iceOption,
                                              const Settings& settings,
                                              const std::optional<Settings>& fitted = std::nullopt);

}  // namespace kalmira
