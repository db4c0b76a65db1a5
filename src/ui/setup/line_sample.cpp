#include "ui/setup/line_sample.h"

#include <QPainter>
#include <QPolygon>
#include <array>

namespace kalmira {
namespace {

constexpr int kLetters = 6;  // wished width, in widths of an "x"

// Heights of a made-up profile, in hundredths from the upper edge.
constexpr std::array kHeights{62, 60, 66, 48, 30, 24, 28, 44, 68, 74, 70, 58, 52, 55};

QPolygon profileIn(const QRect& room) {
  QPolygon profile;
  const int last = static_cast<int>(kHeights.size()) - 1;
  for (int i = 0; i <= last; ++i) {
    profile << QPoint(room.left() + room.width() * i / last,
                      room.top() + room.height() * kHeights[static_cast<std::size_t>(i)] / 100);
  }
  return profile;
}

}  // namespace

LineSample::LineSample(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void LineSample::setLine(bool shown, int colour, int width) {
  shown_ = shown;
  colour_ = colour;
  width_ = width;
  update();
}

QSize LineSample::sizeHint() const { return {kLetters * fontMetrics().horizontalAdvance('x'), fontMetrics().height()}; }

void LineSample::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(theme_.chart));
  painter.fillRect(0, height() / 2, width(), 1, QColor(theme_.chartGrid));
  if (!shown_) return;
  painter.setPen(QPen(QColor(traceColourOn(theme_, colour_)), width_));
  painter.drawPolyline(profileIn(rect()));
}

}  // namespace kalmira
