#include <fmt/format.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include "ui/screen/template_dialog.h"
#include "ui/session/dialogs.h"

namespace kalmira {
namespace {

// The last line and station, in the room that the window leaves them beside their labels.
void showLast(const QDialog& dialog, const Settings& settings, double station) {
  const auto show = [&dialog](const char* label, const char* value, const std::string& text) {
    auto& shown = part<QLabel>(dialog, value);
    const int room =
        dialog.parentWidget() == nullptr ? QWIDGETSIZE_MAX : dialog.parentWidget()->window()->width();
    const int rest =
        room - part<QLabel>(dialog, label).sizeHint().width() - 2 * dialog.fontMetrics().height();
    shown.setText(shown.fontMetrics().elidedText(QString::fromStdString(text), Qt::ElideMiddle, rest));
  };
  show("currentLineLabel", "currentLine", settings.lineName);
  show("lastStationLabel", "lastStation", fmt::format("{:.3f}", station));
}

void showEntry(const QDialog& dialog, const LineEntry& entry) {
  const auto show = [&dialog](const char* field, const std::string& text) {
    part<QLineEdit>(dialog, field).setText(QString::fromStdString(text));
  };
  show("newLine", entry.lineName);
  show("lineIncrement", fmt::format("{:.2f}", entry.lineIncrement));
  show("startStation", fmt::format("{:.3f}", entry.startStation));
  show("stationIncrement", fmt::format("{:.3f}", entry.stationIncrement));
  auto& sequence = part<QComboBox>(dialog, "sequence");
  sequence.addItems({"Alternate", "One Way"});
  sequence.setCurrentIndex(entry.sequenceMode);
  auto& direction = part<QComboBox>(dialog, "direction");
  direction.addItems({"West", "South", "North", "East"});
  direction.setCurrentIndex(entry.direction);
}

LineEntry typedEntry(const QDialog& dialog) {
  LineEntry entry;
  entry.lineName = typedText(part<QLineEdit>(dialog, "newLine"));
  entry.lineIncrement = typedFloat(part<QLineEdit>(dialog, "lineIncrement"));
  entry.sequenceMode = part<QComboBox>(dialog, "sequence").currentIndex();
  entry.direction = part<QComboBox>(dialog, "direction").currentIndex();
  entry.startStation = typedNumber(part<QLineEdit>(dialog, "startStation"));
  entry.stationIncrement = typedFloat(part<QLineEdit>(dialog, "stationIncrement"));
  return entry;
}

}  // namespace

std::optional<LineEntry> runNewLineDialog(QWidget* parent, const Settings& settings, double station) {
  const auto dialog = makeDialog("GetNewLine", parent);
  if (dialog == nullptr) return std::nullopt;
  part<QLineEdit>(*dialog, "newLine").setMaxLength(static_cast<int>(kLineNameCharacters));
  showLast(*dialog, settings, station);
  showEntry(*dialog, proposeLine(settings, station));
  if (!runDialog(*dialog)) return std::nullopt;
  return typedEntry(*dialog);
}

}  // namespace kalmira
