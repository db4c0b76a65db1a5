#include "ui/gps/message_entry_dialog.h"

#include <QLineEdit>

#include "gps/monitor.h"
#include "ui/screen/template_dialog.h"

namespace kalmira {

std::optional<std::string> runMessageEntryDialog(QWidget* parent, const std::string& message) {
  const auto dialog = makeDialog("GetGPSMessage", parent);
  if (dialog == nullptr) return std::nullopt;
  auto& field = part<QLineEdit>(*dialog, "message");
  field.setMaxLength(kMostMessageCharacters);
  field.setText(QString::fromStdString(message));
  if (!runDialog(*dialog)) return std::nullopt;
  return typedText(field);
}

}  // namespace kalmira
