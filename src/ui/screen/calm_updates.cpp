#include "ui/screen/calm_updates.h"

#include <chrono>
#include <utility>

namespace kalmira {
namespace {

constexpr int kRest_ms = 200;

// Until the next beat, which all widgets keep: what changes on several of them is painted in one go.
int untilBeat() {
  using namespace std::chrono;
  const auto now = duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
  return kRest_ms - static_cast<int>(now % kRest_ms);
}

}  // namespace

CalmUpdates::CalmUpdates(QWidget& widget) : widget_(widget) {
  rest_.setSingleShot(true);
  rest_.setTimerType(Qt::PreciseTimer);
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
  rest_.start(untilBeat());
}

}  // namespace kalmira
