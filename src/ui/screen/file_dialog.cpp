#include "ui/screen/file_dialog.h"

#include <fmt/format.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>

#include "ui/screen/template_dialog.h"
#include "ui/screen/theme.h"
#include "ui/screen/touch_button.h"
#include "ui/screen/window_fit.h"

namespace kalmira {
namespace {

// In a window narrower than this many widths of an "x" only what is needed to name a file is shown.
constexpr int kFewLetters = 70;
constexpr int kSmallestLetters = 8;  // pixels

// The parts of Qt's dialog by the names it gives them. Where a future one lacks a part, it is simply not changed.
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
  hidePieces(dialog, {"sidebar", "lookInLabel", "backButton", "forwardButton", "fileNameLabel", "fileTypeLabel"});
  if (dialog.nameFilters().size() < 2) hidePieces(dialog, {"fileTypeCombo"});
  putButtonsBelow(dialog);
  dialog.layout()->setContentsMargins(4, 4, 4, 4);
  dialog.layout()->setSpacing(4);
}

QString pathText(const std::filesystem::path& path) {
  const auto utf8 = path.u8string();
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

// After the dialog's filters are set.
void dress(QFileDialog& dialog, const QWidget* parent) {
  dialog.setViewMode(QFileDialog::List);
  hidePieces(dialog, {"listModeButton", "detailModeButton"});
  dressLike(dialog, parent);
  const int letter = dialog.fontMetrics().horizontalAdvance('x');
  if (parent != nullptr && parent->window()->width() < kFewLetters * letter) makeSmall(dialog);
  fitForFingers(dialog);
  for (auto* button : dialog.findChildren<QPushButton*>()) button->setIcon({});
  // A long list of patterns must not make the dialog wider than its window.
  for (auto* box : dialog.findChildren<QComboBox*>()) {
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  }
}

void useForSaving(QFileDialog& dialog) {
  dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite |
                    QFileDialog::DontUseCustomDirectoryIcons);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
}

// The list of files gives way before anything is pushed out of the window, then ways to other folders, then letters.
void fitIn(QFileDialog& dialog, QSize room) {
  for (auto* list : dialog.findChildren<QAbstractItemView*>()) list->setMinimumSize(0, touchHeight(dialog.screen()));
  auto* layout = dialog.layout();
  const auto needed = [layout] {
    layout->invalidate();
    layout->activate();
    return layout->minimumSize();
  };
  for (const char* piece : {"newFolderButton", "fileTypeCombo", "lookInCombo", "toParentButton"}) {
    if (needed().height() <= room.height() && needed().width() <= room.width()) return;
    hidePieces(dialog, {piece});
  }
  auto* box = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
  if (box == nullptr || box->buttons().isEmpty()) return;
  auto font = box->buttons().first()->font();
  while (needed().width() > room.width() && font.pixelSize() > kSmallestLetters) {
    font.setPixelSize(font.pixelSize() - 1);
    for (auto* button : box->buttons()) button->setFont(font);
  }
}

std::optional<std::filesystem::path> answerOf(QFileDialog& dialog) {
  if (const auto* parent = dialog.parentWidget()) {
    fitIn(dialog, parent->window()->size().boundedTo(roomFor(dialog).size()));
  }
  placeInParent(dialog);
  if (execDialog(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return dialog.selectedFiles().constFirst().toStdU16String();
}

void propose(QFileDialog& dialog, const QString& name) {
  // By the name Qt gives it; without it the name is simply not marked.
  auto* field = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
  if (field == nullptr) return dialog.selectFile(name);
  // The names of existing files, which completion would offer, are the ones that cannot be taken.
  field->setCompleter(nullptr);
  field->setText(name);
  field->selectAll();
}

// Nothing may have been logged yet with this kind: its folder is then not there.
std::filesystem::path nearestFolder(std::filesystem::path folder) {
  std::error_code ignored;
  while (folder.has_relative_path() && !std::filesystem::is_directory(folder, ignored)) {
    folder = folder.parent_path();
  }
  return folder;
}

QString everyKindFilter() {
  std::string patterns;
  for (int index = 0; index < kKindCount; ++index) {
    patterns += fmt::format("{}{}", index == 0 ? "" : " ", filterPattern(static_cast<Kind>(index)));
  }
  return qtText(fmt::format("All Data Files ({})", patterns));
}

}  // namespace

std::optional<std::filesystem::path> runCreateFileDialog(QWidget* parent, const DataPlace& place,
                                                         const std::string& proposal) {
  QFileDialog dialog(parent, "Create Data File");
  useForSaving(dialog);
  dress(dialog, parent);
  const auto& instrument = instrumentOf(place.kind);
  dialog.setNameFilter(qtText(instrument.filterText));
  dialog.setDefaultSuffix(qtText(instrument.extension.substr(1)));
  dialog.setDirectory(pathText(dataFolderOf(place)));
  const bool wholePath = proposal.find('\\') != std::string::npos;
  propose(dialog, wholePath ? pathText(dataFilePathFor(place, proposal).filename()) : qtText(proposal));
  return answerOf(dialog);
}

std::optional<std::filesystem::path> runOpenFileDialog(QWidget* parent, const DataPlace& place) {
  QFileDialog dialog(parent, "Open Data File");
  dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontUseCustomDirectoryIcons);
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.setNameFilters({qtText(instrumentOf(place.kind).filterText), everyKindFilter()});
  dialog.setDirectory(pathText(nearestFolder(dataFolderOf(place))));
  dress(dialog, parent);
  return answerOf(dialog);
}

std::optional<std::filesystem::path> runSaveDialog(QWidget* parent, const SaveQuestion& question) {
  QFileDialog dialog(parent, qtText(question.title));
  useForSaving(dialog);
  dialog.setNameFilter(qtText(question.filter));
  dialog.setDefaultSuffix(qtText(question.extension));
  dialog.setDirectory(pathText(question.proposal.parent_path()));
  dialog.selectFile(pathText(question.proposal.filename()));
  dress(dialog, parent);
  return answerOf(dialog);
}

}  // namespace kalmira
