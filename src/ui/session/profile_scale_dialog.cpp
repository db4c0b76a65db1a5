#include <fmt/format.h>

#include <QLabel>
#include <QLineEdit>
#include <vector>

#include "ui/screen/template_dialog.h"
#include "ui/session/dialogs.h"

namespace kalmira {
namespace {

// One scale of the dialog: two fields of the template and where they are kept.
struct ScaleRow {
  const char* minimumField;
  const char* maximumField;
  float Settings::*minimum;
  float Settings::*maximum;
  ScaleEnds (*limited)(ScaleEnds typed);
  int decimals;
};

void showRow(const QDialog& dialog, const ScaleRow& row, const Settings& settings) {
  const auto show = [&](const char* field, float value) {
    part<QLineEdit>(dialog, field)
        .setText(QString::fromStdString(fmt::format("{:.{}f}", value, row.decimals)));
  };
  show(row.minimumField, settings.*row.minimum);
  show(row.maximumField, settings.*row.maximum);
}

void readRow(const QDialog& dialog, const ScaleRow& row, Settings& settings) {
  const ScaleEnds ends = row.limited({typedFloat(part<QLineEdit>(dialog, row.minimumField)),
                                      typedFloat(part<QLineEdit>(dialog, row.maximumField))});
  settings.*row.minimum = ends.minimum;
  settings.*row.maximum = ends.maximum;
}

// The scales that a session of this kind has, as far as the template has room for them.
std::vector<ScaleRow> rowsOf(const QDialog& dialog, const ScaleFields& fields) {
  const bool thickness = fields.firstIsThickness;
  std::vector<ScaleRow> rows{{"firstMinimum", "firstMaximum", &Settings::conductivityMinimum,
                              &Settings::conductivityMaximum, thickness ? limitedThickness : limitedScale,
                              thickness ? 1 : 0}};
  if (fields.inphase && dialog.findChild<QWidget*>("inphaseMinimum") != nullptr) {
    rows.push_back({"inphaseMinimum", "inphaseMaximum", &Settings::inphaseMinimum, &Settings::inphaseMaximum,
                    limitedScale, 0});
  }
  if (fields.ice && dialog.findChild<QWidget*>("iceMinimum") != nullptr) {
    rows.push_back(
        {"iceMinimum", "iceMaximum", &Settings::iceMinimum, &Settings::iceMaximum, limitedThickness, 0});
  }
  return rows;
}

// Fields whose name begins with `prefix` and their labels: what a template has for other kinds.
void hideParts(const QDialog& dialog, const QString& prefix) {
  for (auto* widget : dialog.findChildren<QWidget*>()) {
    if (widget->objectName().startsWith(prefix)) widget->hide();
  }
}

}  // namespace

std::optional<Settings> runProfileScaleDialog(QWidget* parent, std::string_view templateName, Kind kind,
                                              bool iceOption, const Settings& settings) {
  const auto dialog = makeDialog(templateName, parent);
  if (dialog == nullptr) return std::nullopt;
  const ScaleFields fields = scaleFieldsOf(kind, iceOption);
  part<QLabel>(*dialog, "firstLabel").setText(fields.firstIsThickness ? "Thickness" : "Conductivity");
  if (!fields.inphase) hideParts(*dialog, "inphase");
  if (!fields.ice) hideParts(*dialog, "ice");
  const auto rows = rowsOf(*dialog, fields);
  for (const auto& row : rows) showRow(*dialog, row, settings);
  if (!runDialog(*dialog)) return std::nullopt;
  Settings changed = settings;
  for (const auto& row : rows) readRow(*dialog, row, changed);
  return changed;
}

}  // namespace kalmira
