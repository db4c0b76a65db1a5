#include "logging/create_file_dialog.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QLineEdit>

#include "screen/template_dialog.h"

namespace kalmira {
namespace {

// In a window narrower than this many widths of an "x" only what is needed to name a file is shown.
constexpr int kFewLetters = 70;

QString textOf(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString pathText(const std::filesystem::path& path) {
  const auto utf8 = path.u8string();
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

// The parts of Qt's dialog by the names it gives them. Where a future one lacks a part, it is simply not
// changed.
template <class Widget = QWidget>
Widget* pieceOf(const QFileDialog& dialog, const char* name) {
  return dialog.findChild<Widget*>(QLatin1String(name));
}

void hidePieces(const QFileDialog& dialog, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    if (auto* piece = pieceOf(dialog, name)) piece->hide();
  }
}

// Buttons below instead of beside the name, which leaves the name the whole width.
void putButtonsBelow(const QFileDialog& dialog) {
  auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
  auto* buttons = pieceOf<QDialogButtonBox>(dialog, "buttonBox");
  if (grid == nullptr || buttons == nullptr) return;
  grid->removeWidget(buttons);
  buttons->setOrientation(Qt::Horizontal);
  grid->addWidget(buttons, grid->rowCount(), 0, 1, grid->columnCount());
}

void makeSmall(const QFileDialog& dialog) {
  hidePieces(dialog, {"sidebar", "lookInLabel", "backButton", "forwardButton", "fileNameLabel",
                      "fileTypeLabel", "fileTypeCombo"});
  putButtonsBelow(dialog);
  dialog.layout()->setContentsMargins(4, 4, 4, 4);
  dialog.layout()->setSpacing(4);
}

void nameKind(QFileDialog& dialog, Kind kind) {
  const auto& instrument = instrumentOf(kind);
  dialog.setNameFilter(textOf(instrument.filterText));
  dialog.setDefaultSuffix(textOf(instrument.extension.substr(1)));
}

void showProposal(QFileDialog& dialog, const DataPlace& place, const std::string& proposal) {
  dialog.setDirectory(pathText(dataFolderOf(place)));
  auto* field = pieceOf<QLineEdit>(dialog, "fileNameEdit");
  // The names of existing files, which completion would offer, are the ones that cannot be taken.
  if (field != nullptr) field->setCompleter(nullptr);
  const bool wholePath = proposal.find('\\') != std::string::npos;
  const auto name = wholePath ? pathText(dataFilePathFor(place, proposal).filename()) : textOf(proposal);
  if (field != nullptr) {
    field->setText(name);
    field->selectAll();
  } else {
    dialog.selectFile(name);
  }
}

void setUp(QFileDialog& dialog, const QWidget* parent) {
  dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite |
                    QFileDialog::DontUseCustomDirectoryIcons);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setViewMode(QFileDialog::List);
  hidePieces(dialog, {"listModeButton", "detailModeButton"});
  dressLike(dialog, parent);
  const int letter = dialog.fontMetrics().horizontalAdvance('x');
  if (parent != nullptr && parent->window()->width() < kFewLetters * letter) makeSmall(dialog);
  fitForFingers(dialog);
}

}  // namespace

std::optional<std::filesystem::path> runCreateFileDialog(QWidget* parent, const DataPlace& place,
                                                         const std::string& proposal) {
  QFileDialog dialog(parent, "Create Data File");
  setUp(dialog, parent);
  nameKind(dialog, place.kind);
  showProposal(dialog, place, proposal);
  placeInParent(dialog);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return std::filesystem::path(dialog.selectedFiles().constFirst().toStdU16String());
}

}  // namespace kalmira
