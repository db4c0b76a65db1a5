#include <fmt/format.h>

#include <QLabel>
#include <QLineEdit>

#include "ui/screen/template_dialog.h"
#include "ui/session/dialogs.h"

namespace kalmira {

std::optional<double> runNewStationDialog(QWidget* parent, std::string_view templateName,
                                          const Settings& settings, double station) {
  const auto dialog = makeDialog(templateName, parent);
  if (dialog == nullptr) return std::nullopt;
  const auto show = [&dialog](const char* label, double value) {
    part<QLabel>(*dialog, label).setText(QString::fromStdString(fmt::format("{:.3f}", value)));
  };
  show("startStation", settings.startStation);
  show("lastStation", station);
  if (!runDialog(*dialog)) return std::nullopt;
  return typedNumber(part<QLineEdit>(*dialog, "newStation"));
}

}  // namespace kalmira
