#include "ui/screen/cover_window.h"

#include <QEvent>
#include <utility>

#include "ui/screen/theme.h"

namespace kalmira {

CoverWindow::CoverWindow(const char* name, const char* spoken, std::function<void()> onLeft, QWidget* parent)
    : QWidget(parent), on_left_(std::move(onLeft)) {
  setObjectName(name);
  setAccessibleName(spoken);
  setFocusPolicy(Qt::StrongFocus);
  setAutoFillBackground(true);
  if (parent != nullptr) {
    setGeometry(parent->rect());
    parent->installEventFilter(this);
  }
  hide();
}

void CoverWindow::cover() {
  if (parentWidget() != nullptr) setGeometry(parentWidget()->rect());
  show();
  raise();
  setFocus();
}

void CoverWindow::uncover() {
  hide();
  if (on_left_) on_left_();
}

bool CoverWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parentWidget() && event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
  return false;
}

void setTextScale(QWidget& window, double scale) {
  QFont texts = window.font();
  texts.setPixelSize(dialogTextPixels(scale));
  window.setFont(texts);
}

}  // namespace kalmira
