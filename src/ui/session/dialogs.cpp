#include "ui/session/dialogs.h"

#include <fmt/format.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <charconv>
#include <cmath>
#include <vector>

#include "platform/text.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/theme.h"

namespace kalmira {
namespace {

// The last line and station. Of what is unreasonably long both ends are shown: the form must not grow with it.
void showLast(const QDialog& dialog, const Settings& settings, double station) {
  const auto show = [&dialog](const char* name, const std::string& text) {
    constexpr int kMostLetters = 16;
    auto& shown = part<QLabel>(dialog, name);
    const QFontMetrics metrics(shown.font());
    shown.setText(metrics.elidedText(qtText(text), Qt::ElideMiddle, kMostLetters * metrics.averageCharWidth()));
  };
  show("currentLine", settings.lineName);
  show("lastStation", fmt::format("{:.3f}", station));
}

void showEntry(const QDialog& dialog, const LineEntry& entry) {
  const auto show = [&dialog](const char* field, const std::string& text) {
    part<QLineEdit>(dialog, field).setText(qtText(text));
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
  entry.startStation = numberIn(part<QLineEdit>(dialog, "startStation"));
  entry.stationIncrement = typedFloat(part<QLineEdit>(dialog, "stationIncrement"));
  return entry;
}

constexpr int kMostCharacters = 512;

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
    part<QLineEdit>(dialog, field).setText(qtText(fmt::format("{:.{}f}", value, row.decimals)));
  };
  show(row.minimumField, settings.*row.minimum);
  show(row.maximumField, settings.*row.maximum);
}

void readRow(const QDialog& dialog, const ScaleRow& row, Settings& settings) {
  const ScaleEnds ends = row.limited(
      {typedFloat(part<QLineEdit>(dialog, row.minimumField)), typedFloat(part<QLineEdit>(dialog, row.maximumField))});
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
    rows.push_back(
        {"inphaseMinimum", "inphaseMaximum", &Settings::inphaseMinimum, &Settings::inphaseMaximum, limitedScale, 0});
  }
  if (fields.ice && dialog.findChild<QWidget*>("iceMinimum") != nullptr) {
    rows.push_back({"iceMinimum", "iceMaximum", &Settings::iceMinimum, &Settings::iceMaximum, limitedThickness, 0});
  }
  return rows;
}

// As numbers are read: blanks, then a number, whatever follows it.
bool beginsWithNumber(const QLineEdit& field) {
  const auto typed = typedText(field);
  auto text = trimmed(typed);
  if (text.starts_with('+')) text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && std::isfinite(value);
}

Message noStationQuestion(std::string_view typed) {
  const std::string why = typed.empty() ? "The field is empty." : fmt::format("\"{}\" is no number.", typed);
  return {.title = "No Number", .text = why + "\r\nSet the station to 0?", .icon = Icon::question};
}

// Fields whose name begins with `prefix` and their labels: what a template has for other kinds.
void hideParts(const QDialog& dialog, const QString& prefix) {
  for (auto* widget : dialog.findChildren<QWidget*>()) {
    if (widget->objectName().startsWith(prefix)) widget->hide();
  }
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

std::optional<double> runNewStationDialog(QWidget* parent, std::string_view templateName, const Settings& settings,
                                          double station) {
  const auto dialog = makeDialog(templateName, parent);
  if (dialog == nullptr) return std::nullopt;
  const auto show = [&dialog](const char* label, double value) {
    part<QLabel>(*dialog, label).setText(qtText(fmt::format("{:.3f}", value)));
  };
  show("startStation", settings.startStation);
  show("lastStation", station);
  auto& field = part<QLineEdit>(*dialog, "newStation");
  // Asked while the dialog stands, so that whatever closes it from outside closes it for good.
  auto& ok = part<QPushButton>(*dialog, "ok");
  ok.disconnect(dialog.get());
  QObject::connect(&ok, &QPushButton::clicked, dialog.get(), [&] {
    if (beginsWithNumber(field) || askMessage(dialog.get(), noStationQuestion(typedText(field)), EnterMeans::no)) {
      return dialog->accept();
    }
    field.setFocus();
    field.selectAll();
  });
  if (!runDialog(*dialog)) return std::nullopt;
  return numberIn(field);
}

CommentOutcome runCommentDialog(QWidget* parent) {
  using How = CommentOutcome::How;
  const auto dialog = makeDialog("GetComment", parent);
  if (dialog == nullptr) return {};
  auto& comment = part<QLineEdit>(*dialog, "comment");
  auto& hint = part<QLabel>(*dialog, "hint");
  comment.setMaxLength(kMostCharacters);
  const auto showHint = [&hint, &comment] { hint.setText(qtText(commentHint(typedText(comment)))); };
  QObject::connect(&comment, &QLineEdit::textChanged, &hint, showHint);
  showHint();
  const bool confirmed = runDialog(*dialog);
  CommentOutcome outcome{.how = How::confirmed, .text = typedText(comment)};
  if (!confirmed) outcome.how = outcome.text.empty() ? How::cancelledEmpty : How::cancelledWithText;
  return outcome;
}

std::optional<Settings> runProfileScaleDialog(QWidget* parent, std::string_view templateName, Kind kind, bool iceOption,
                                              const Settings& settings, const std::optional<Settings>& fitted) {
  const auto dialog = makeDialog(templateName, parent);
  if (dialog == nullptr) return std::nullopt;
  const ScaleFields fields = scaleFieldsOf(kind, iceOption);
  part<QLabel>(*dialog, "firstLabel").setText(fields.firstIsThickness ? "Thickness" : "Conductivity");
  if (!fields.inphase) hideParts(*dialog, "inphase");
  if (!fields.ice) hideParts(*dialog, "ice");
  const auto rows = rowsOf(*dialog, fields);
  for (const auto& row : rows) showRow(*dialog, row, settings);
  if (!fitted) hideParts(*dialog, "fit");
  QObject::connect(&part<QPushButton>(*dialog, "fit"), &QPushButton::clicked, dialog.get(), [&] {
    for (const auto& row : rows) showRow(*dialog, row, *fitted);
  });
  if (!runDialog(*dialog)) return std::nullopt;
  Settings changed = settings;
  for (const auto& row : rows) readRow(*dialog, row, changed);
  return changed;
}

}  // namespace kalmira
