#include "ui/screen/template_dialog.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QFile>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScroller>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QToolButton>
#include <QUiLoader>
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <set>

#include "platform/text.h"
#include "ui/screen/touch_button.h"
#include "ui/screen/window_fit.h"

namespace kalmira {
namespace {

// Wider than this, in widths of an "x", a dialog only tears labels and fields apart.
constexpr int kWidestLetters = 60;
constexpr qsizetype kLongestChoice = 14;  // letters of a list's text that a form makes room for

// The measures of all dialogs, in pixels.
constexpr int kMargin = 6;
constexpr int kBeside = 6;
constexpr int kBelow = 3;
constexpr int kAboveButtons = 4;
constexpr int kNarrowestButton = 64;
constexpr int kSmallestButtonText = 8;
constexpr int kSmallestFormText = 9;
constexpr int kBesideLetters = 4;  // in a button that is as narrow as it can be
// What is always seen of a list's entry.
constexpr int kShownLetters = 4;

// A field's edge must be seen in the dark, too, and which one is being filled in, from further away than the usual hair
// line.
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
    // Also where Tab comes in from the buttons below.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
      if (now != nullptr && widget() != nullptr && widget()->isAncestorOf(now)) ensureWidgetVisible(now);
    });
  }
  QSize sizeHint() const override { return widget() == nullptr ? QSize() : widget()->sizeHint(); }
  QSize minimumSizeHint() const override { return {0, touchHeight(screen())}; }
};

constexpr const char* kInSight = "kalmiraInSight";  // the property that keepInSight sets

// So much of the window that the widget belongs to is to be seen above its dialogs.
int inSightOf(const QWidget& widget) {
  for (const auto* each = &widget; each != nullptr; each = each->parentWidget()) {
    if (const auto height = each->property(kInSight); height.isValid()) return height.toInt();
  }
  return 0;
}

// As far as there is room: a list gives way before the form is cut.
void showWholeTexts(QComboBox& box) {
  qsizetype longest = box.minimumContentsLength();
  for (int i = 0; i < box.count(); ++i) longest = std::max(longest, std::min(box.itemText(i).size(), kLongestChoice));
  box.setMinimumContentsLength(static_cast<int>(longest));
}

// A window that is turned or resized takes its dialog along.
class Follower final : public QObject {
 public:
  explicit Follower(QDialog& dialog) : dialog_(dialog), frame_(dialog, [this] { place(); }) {
    if (auto* parent = dialog.parentWidget()) parent->window()->installEventFilter(this);
  }
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Resize && dialog_.isVisible()) {
      dialog_.adjustSize();
      place();
    }
    return false;
  }

 private:
  void place() {
    placeInParent(dialog_);
    keepOnScreen(dialog_);
  }

  QDialog& dialog_;
  FrameWatch frame_;
};

// What a name stands for, see the resources' dialogs/names.txt.
struct FormOf {
  QString file;
  QStringList leftOut;
};

std::optional<FormOf> findForm(const QString& name) {
  QFile names(":/dialogs/names.txt");
  if (!names.open(QIODevice::ReadOnly)) return std::nullopt;
  while (!names.atEnd()) {
    auto words = QString::fromUtf8(names.readLine()).simplified().split(' ');
    if (words.takeFirst() != name) continue;
    const auto file = ":/dialogs/" + words.takeFirst() + ".ui";
    return FormOf{file, words};
  }
  return std::nullopt;
}

// A word that leaves nothing out is a fault of the table.
void leaveOut(const QWidget& form, const QStringList& words) {
  for (const auto& word : words) {
    const auto widgets = form.findChildren<QWidget*>(QRegularExpression('^' + word));
    if (widgets.isEmpty()) {
      qFatal("Form \"%s\" has no \"%s\" to leave out", qUtf8Printable(form.objectName()), qUtf8Printable(word));
    }
    qDeleteAll(widgets);
  }
}

QString labelAt(const QGridLayout& grid, int row, int column) {
  const auto* item = grid.itemAtPosition(row, column);
  const auto* label = item == nullptr ? nullptr : qobject_cast<const QLabel*>(item->widget());
  return label == nullptr ? QString() : label->text().remove(':').remove('&');
}

// A screen reader says what a field is by the label that belongs to it. In a table of fields that is its row's and its
// column's.
void nameFields(QWidget& form, const QGridLayout& grid) {
  std::set<const QWidget*> labelled;
  for (const auto* label : form.findChildren<QLabel*>()) labelled.insert(label->buddy());
  for (int i = 0; i < grid.count(); ++i) {
    auto* field = grid.itemAt(i)->widget();
    const bool isField = qobject_cast<QLineEdit*>(field) != nullptr || qobject_cast<QComboBox*>(field) != nullptr;
    if (!isField || labelled.contains(field) || !field->accessibleName().isEmpty()) continue;
    int row = 0, column = 0, rows = 0, columns = 0;
    grid.getItemPosition(i, &row, &column, &rows, &columns);
    const auto above = row > 1 || column > 0 ? labelAt(grid, 0, column) : QString();
    field->setAccessibleName((labelAt(grid, row, 0) + ' ' + above).simplified());
  }
}

// What all forms have alike, so that it need not stand in their files.
void settle(QWidget& form) {
  form.layout()->setContentsMargins(0, 0, 0, 0);
  if (auto* grid = qobject_cast<QGridLayout*>(form.layout())) {
    grid->setHorizontalSpacing(kBeside);
    grid->setVerticalSpacing(kBelow);
    nameFields(form, *grid);
  }
  // Texts come from devices and files, too, and are shown as they are.
  for (auto* label : form.findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
  // Long entries must not make a form wider than its window.
  for (auto* box : form.findChildren<QComboBox*>()) {
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    if (box->minimumContentsLength() == 0) box->setMinimumContentsLength(kShownLetters);
  }
}

QPushButton* newButton(const char* name, const char* text) {
  auto* button = new QPushButton(text);
  button->setObjectName(name);
  return button;
}

// "OK" and "Cancel", and before them what the form wants beside them.
QLayout* makeButtons(QDialog& dialog, const QWidget& form) {
  QList<QPushButton*> buttons;
  for (auto* button : form.findChildren<QPushButton*>()) {
    if (button->property("besideOk").toBool()) buttons.append(button);
  }
  auto* ok = newButton("ok", "OK");
  auto* cancel = newButton("cancel", "Cancel");
  ok->setDefault(true);
  QObject::connect(ok, &QPushButton::clicked, &dialog, &QDialog::accept);
  QObject::connect(cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
  auto* row = new QHBoxLayout;
  row->setSpacing(kBeside);
  for (auto* button : buttons << ok << cancel) {
    button->setMinimumWidth(kNarrowestButton);
    row->addWidget(button);
  }
  return row;
}

// The room that the form wants, now that it is filled: layouts within layouts remember what they wanted when they were
// empty.
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

// Large texts on a small screen: the buttons below the form must stay side by side, and in the window. A style would
// give each a width that three of them do not find there.
void fitButtons(const QDialog& dialog, int width) {
  auto* whole = dialog.layout();
  if (whole == nullptr) return;
  const auto buttons = dialog.findChildren<QPushButton*>(QString(), Qt::FindDirectChildrenOnly);
  while (!buttons.isEmpty() && whole->minimumSize().width() > width) {
    auto font = buttons.first()->font();
    if (font.pixelSize() <= kSmallestButtonText) return;
    font.setPixelSize(font.pixelSize() - 1);
    for (auto* button : buttons) {
      button->setFont(font);
      button->setMinimumWidth(button->fontMetrics().horizontalAdvance(button->text()) + 2 * kBesideLetters);
    }
    whole->invalidate();
  }
}

// A part of another control is as high as that one.
bool standsAlone(const QWidget& control) {
  const auto* owner = control.parentWidget();
  return qobject_cast<const QComboBox*>(owner) == nullptr && qobject_cast<const QLineEdit*>(owner) == nullptr &&
         qobject_cast<const QAbstractSpinBox*>(owner) == nullptr;
}

// Lists and fields give way before the form is cut, as far as a usual entry is still read.
void setNarrowest(QWidget& control, const QFont& font) {
  constexpr int kFieldEdges = 16;
  const QFontMetrics metrics(font);
  if (auto* box = qobject_cast<QComboBox*>(&control)) {
    box->setMinimumWidth(metrics.horizontalAdvance(QStringLiteral("COM12:")) + touchHeight(box->screen()) * 2 / 3);
  } else if (auto* field = qobject_cast<QLineEdit*>(&control); field != nullptr && standsAlone(control)) {
    field->setMinimumWidth(metrics.horizontalAdvance(QStringLiteral("-0.000")) + kFieldEdges);
  }
}

// A form that is wider than its window would have to be pushed to and fro: its texts become smaller instead, as far as
// they can be read.
void fitForm(const QDialog& dialog, int width) {
  auto* form = dialog.findChild<QWidget*>("form");
  if (form == nullptr || form->layout() == nullptr) return;
  const auto margins = dialog.layout()->contentsMargins();
  const int bar = dialog.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &dialog);
  const int room = width - margins.left() - margins.right() - bar;
  const auto texts = form->findChildren<QWidget*>();
  QFont font = dialog.font();
  while (form->layout()->minimumSize().width() > room && font.pixelSize() > kSmallestFormText) {
    font.setPixelSize(font.pixelSize() - 1);
    for (auto* text : texts) {
      if (!standsAlone(*text)) continue;
      QFont own = text->font();
      own.setPixelSize(font.pixelSize());
      text->setFont(own);
      setNarrowest(*text, font);
    }
    form->layout()->invalidate();
    form->layout()->activate();
  }
}

// Half the world types a comma where the numbers of files have a full stop, and what stands behind it would silently be
// lost: so the comma becomes a full stop before the operator's eyes.
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

bool isControl(const QObject& object) {
  return qobject_cast<const QAbstractButton*>(&object) != nullptr ||
         qobject_cast<const QLineEdit*>(&object) != nullptr || qobject_cast<const QComboBox*>(&object) != nullptr ||
         qobject_cast<const QAbstractSpinBox*>(&object) != nullptr;
}

}  // namespace

void arrange(QDialog& dialog, QWidget& form, QLayout* buttons) {
  form.setObjectName("form");
  auto* area = new FormArea(&dialog);
  auto* whole = new QVBoxLayout(&dialog);
  whole->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  whole->setSpacing(kAboveButtons);
  whole->addWidget(area);
  whole->addLayout(buttons);
  area->setWidget(&form);
}

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
    if (auto* tool = qobject_cast<QToolButton*>(control)) {
      tool->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);  // the toolkit's file dialog fixes its own
      tool->setMinimumWidth(height);
      tool->setIconSize({height / 2, height / 2});
    }
    setNarrowest(*control, root.font());
    if (auto* box = qobject_cast<QComboBox*>(control)) box->setItemDelegate(new TouchRows(height, box));
  }
  for (auto* list : root.findChildren<QListView*>()) list->setItemDelegate(new TouchRows(height, list));
}

void keepInSight(QWidget& widget, int height) { widget.setProperty(kInSight, height); }

void placeInParent(QDialog& dialog) {
  const auto* parent = dialog.parentWidget();
  const bool shown = parent != nullptr && parent->window()->isVisible();
  const auto free = roomFor(dialog);
  const QRect place = shown ? parent->window()->geometry() : free;
  const QSize room = place.size().boundedTo(free.size());
  fitButtons(dialog, room.width());
  fitForm(dialog, room.width());
  const QSize wished = dialog.sizeHint();
  const int comfortable = std::max(wished.width(), kWidestLetters * dialog.fontMetrics().horizontalAdvance('x'));
  const int width = std::min(comfortable, room.width());
  const QSize size = QSize(width, wished.height() + wrappedHeight(dialog, width)).boundedTo(room);
  dialog.resize(size);
  // The place of a window is that of its frame.
  const auto frame = frameOf(dialog);
  const int inSight = parent == nullptr ? 0 : inSightOf(*parent);
  const QPoint corner = shown ? parent->window()->pos() : place.topLeft();
  const int left = corner.x() + (room.width() - size.width()) / 2;
  const int top = inSight > 0 ? place.top() + inSight : corner.y();
  dialog.move(std::clamp(left, free.left() - frame.left(), free.left() + free.width() - size.width() - frame.left()),
              std::clamp(top, free.top() - frame.top(), free.top() + free.height() - size.height() - frame.top()));
}

QWidget* makeForm(const QString& name, QWidget* parent) {
  const auto of = findForm(name);
  QFile file(of ? of->file : QString());
  if (!of || !file.open(QIODevice::ReadOnly)) return nullptr;
  QUiLoader loader;
  auto* form = loader.load(&file, parent);
  if (form == nullptr || form->layout() == nullptr) return nullptr;
  leaveOut(*form, of->leftOut);
  settle(*form);
  return form;
}

std::unique_ptr<QDialog> makeDialog(std::string_view name, QWidget* parent) {
  const auto called = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  auto dialog = std::make_unique<QDialog>(parent);
  dialog->setObjectName(called);
  const bool lying = parent != nullptr && parent->window()->width() > parent->window()->height();
  auto* form = lying ? makeForm(called + "_H", dialog.get()) : nullptr;
  if (form == nullptr) form = makeForm(called, dialog.get());
  if (form == nullptr) return nullptr;
  dialog->setWindowTitle(form->windowTitle());
  dressLike(*dialog, parent);
  arrange(*dialog, *form, makeButtons(*dialog, *form));
  fitForFingers(*dialog);
  takeCommas(*dialog);
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
  for (auto* box : dialog.findChildren<QComboBox*>()) showWholeTexts(*box);
  remeasure(dialog);
  placeInParent(dialog);
  focusFirst(dialog);
  return execDialog(dialog) == QDialog::Accepted;
}

double numberIn(const QLineEdit& field) {
  const double value = parseReal(typedText(field));
  return std::isfinite(value) ? value : 0.0;
}

float typedFloat(const QLineEdit& field) {
  constexpr double kMost = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(numberIn(field), -kMost, kMost));
}

std::string typedText(const QLineEdit& field) { return field.text().toStdString(); }

}  // namespace kalmira
