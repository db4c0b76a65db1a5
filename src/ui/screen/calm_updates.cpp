#include "ui/screen/calm_updates.h"

#include <utility>

namespace kalmira {
namespace {

constexpr int kRest_ms = 100;

}  // namespace

CalmUpdates::CalmUpdates(QWidget& widget) : widget_(widget) {
  rest_.setSingleShot(true);
  rest_.setInterval(kRest_ms);
  QObject::connect(&rest_, &QTimer::timeout, &rest_, [this] { paintWaiting(); });
}

void CalmUpdates::add(const QRect& part) {
  if (!widget_.isVisible()) return;  // once it is shown, all of it is painted
  waiting_ += part;
  if (!rest_.isActive()) paintWaiting();
}

void CalmUpdates::paintWaiting() {
  if (waiting_.isEmpty()) return;
  widget_.update(std::exchange(waiting_, {}));
  rest_.start();
}

}  // namespace kalmira
