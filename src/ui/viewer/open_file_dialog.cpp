#include "ui/viewer/open_file_dialog.h"

#include <fmt/format.h>

#include <QFileDialog>

#include "ui/screen/file_dialog.h"
#include "ui/screen/template_dialog.h"

namespace kalmira {
namespace {

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
  return QString::fromStdString(fmt::format("All Data Files ({})", patterns));
}

std::optional<std::filesystem::path> answerOf(QFileDialog& dialog) {
  placeInParent(dialog);
  if (execDialog(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return pathOf(dialog.selectedFiles().constFirst());
}

}  // namespace

std::optional<std::filesystem::path> runOpenFileDialog(QWidget* parent, const DataPlace& place) {
  QFileDialog dialog(parent, "Open Data File");
  dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontUseCustomDirectoryIcons);
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  const auto kindFilter = instrumentOf(place.kind).filterText;
  dialog.setNameFilters(
      {QString::fromUtf8(kindFilter.data(), static_cast<qsizetype>(kindFilter.size())), everyKindFilter()});
  dialog.setDirectory(pathText(nearestFolder(dataFolderOf(place))));
  dressFileDialog(dialog, parent);
  return answerOf(dialog);
}

std::optional<std::filesystem::path> runSaveDialog(QWidget* parent, const SaveQuestion& question) {
  QFileDialog dialog(parent, QString::fromStdString(question.title));
  dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite |
                    QFileDialog::DontUseCustomDirectoryIcons);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  QStringList filters;
  for (const auto& filter : question.filters) filters << QString::fromStdString(filter);
  dialog.setNameFilters(filters);
  dialog.setDefaultSuffix(QString::fromStdString(question.extension));
  dialog.setDirectory(pathText(question.proposal.parent_path()));
  dialog.selectFile(pathText(question.proposal.filename()));
  dressFileDialog(dialog, parent);
  return answerOf(dialog);
}

}  // namespace kalmira
