#include "ui/screen/message_dialog.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QStyle>
#include <QTextLayout>
#include <QTimer>
#include <algorithm>

#include "ui/screen/template_dialog.h"
#include "ui/screen/theme.h"

namespace kalmira {
namespace {

constexpr int kMargins = 60;     // pixels: around icon and text
constexpr int kLeastRoom = 120;  // pixels

QMessageBox::Icon boxIcon(Icon icon) {
  switch (icon) {
    case Icon::none: return QMessageBox::NoIcon;
    case Icon::information: return QMessageBox::Information;
    case Icon::question: return QMessageBox::Question;
    case Icon::exclamation: return QMessageBox::Warning;
    case Icon::stop: return QMessageBox::Critical;
  }
  return QMessageBox::NoIcon;
}

// Broken where the window ends: the box by itself looks only at the screen, which may be a good deal wider.
QString wrapped(const QString& paragraph, const QFont& font, int room) {
  QTextLayout layout(paragraph, font);
  QStringList lines;
  layout.beginLayout();
  for (auto line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(room);
    lines += paragraph.mid(line.textStart(), line.textLength()).trimmed();
  }
  layout.endLayout();
  if (lines.size() == 1) return paragraph;  // with the blanks that it may begin with
  return lines.join('\n');
}

QString wrappedText(const QMessageBox& box, const std::string& text) {
  QStringList paragraphs = qtText(text).remove('\r').trimmed().split('\n');
  if (box.parentWidget() == nullptr) return paragraphs.join('\n');
  const int beside = box.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &box) + kMargins;
  const int room = box.parentWidget()->window()->width() - beside;
  for (auto& paragraph : paragraphs) paragraph = wrapped(paragraph, box.font(), std::max(room, kLeastRoom));
  return paragraphs.join('\n');
}

void showMessage(QMessageBox& box, const QWidget* parent, const Message& message) {
  dressLike(box, parent);
  box.setWindowTitle(qtText(message.title));
  box.setTextFormat(Qt::PlainText);
  box.setText(wrappedText(box, message.text));
  box.setIcon(boxIcon(message.icon));
}

// The texts are set here because a desktop may have its own, in another language and with other keys.
QPushButton& addButton(QMessageBox& box, QMessageBox::StandardButton which, const char* text) {
  auto& button = *box.addButton(which);
  button.setText(text);
  button.setIcon({});
  return button;
}

// Drops keys and taps for its box until its time is over.
class Deaf final : public QObject {
 public:
  Deaf(QMessageBox& box, int milliseconds) : box_(box) {
    if (milliseconds <= 0) return;
    QCoreApplication::instance()->installEventFilter(this);
    QTimer::singleShot(milliseconds, this, [this] { QCoreApplication::instance()->removeEventFilter(this); });
  }
  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (widget == nullptr || widget->window() != &box_) return false;
    switch (event->type()) {
      case QEvent::KeyPress:
      case QEvent::Shortcut:
      case QEvent::ShortcutOverride:
      case QEvent::MouseButtonPress:
      case QEvent::MouseButtonDblClick:
      case QEvent::TouchBegin: return true;
      default: return false;
    }
  }

 private:
  QMessageBox& box_;
};

}  // namespace

void tellMessage(QWidget* parent, const Message& message) {
  QMessageBox box(parent);
  showMessage(box, parent, message);
  box.setEscapeButton(&addButton(box, QMessageBox::Ok, "OK"));
  fitForFingers(box);
  execDialog(box);
}

EnterMeans enterAnswer(Question question) {
  switch (question) {
    case Question::exitLogging:
    case Question::deleteCalibration: return EnterMeans::no;
    case Question::linkLost:
    case Question::startCalibration: return EnterMeans::yes;
  }
  return EnterMeans::no;
}

bool askMessage(QWidget* parent, const Message& message, EnterMeans enter, int deafMs) {
  QMessageBox box(parent);
  showMessage(box, parent, message);
  auto& yes = addButton(box, QMessageBox::Yes, "&Yes");
  auto& no = addButton(box, QMessageBox::No, "&No");
  box.setEscapeButton(&no);
  box.setDefaultButton(enter == EnterMeans::yes ? &yes : &no);
  fitForFingers(box);
  const Deaf deaf(box, deafMs);
  return execDialog(box) == QMessageBox::Yes;
}

}  // namespace kalmira
