#include "ui/screen/template_dialog.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>
#include <QFile>
#include <QLayout>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QScrollArea>
#include <QScroller>
#include <QStyledItemDelegate>
#include <QToolButton>
#include <QUiLoader>
#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/text.h"
#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

// Wider than this, in widths of an "x", a dialog only tears labels and fields apart.
constexpr int kWidestLetters = 60;

// A field's edge must be seen in the dark, too, and which one is being filled in, from further away than the
// usual hair line.
constexpr const char* kFieldStyle =
    "QLineEdit { border: 1px solid palette(text); border-radius: 3px; padding: 0 4px; }"
    "QLineEdit:focus { border: 2px solid palette(highlight); }";

// Rows of lists and of opened boxes, high enough for a finger.
class TouchRows final : public QStyledItemDelegate {
 public:
  TouchRows(int height, QObject* parent) : QStyledItemDelegate(parent), height_(height) {}
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return QStyledItemDelegate::sizeHint(option, index).expandedTo(QSize(0, height_));
  }

 private:
  int height_;
};

// Asks for the room its form wants, but can do with less.
class FormArea final : public QScrollArea {
 public:
  explicit FormArea(QWidget* parent) : QScrollArea(parent) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    QScroller::grabGesture(viewport(), QScroller::TouchGesture);
  }
  QSize sizeHint() const override { return widget() == nullptr ? QSize() : widget()->sizeHint(); }
  QSize minimumSizeHint() const override { return {0, touchHeight(screen())}; }
};

// A window that is turned or resized takes its dialog along.
class Follower final : public QObject {
 public:
  explicit Follower(QDialog& dialog) : dialog_(dialog) {
    if (auto* parent = dialog.parentWidget()) parent->window()->installEventFilter(this);
  }
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Resize && dialog_.isVisible()) {
      dialog_.adjustSize();
      placeInParent(dialog_);
    }
    return false;
  }

 private:
  QDialog& dialog_;
};

QString templatePath(std::string_view name, const QWidget* parent) {
  const auto stem = ":/dialogs/" + QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  const bool lying = parent != nullptr && parent->window()->width() > parent->window()->height();
  if (lying && QFile::exists(stem + "_H.ui")) return stem + "_H.ui";
  return stem + ".ui";
}

std::unique_ptr<QDialog> load(const QString& path, QWidget* parent) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return nullptr;
  QUiLoader loader;
  std::unique_ptr<QWidget> widget(loader.load(&file, parent));
  std::unique_ptr<QDialog> dialog(qobject_cast<QDialog*>(widget.get()));
  if (dialog != nullptr) static_cast<void>(widget.release());
  return dialog;
}

void makeScrollable(QDialog& dialog) {
  auto& form = part<QWidget>(dialog, "form");
  auto* area = new FormArea(&dialog);
  delete dialog.layout()->replaceWidget(&form, area);
  area->setWidget(&form);
  form.show();
}

// The room that the form wants, now that it is filled: layouts within layouts remember what they wanted when
// they were empty.
void remeasure(const QDialog& dialog) {
  auto& form = *part<QWidget>(dialog, "form").layout();
  form.invalidate();
  form.activate();
  for (auto* area : dialog.findChildren<QScrollArea*>()) area->updateGeometry();
}

// What texts that are wrapped at this width want beyond the form's usual height.
int wrappedHeight(const QDialog& dialog, int width) {
  const auto* form = dialog.findChild<QWidget*>("form");
  if (form == nullptr || form->layout() == nullptr || !form->layout()->hasHeightForWidth()) return 0;
  const auto margins = dialog.layout()->contentsMargins();
  const int room = width - margins.left() - margins.right();
  return std::max(0, form->layout()->totalHeightForWidth(room) - form->sizeHint().height());
}

void connectButtons(QDialog& dialog) {
  auto& ok = part<QPushButton>(dialog, "ok");
  ok.setDefault(true);
  QObject::connect(&ok, &QPushButton::clicked, &dialog, &QDialog::accept);
  QObject::connect(&part<QPushButton>(dialog, "cancel"), &QPushButton::clicked, &dialog, &QDialog::reject);
}

// Half the world types a comma where the numbers of files have a full stop, and what stands behind it would
// silently be lost: so the comma becomes a full stop before the operator's eyes.
void takeCommas(QLineEdit& field) {
  QObject::connect(&field, &QLineEdit::textEdited, &field, [&field](const QString& typed) {
    if (!typed.contains(',')) return;
    const int cursor = field.cursorPosition();
    field.setText(QString(typed).replace(',', '.'));
    field.setCursorPosition(cursor);
  });
}

void takeCommas(QDialog& dialog) {
  for (auto* field : dialog.findChildren<QLineEdit*>()) {
    if (field->inputMethodHints().testFlag(Qt::ImhFormattedNumbersOnly)) takeCommas(*field);
  }
}

void focusFirst(QDialog& dialog) {
  for (auto* next = dialog.nextInFocusChain(); next != &dialog; next = next->nextInFocusChain()) {
    if ((next->focusPolicy() & Qt::TabFocus) != 0 && next->isVisibleTo(&dialog) && next->isEnabled()) {
      next->setFocus(Qt::TabFocusReason);
      return;
    }
  }
}

// A part of another control is as high as that one.
bool standsAlone(const QWidget& control) {
  const auto* owner = control.parentWidget();
  return qobject_cast<const QComboBox*>(owner) == nullptr &&
         qobject_cast<const QLineEdit*>(owner) == nullptr &&
         qobject_cast<const QAbstractSpinBox*>(owner) == nullptr;
}

bool isControl(const QObject& object) {
  return qobject_cast<const QAbstractButton*>(&object) != nullptr ||
         qobject_cast<const QLineEdit*>(&object) != nullptr ||
         qobject_cast<const QComboBox*>(&object) != nullptr ||
         qobject_cast<const QAbstractSpinBox*>(&object) != nullptr;
}

}  // namespace

void templateFault(const QDialog& dialog, const char* objectName) {
  qFatal("Dialog \"%s\" has no part \"%s\" of its kind", qUtf8Printable(dialog.objectName()), objectName);
}

void dressLike(QWidget& dialog, const QWidget* parent) {
  if (parent == nullptr) return;
  dialog.setFont(parent->font());
  dialog.setPalette(parent->palette());
  dialog.setStyleSheet(kFieldStyle);
}

void fitForFingers(QWidget& root) {
  const int height = touchHeight(root.screen());
  for (auto* control : root.findChildren<QWidget*>()) {
    if (!isControl(*control) || !standsAlone(*control)) continue;
    control->setMinimumHeight(height);
    // Buttons have a font of their own from the desktop.
    if (qobject_cast<QAbstractButton*>(control) != nullptr) control->setFont(root.font());
    if (qobject_cast<QToolButton*>(control) != nullptr) control->setMinimumWidth(height);
    if (auto* box = qobject_cast<QComboBox*>(control)) {
      box->setItemDelegate(new TouchRows(height, box));
      // In a narrow window a list gives way before the form is cut.
      box->setMinimumWidth(root.fontMetrics().horizontalAdvance(QStringLiteral("COM12:")) + height * 2 / 3);
    }
  }
  for (auto* list : root.findChildren<QListView*>()) list->setItemDelegate(new TouchRows(height, list));
}

void placeInParent(QDialog& dialog) {
  if (dialog.parentWidget() == nullptr) return;
  const auto* window = dialog.parentWidget()->window();
  const QSize room = window->size();
  const QSize wished = dialog.sizeHint();
  const int comfortable =
      std::max(wished.width(), kWidestLetters * dialog.fontMetrics().horizontalAdvance('x'));
  const int width = std::min(comfortable, room.width());
  const QSize size = QSize(width, wished.height() + wrappedHeight(dialog, width)).boundedTo(room);
  dialog.resize(size);
  dialog.move(window->pos() + QPoint((room.width() - size.width()) / 2, 0));
}

std::unique_ptr<QDialog> makeDialog(std::string_view name, QWidget* parent) {
  auto dialog = load(templatePath(name, parent), parent);
  if (dialog == nullptr) return nullptr;
  dressLike(*dialog, parent);
  makeScrollable(*dialog);
  fitForFingers(*dialog);
  takeCommas(*dialog);
  connectButtons(*dialog);
  return dialog;
}

int execDialog(QDialog& dialog) {
  const Follower follower(dialog);
  const int result = dialog.exec();
  // Where no window manager does it, the keyboard would be nobody's.
  if (auto* parent = dialog.parentWidget()) parent->window()->activateWindow();
  return result;
}

bool runDialog(QDialog& dialog) {
  remeasure(dialog);
  placeInParent(dialog);
  focusFirst(dialog);
  return execDialog(dialog) == QDialog::Accepted;
}

double typedNumber(const QLineEdit& field) {
  const double value = parseReal(typedText(field));
  return std::isfinite(value) ? value : 0.0;
}

float typedFloat(const QLineEdit& field) {
  constexpr double kMost = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(typedNumber(field), -kMost, kMost));
}

std::string typedText(const QLineEdit& field) {
  return field.text().toStdString();
}

}  // namespace kalmira
