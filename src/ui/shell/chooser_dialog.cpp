#include "ui/shell/chooser_dialog.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "ui/screen/template_dialog.h"
#include "ui/screen/touch_button.h"
#include "ui/shell/main_menu.h"
#include "ui/shell/title.h"

namespace kalmira {
namespace {

constexpr int kColumns = 3;
constexpr int kChoices = 9;  // the eight models, and the ORLA for ice work last

RememberedKind choiceAt(int index) {
  if (index < kKindCount) return {.kind = static_cast<Kind>(index), .ice = false};
  return {.kind = Kind::orla, .ice = true};
}

int indexOf(RememberedKind choice) { return choice.ice ? kKindCount : static_cast<int>(choice.kind); }

QString digitOf(int index) { return index < kKindCount ? qtText(std::to_string(index)) : QString(); }

// A large button: an instrument's drawing, its name, and the digit that chooses it.
class ChoiceButton final : public QAbstractButton {
 public:
  ChoiceButton(int index, const Theme& theme, QWidget* parent) : QAbstractButton(parent), index_(index), theme_(theme) {
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setObjectName(qtText(shownName(choiceAt(index).kind, choiceAt(index).ice)));
    setAccessibleName(objectName());
  }
  QSize sizeHint() const override {
    const int side = touchHeight(screen());
    return {side, side};
  }
  void setMarked(bool marked) {
    marked_ = marked;
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const int frame = std::max(2, std::min(width(), height()) / 36);
    paintGround(painter, frame);
    const int line = std::max(7, std::min(height() / 5, width() / 6));
    const QRect inside = rect().adjusted(2 * frame, frame, -2 * frame, -frame);
    paintName(painter, QRect(inside.left(), inside.bottom() - line - frame / 2, inside.width(), line));
    const QRect room(inside.left(), inside.top() + frame, inside.width(), inside.height() - line - 2 * frame);
    paintDrawing(painter, room);
    QFont small = font();
    small.setPixelSize(std::max(7, line * 3 / 4));
    painter.setFont(small);
    painter.setPen(QColor(theme_.faintText));
    painter.drawText(inside.adjusted(0, frame / 2, 0, 0), Qt::AlignTop | Qt::AlignLeft, digitOf(index_));
  }

 private:
  void paintGround(QPainter& painter, int frame) const {
    painter.fillRect(rect(), QColor(isDown() ? theme_.pressedButton : theme_.background));
    QPen edge(QColor(marked_ ? theme_.focus : theme_.buttonEdge));
    const int width = marked_ ? frame + 1 : 1;
    edge.setWidth(width);
    edge.setJoinStyle(Qt::MiterJoin);
    painter.setPen(edge);
    painter.drawRect(rect().adjusted(width / 2, width / 2, -(width + 1) / 2, -(width + 1) / 2));
  }
  void paintName(QPainter& painter, const QRect& place) const {
    QFont bold = font();
    bold.setPixelSize(place.height() * 4 / 5);
    bold.setBold(true);
    painter.setFont(fittedFont(objectName(), bold, place.size()));
    painter.setPen(QColor(theme_.text));
    painter.drawText(place, Qt::AlignCenter, objectName());
  }
  void paintDrawing(QPainter& painter, const QRect& room) {
    const QSize wanted = room.size() * devicePixelRatio();
    if (wanted != drawn_size_) {
      const auto choice = choiceAt(index_);
      drawn_size_ = wanted;
      drawing_ =
          renderDrawing(drawingOf(choice.kind, choice.ice, window()->size()), theme_, room.size(), devicePixelRatio());
    }
    if (drawing_.isNull()) return;
    QRectF place(QPointF(0, 0), drawing_.deviceIndependentSize());
    place.moveCenter(QRectF(room).center());
    painter.drawPixmap(place.topLeft(), drawing_);
  }

  int index_;
  const Theme& theme_;
  bool marked_ = false;
  QPixmap drawing_;
  QSize drawn_size_;
};

class Chooser final : public QDialog {
 public:
  Chooser(QWidget* parent, const Theme& theme, int marked);
  int chosen() const { return marked_; }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool focusNextPrevChild(bool) override { return false; }
  void showEvent(QShowEvent* event) override {
    shown_.start();
    QDialog::showEvent(event);
  }
  void resizeEvent(QResizeEvent*) override {
    QFont larger = font();
    larger.setPixelSize(std::max(10, std::min(width(), height()) / 22));
    setFont(larger);
  }

 private:
  void mark(int index);
  void choose(int index);
  void tapped(int index);

  std::array<ChoiceButton*, kChoices> choices_{};
  QElapsedTimer shown_;
  int marked_ = 0;
};

Chooser::Chooser(QWidget* parent, const Theme& theme, int marked) : QDialog(parent) {
  setObjectName(QStringLiteral("Chooser"));
  setWindowTitle(QStringLiteral("KALMIRA"));
  setPalette(paletteOf(theme));
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(4, 4, 4, 4);
  column->setSpacing(4);
  auto* heading = new QLabel(QStringLiteral("Which instrument?"), this);
  heading->setAlignment(Qt::AlignCenter);
  column->addWidget(heading);
  auto* grid = new QGridLayout;
  grid->setSpacing(4);
  column->addLayout(grid, 1);
  for (int i = 0; i < kChoices; ++i) {
    auto* button = new ChoiceButton(i, theme, this);
    choices_[static_cast<std::size_t>(i)] = button;
    grid->addWidget(button, i / kColumns, i % kColumns);
    connect(button, &QAbstractButton::clicked, this, [this, i] { tapped(i); });
  }
  auto* cancel = new TouchButton(QStringLiteral("Cancel"), theme, this);
  cancel->setObjectName(QStringLiteral("cancel"));
  column->addWidget(cancel);
  connect(cancel, &QAbstractButton::clicked, this, &QDialog::reject);
  mark(marked);
}

void Chooser::mark(int index) {
  marked_ = index;
  for (int i = 0; i < kChoices; ++i) choices_[static_cast<std::size_t>(i)]->setMarked(i == index);
}

void Chooser::choose(int index) {
  mark(index);
  accept();
}

// The second tap of a double tap on the button that opened the chooser is meant for nothing in it.
void Chooser::tapped(int index) {
  if (parentWidget() != nullptr && !shown_.hasExpired(QApplication::doubleClickInterval())) return;
  choose(index);
}

void Chooser::keyPressEvent(QKeyEvent* event) {
  const int digit = event->key() - Qt::Key_0;
  if (digit >= 0 && digit < kKindCount) return choose(digit);
  switch (event->key()) {
    case Qt::Key_Left: return mark((marked_ + kChoices - 1) % kChoices);
    case Qt::Key_Right:
    case Qt::Key_Tab: return mark((marked_ + 1) % kChoices);
    case Qt::Key_Up: return mark((marked_ + kChoices - kColumns) % kChoices);
    case Qt::Key_Down: return mark((marked_ + kColumns) % kChoices);
    case Qt::Key_Enter:
    case Qt::Key_Return: return event->isAutoRepeat() ? void() : choose(marked_);
    default: QDialog::keyPressEvent(event);  // Escape
  }
}

// Over the whole window it belongs to, or where the main window will be.
void showAt(Chooser& chooser, const QWidget* parent) {
  if (parent != nullptr) {
    chooser.setGeometry(QRect(parent->mapToGlobal(QPoint(0, 0)), parent->size()));
    if (parent->window()->isFullScreen()) chooser.setWindowState(Qt::WindowFullScreen);
    return;
  }
  const auto place = openingPlace(chooser.screen()->availableSize(), std::nullopt, std::nullopt);
  chooser.resize(place.width, place.height);
  if (place.fullScreen) chooser.setWindowState(Qt::WindowFullScreen);
}

}  // namespace

std::optional<RememberedKind> runChooserDialog(QWidget* parent, const Theme& theme,
                                               std::optional<RememberedKind> current) {
  Chooser chooser(parent, theme, current ? indexOf(*current) : 0);
  showAt(chooser, parent);
  if (execDialog(chooser) != QDialog::Accepted) return std::nullopt;
  return choiceAt(chooser.chosen());
}

}  // namespace kalmira
