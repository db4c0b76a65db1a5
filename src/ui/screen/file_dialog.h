#pragma once

#include <QString>
#include <filesystem>

class QFileDialog;
class QWidget;

// File dialogs are Qt's own and not the desktop's: the same everywhere, and fit for fingers.
namespace kalmira {

QString pathText(const std::filesystem::path& path);
std::filesystem::path pathOf(const QString& text);

// Font, colours and touch height; in a narrow window only what is needed to name a file. Which kinds of file
// there are is left to choose where the dialog has more than one. After the dialog's mode and filters are
// set.
void dressFileDialog(QFileDialog& dialog, const QWidget* parent);

}  // namespace kalmira
