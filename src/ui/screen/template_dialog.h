#pragma once

#include <QDialog>
#include <QString>
#include <memory>
#include <string>
#include <string_view>

class QLineEdit;

// Dialogs from named templates. A template has a widget "form" with the fields, in the order Tab goes through
// them, and below it the buttons "ok" and "cancel". It uses layouts, so that it grows with font and fingers.
// All of this is for the user-interface thread.
namespace kalmira {

// Makes a dialog from the template `name`, ":/dialogs/NAME.ui" of the program's resources, as a child of
// `parent`; where that window is wider than high, from ":/dialogs/NAME_H.ui" if there is one. It has the font
// and the colours of `parent` and controls of touch height; a form that does not fit the window scrolls, its
// buttons stay. Enter is "ok", Escape is "cancel". In fields for numbers a typed comma becomes a full stop.
// nullptr when there is no such template.
std::unique_ptr<QDialog> makeDialog(std::string_view name, QWidget* parent);

// The widget `objectName` of a template. A template that lacks it, or has something else by that name, is a
// fault of the program: it ends with a word that says which.
template <class Widget>
Widget& part(const QDialog& dialog, const char* objectName);

[[noreturn]] void templateFault(const QDialog& dialog, const char* objectName);

template <class Widget>
Widget& part(const QDialog& dialog, const char* objectName) {
  auto* widget = dialog.findChild<Widget*>(QLatin1String(objectName));
  if (widget == nullptr) templateFault(dialog, objectName);
  return *widget;
}

// Shows the dialog within its parent's window with the first field selected and waits until it is closed:
// true when it was accepted. Readings go on meanwhile, and anybody may reject() it.
bool runDialog(QDialog& dialog);

// For every dialog: waits until it is closed, and gives its result. It stays within its parent's window when
// that is turned or resized, and gives the keyboard back to it.
int execDialog(QDialog& dialog);

// What stands in a field, as a decimal number with a full stop; what is no finite number is 0.
double typedNumber(const QLineEdit& field);
// The same, brought to the nearest end of what a float holds.
float typedFloat(const QLineEdit& field);
std::string typedText(const QLineEdit& field);  // UTF-8

// For dialogs that Qt itself makes. Font and colours of the window they belong to:
void dressLike(QWidget& dialog, const QWidget* parent);
// every control and list row within `root` of touch height:
void fitForFingers(QWidget& root);
// and at the top of their parent's window, no larger than it.
void placeInParent(QDialog& dialog);

}  // namespace kalmira
