#include "ui/screen/window_fit.h"

#include <QEvent>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

namespace kalmira {
namespace {

constexpr int kLookMs = 40;
constexpr int kLooks = 15;

}  // namespace

QMargins frameOf(const QWidget& window) {
  const auto* shown = &window;
  if (!shown->isVisible() && window.parentWidget() != nullptr) shown = window.parentWidget()->window();
  const auto* handle = shown->windowHandle();
  return handle == nullptr || !shown->isVisible() ? QMargins() : handle->frameMargins();
}

// Where a coordinate is no whole number of the screen's pixels, a frame is up to one thicker than it is said to be.
QRect roomFor(const QWidget& window) {
  const auto* screen = window.parentWidget() != nullptr ? window.parentWidget()->window()->screen() : window.screen();
  auto frame = frameOf(window);
  const double ratio = screen->devicePixelRatio();
  if (!frame.isNull() && ratio != std::floor(ratio)) frame += 1;
  return screen->availableGeometry().marginsRemoved(frame);
}

void keepOnScreen(QWidget& window) {
  if (window.isFullScreen() || window.isMaximized()) return;
  const auto room = roomFor(window);
  const auto inside = window.geometry();
  if (room.contains(inside)) return;
  const auto size = inside.size().boundedTo(room.size());
  if (size != inside.size()) window.resize(size);
  // The place of a window is that of its frame.
  const auto frame = frameOf(window);
  const QPoint corner(std::clamp(inside.left(), room.left(), room.left() + room.width() - size.width()),
                      std::clamp(inside.top(), room.top(), room.top() + room.height() - size.height()));
  window.move(corner - QPoint(frame.left(), frame.top()));
}

FrameWatch::FrameWatch(QWidget& window, std::function<void()> refit)
    : QObject(&window), window_(window), refit_(std::move(refit)) {
  timer_.setInterval(kLookMs);
  connect(&timer_, &QTimer::timeout, this, [this] { look(); });
  window.installEventFilter(this);
}

bool FrameWatch::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::Show) {
    looks_ = 0;
    timer_.start();
  }
  return false;
}

void FrameWatch::look() {
  if (++looks_ >= kLooks || !window_.isVisible()) timer_.stop();
  if (window_.isVisible() && !roomFor(window_).contains(window_.geometry())) refit_();
}

}  // namespace kalmira
