#include "ui/screen/file_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>

#include "ui/screen/template_dialog.h"

namespace kalmira {
namespace {

// In a window narrower than this many widths of an "x" only what is needed to name a file is shown.
constexpr int kFewLetters = 70;

// The parts of Qt's dialog by the names it gives them. Where a future one lacks a part, it is simply not
// changed.
void hidePieces(const QFileDialog& dialog, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    if (auto* piece = dialog.findChild<QWidget*>(QLatin1String(name))) piece->hide();
  }
}

// Buttons below instead of beside the name, which leaves the name the whole width.
void putButtonsBelow(const QFileDialog& dialog) {
  auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
  auto* buttons = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
  if (grid == nullptr || buttons == nullptr) return;
  grid->removeWidget(buttons);
  buttons->setOrientation(Qt::Horizontal);
  grid->addWidget(buttons, grid->rowCount(), 0, 1, grid->columnCount());
}

void makeSmall(const QFileDialog& dialog) {
  hidePieces(dialog,
             {"sidebar", "lookInLabel", "backButton", "forwardButton", "fileNameLabel", "fileTypeLabel"});
  if (dialog.nameFilters().size() < 2) hidePieces(dialog, {"fileTypeCombo"});
  putButtonsBelow(dialog);
  dialog.layout()->setContentsMargins(4, 4, 4, 4);
  dialog.layout()->setSpacing(4);
}

}  // namespace

QString pathText(const std::filesystem::path& path) {
  const auto utf8 = path.u8string();
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

std::filesystem::path pathOf(const QString& text) {
  return {text.toStdU16String()};
}

void dressFileDialog(QFileDialog& dialog, const QWidget* parent) {
  dialog.setViewMode(QFileDialog::List);
  hidePieces(dialog, {"listModeButton", "detailModeButton"});
  dressLike(dialog, parent);
  const int letter = dialog.fontMetrics().horizontalAdvance('x');
  if (parent != nullptr && parent->window()->width() < kFewLetters * letter) makeSmall(dialog);
  fitForFingers(dialog);
  // A long list of patterns must not make the dialog wider than its window.
  for (auto* box : dialog.findChildren<QComboBox*>()) {
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  }
}

}  // namespace kalmira
