#include <fmt/format.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <string>

#include "platform/text.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/theme.h"
#include "ui/setup/setup_dialogs.h"

namespace kalmira {
namespace {

QLineEdit& fieldOf(const QDialog& dialog, const NotesField& field) {
  return part<QLineEdit>(dialog, std::string(field.name).c_str());
}

// In the words of the form.
std::string wantedText(const QDialog& dialog, const NotesField& field) {
  const auto label = part<QLabel>(dialog, (std::string(field.name) + "Label").c_str()).text().toStdString();
  if (std::holds_alternative<std::string SurveyNotes::*>(field.member)) {
    return fmt::format("{}: one line of at most {} bytes is wanted", label, kLongestNote);
  }
  return fmt::format("{}: a number from {} to {} is wanted, or nothing", label, field.least, field.most);
}

// What was typed, as far as it can be taken: the field that cannot, or nullptr.
const NotesField* takeTyped(const QDialog& dialog, SurveyNotes& notes) {
  for (const auto& field : notesFields()) {
    if (!field.asked) continue;
    const auto typed = typedText(fieldOf(dialog, field));
    if (!setNote(notes, field.name, trimmed(typed)).empty()) return &field;
  }
  return nullptr;
}

void confirm(QDialog& dialog, SurveyNotes& notes) {
  const auto* wrong = takeTyped(dialog, notes);
  if (wrong == nullptr) return dialog.accept();
  tellMessage(&dialog, {.title = "WARNING", .text = wantedText(dialog, *wrong), .icon = Icon::exclamation});
  auto& field = fieldOf(dialog, *wrong);
  field.setFocus(Qt::OtherFocusReason);
  field.selectAll();
  for (auto* area : dialog.findChildren<QScrollArea*>()) area->ensureWidgetVisible(&field);
}

}  // namespace

std::optional<SurveyNotes> runSurveyNotesDialog(QWidget* parent, const SurveyNotes& last) {
  const auto dialog = makeDialog("SurveyNotes", parent);
  if (dialog == nullptr) return std::nullopt;
  for (const auto& field : notesFields()) {
    if (!field.asked) continue;
    auto& edit = fieldOf(*dialog, field);
    edit.setMaxLength(static_cast<int>(kLongestNote));  // of characters; what has more bytes is told
    edit.setText(qtText(noteText(last, field)));
  }
  auto notes = last;
  auto& ok = part<QPushButton>(*dialog, "ok");
  QObject::disconnect(&ok, &QPushButton::clicked, dialog.get(), nullptr);
  QObject::connect(&ok, &QPushButton::clicked, dialog.get(), [&] { confirm(*dialog, notes); });
  if (!runDialog(*dialog)) return std::nullopt;
  return notes;
}

}  // namespace kalmira
