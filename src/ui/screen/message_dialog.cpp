#include "ui/screen/message_dialog.h"

#include <QCoreApplication>
#include <QDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QStyle>
#include <QTimer>

#include "ui/screen/template_dialog.h"
#include "ui/screen/theme.h"

namespace kalmira {
namespace {

constexpr int kBesideText = 8;  // pixels
constexpr int kBelowText = 3;

QStyle::StandardPixmap pictureOf(Icon icon) {
  switch (icon) {
    case Icon::question: return QStyle::SP_MessageBoxQuestion;
    case Icon::exclamation: return QStyle::SP_MessageBoxWarning;
    case Icon::stop: return QStyle::SP_MessageBoxCritical;
    default: return QStyle::SP_MessageBoxInformation;
  }
}

// Where a path ends that stands in a sentence: it may have blanks itself.
qsizetype endOfPath(const QString& text, qsizetype start) {
  static const QRegularExpression kEnd(R"((: |, |; |\. |\.?$))");
  const auto found = kEnd.match(text, start);
  return found.hasMatch() ? found.capturedStart() : text.size();
}

// The paragraphs of a message, paths on lines of their own.
QStringList linesOf(const QString& text) {
  static const QRegularExpression kPath("(^|[ \"])/[^/ ]");
  QStringList lines;
  for (const auto& paragraph : text.trimmed().remove('\r').split('\n')) {
    auto rest = paragraph;
    for (auto found = kPath.match(rest); found.hasMatch(); found = kPath.match(rest)) {
      const auto start = found.capturedEnd(1);
      const auto end = endOfPath(rest, start);
      // A lone slash is no path: "km/h" has no blank before it, "a /b" no second one.
      if (rest.mid(start, end - start).count('/') < 2) break;
      if (const auto before = rest.left(start).trimmed(); !before.isEmpty()) lines += before;
      auto after = end;
      while (after < rest.size() && QStringLiteral(":,;.").contains(rest[after])) ++after;
      lines += rest.mid(start, after - start);
      rest = rest.mid(after).trimmed();
    }
    if (!rest.isEmpty() || paragraph.isEmpty()) lines += rest;
  }
  return lines;
}

// A path that is longer than the box is broken behind a folder, and nowhere else.
QString breakable(const QString& line) {
  return line.startsWith('/') ? QString(line).replace(' ', QChar::Nbsp).replace('/', QStringLiteral("/\u200B")) : line;
}

class MessageBox final : public QDialog {
 public:
  MessageBox(QWidget* parent, const Message& message) : QDialog(parent) {
    dressLike(*this, parent);
    setWindowTitle(qtText(message.title));
    setAccessibleName(windowTitle());
    setAccessibleDescription(qtText(message.text));
    auto* form = new QWidget(this);
    auto* row = new QHBoxLayout(form);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kBesideText);
    if (message.icon != Icon::none) {
      auto* picture = new QLabel(form);
      const int side = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
      picture->setPixmap(style()->standardIcon(pictureOf(message.icon), nullptr, this).pixmap(side));
      row->addWidget(picture, 0, Qt::AlignTop);
    }
    auto* lines = new QVBoxLayout;
    lines->setSpacing(kBelowText);
    for (const auto& line : linesOf(qtText(message.text))) {
      auto* label = new QLabel(breakable(line), form);
      label->setObjectName("text");
      // A dialog within a dialog would have it from the desktop.
      label->setFont(font());
      label->setTextFormat(Qt::PlainText);
      label->setWordWrap(true);
      lines->addWidget(label);
    }
    lines->addStretch(1);
    row->addLayout(lines, 1);
    buttons_ = new QHBoxLayout;
    arrange(*this, *form, buttons_);
  }

  // The texts are set here because a desktop may have its own, in another language and with other keys.
  QPushButton& addButton(int result, const char* text) {
    auto* button = new QPushButton(text, this);
    connect(button, &QPushButton::clicked, this, [this, result] { done(result); });
    buttons_->addWidget(button);
    return *button;
  }
  int run() {
    fitForFingers(*this);
    placeInParent(*this);
    return execDialog(*this);
  }
  // Letters alone answer, too.
  void keyPressEvent(QKeyEvent* event) override {
    for (auto* button : findChildren<QPushButton*>()) {
      const auto letter = button->text().indexOf('&') + 1;
      if (letter > 0 && event->text().compare(button->text().mid(letter, 1), Qt::CaseInsensitive) == 0) {
        return button->click();
      }
    }
    QDialog::keyPressEvent(event);
  }

 private:
  QHBoxLayout* buttons_;
};

// Drops keys and taps for its box until its time is over.
class Deaf final : public QObject {
 public:
  Deaf(QDialog& box, int milliseconds) : box_(box) {
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
  QDialog& box_;
};

}  // namespace

void tellMessage(QWidget* parent, const Message& message) {
  MessageBox box(parent, message);
  box.addButton(QDialog::Accepted, "OK").setDefault(true);
  box.run();
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
  MessageBox box(parent, message);
  auto& yes = box.addButton(QDialog::Accepted, "&Yes");
  auto& no = box.addButton(QDialog::Rejected, "&No");
  auto& marked = enter == EnterMeans::yes ? yes : no;
  marked.setDefault(true);
  marked.setFocus();
  const Deaf deaf(box, deafMs);
  return box.run() == QDialog::Accepted;
}

}  // namespace kalmira
