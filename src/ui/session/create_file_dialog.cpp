#include "ui/session/create_file_dialog.h"

#include <QFileDialog>
#include <QLineEdit>

#include "ui/screen/file_dialog.h"
#include "ui/screen/template_dialog.h"

namespace kalmira {
namespace {

QString textOf(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

void nameKind(QFileDialog& dialog, Kind kind) {
  const auto& instrument = instrumentOf(kind);
  dialog.setNameFilter(textOf(instrument.filterText));
  dialog.setDefaultSuffix(textOf(instrument.extension.substr(1)));
}

void showProposal(QFileDialog& dialog, const DataPlace& place, const std::string& proposal) {
  dialog.setDirectory(pathText(dataFolderOf(place)));
  // By the name Qt gives it; without it the name is simply not marked.
  auto* field = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
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
  dressFileDialog(dialog, parent);
}

}  // namespace

std::optional<std::filesystem::path> runCreateFileDialog(QWidget* parent, const DataPlace& place,
                                                         const std::string& proposal) {
  QFileDialog dialog(parent, "Create Data File");
  setUp(dialog, parent);
  nameKind(dialog, place.kind);
  showProposal(dialog, place, proposal);
  placeInParent(dialog);
  if (execDialog(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return pathOf(dialog.selectedFiles().constFirst());
}

}  // namespace kalmira
