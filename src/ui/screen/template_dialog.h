#pragma once

#include <QDialog>
#include <QString>
#include <memory>
#include <string>
#include <string_view>

class QLayout;
class QLineEdit;

// Dialogs from named templates. What a name stands for says ":/dialogs/names.txt" of the program's resources. The form,
// a ".ui" file, is a QWidget with the dialog's title and a grid of fields, in the order Tab goes through them. The rest
// is the loader's: the frame, the buttons "ok" and "cancel" below the form, and what all dialogs have alike, so that a
// form's file need not repeat it: margins and spacing, labels that show their text as it is, lists that are no wider
// than their form. A button of the form with the dynamic property "besideOk" goes into the row of those two. Fields
// grow with font and fingers. All of this is for the user-interface thread.
namespace kalmira {

// Makes a dialog from the template `name` as a child of `parent`; where that window is wider than high, from NAME_H if
// there is one. It has the font and the colours of `parent` and controls of touch height; a form that does not fit the
// window scrolls, its buttons stay. Enter is "ok", Escape is "cancel". In fields for numbers a typed comma becomes a
// full stop. nullptr when there is no such template.
std::unique_ptr<QDialog> makeDialog(std::string_view name, QWidget* parent);

// Makes just the form, for a piece that a dialog has several times. It still is to be fitted for fingers. nullptr when
// there is no such template.
QWidget* makeForm(const QString& name, QWidget* parent);

// The widget `objectName` of a template. A template that lacks it, or has something else by that name, is a fault of
// the program: it ends with a word that says which.
template <class Widget>
Widget& part(const QDialog& dialog, const char* objectName);

[[noreturn]] void templateFault(const QDialog& dialog, const char* objectName);

template <class Widget>
Widget& part(const QDialog& dialog, const char* objectName) {
  auto* widget = dialog.findChild<Widget*>(QLatin1String(objectName));
  if (widget == nullptr) templateFault(dialog, objectName);
  return *widget;
}

// Shows the dialog within its parent's window with the first field selected and waits until it is closed: true when it
// was accepted. Readings go on meanwhile, and anybody may reject() it.
bool runDialog(QDialog& dialog);

// For every dialog: waits until it is closed, and gives its result. It stays within its parent's window when that is
// turned or resized, and gives the keyboard back to it.
int execDialog(QDialog& dialog);

// The form in a frame that scrolls, and the buttons below it, always in sight.
void arrange(QDialog& dialog, QWidget& form, QLayout* buttons);

// What stands in a field, as a decimal number with a full stop; what is no finite number is 0.
double numberIn(const QLineEdit& field);
// The same, brought to the nearest end of what a float holds.
float typedFloat(const QLineEdit& field);
std::string typedText(const QLineEdit& field);  // UTF-8

// For dialogs that Qt itself makes. Font and colours of the window they belong to:
void dressLike(QWidget& dialog, const QWidget* parent);
// every control and list row within `root` of touch height:
void fitForFingers(QWidget& root);
// and at the top of their parent's window, no larger than it; of the screen, while that window is not shown.
void placeInParent(QDialog& dialog);
// Dialogs above the widget leave so many pixels at the top of its window free, where there is room enough.
void keepInSight(QWidget& widget, int height);

}  // namespace kalmira
