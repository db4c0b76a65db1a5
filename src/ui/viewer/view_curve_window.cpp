#include "ui/viewer/view_curve_window.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <array>
#include <utility>

#include "ui/session/curve_window.h"

namespace kalmira {
namespace {

constexpr int kHandle = 6;  // half the width of the bar's ends, pixels
constexpr int kTick = 3;

}  // namespace

void paintOffScale(QPainter& painter, std::span<const OffScaleMark> marks, const ChartColours& colours,
                   const QRect& plot, int size) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(colours.background), 1));
  for (const auto& mark : marks) {
    const double x = plot.left() + mark.column + 0.5;
    const double half = size / 2.0;
    const double tip = mark.above ? plot.top() + 1.0 : plot.bottom();
    const double base = mark.above ? tip + size : tip - size;
    painter.setBrush(QColor(traceColourOn(colours, mark.colour)));
    const std::array corners{QPointF(x, tip), QPointF(x - half, base), QPointF(x + half, base)};
    painter.drawPolygon(corners.data(), static_cast<int>(corners.size()));
  }
  painter.restore();
}

ViewCurveWnd::ViewCurveWnd(const Theme& theme, std::function<void(int)> barWanted, QWidget* parent)
    : QWidget(parent), theme_(&theme), bar_wanted_(std::move(barWanted)) {
  setObjectName("ViewCurveWnd");
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::NoFocus);
  setAccessibleName(QStringLiteral("Profile of the survey line"));
}

ViewCurveWnd::~ViewCurveWnd() = default;

int ViewCurveWnd::labelHeight() const { return fontMetrics().height() + kTick; }

QSize ViewCurveWnd::plotSize() const { return {std::max(1, width()), std::max(1, height() - labelHeight())}; }

void ViewCurveWnd::makePicture() {
  const auto size = plotSize();
  if (picture_ && picture_->width() == size.width() && picture_->height() == size.height()) return;
  picture_ = std::make_unique<ChartPicture>(chartColoursOf(*theme_), size.width(), size.height());
}

void ViewCurveWnd::startPlot(const ProfileSetup& setup) {
  makePicture();
  setup_ = setup;
  filled_ = true;
}

void ViewCurveWnd::endPlot(std::span<const StationTick> ticks) {
  const auto metrics = fontMetrics();
  labels_ = stationLabels(
      ticks, width(), [&](const std::string& text) { return metrics.horizontalAdvance(qtText(text)); },
      metrics.horizontalAdvance(QStringLiteral("00")));
  update();
}

int ViewCurveWnd::markSize() const { return std::max(2 * kHandle, fontMetrics().height() * 3 / 4); }

void ViewCurveWnd::showStations(const ProfileSetup& setup, const PlotView& view, std::span<const StationPoint> points) {
  startPlot(setup);
  DrawStationPlot(*picture_, setup, view, points);
  marks_ = offScaleMarks(setup, view, points, markSize());
  endPlot(stationTicks(view, points));
}

void ViewCurveWnd::showSummary(const ProfileSetup& setup, const LineSummary& summary, const PlotView& view) {
  startPlot(setup);
  const auto overview = lineOverview(summary, view.columns);
  DrawOverview(*picture_, setup, overview, kFirstColumn, true);
  marks_ = offScaleMarks(setup, overview, kFirstColumn, markSize());
  endPlot(stationTicks(summary, overview));
}

void ViewCurveWnd::clearPlot() {
  makePicture();
  picture_->clear();
  filled_ = false;
  labels_.clear();
  marks_.clear();
  bar_ = 0;
  update();
}

void ViewCurveWnd::setBar(int bar) {
  if (bar == bar_) return;
  update(barPlace(bar_));
  bar_ = bar;
  update(barPlace(bar_));
}

QImage ViewCurveWnd::picture() const { return picture_ ? imageOf(*picture_).copy() : QImage(); }

QRect ViewCurveWnd::barPlace(int bar) const {
  const int x = bar + kFirstColumn - 1;
  return {x - kHandle - 1, 0, 2 * kHandle + 3, plotSize().height()};
}

void ViewCurveWnd::mousePressEvent(QMouseEvent* event) { askForBar(event->position().toPoint().x()); }

void ViewCurveWnd::mouseMoveEvent(QMouseEvent* event) {
  if ((event->buttons() & Qt::LeftButton) != 0) askForBar(event->position().toPoint().x());
}

void ViewCurveWnd::askForBar(int x) {
  const int last = std::max(1, plotSize().width() - 2 * kFirstColumn);
  if (filled_) bar_wanted_(std::clamp(x - kFirstColumn + 1, 1, last));
}

void ViewCurveWnd::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  const auto dirty = event->rect();
  if (picture_) {
    const QRect plot = dirty.intersected(QRect(0, 0, picture_->width(), picture_->height()));
    painter.drawImage(plot, imageOf(*picture_), plot);
  }
  const int below = picture_ ? picture_->height() : 0;
  painter.fillRect(QRect(0, below, width(), height() - below), QColor(theme_->background));
  painter.setPen(QColor(theme_->faintText));
  painter.drawRect(QRect(QPoint(0, 0), plotSize() - QSize(1, 1)));
  if (!filled_) return;
  if (dirty.bottom() >= below) drawStationLabels(painter);
  paintOffScale(painter, marks_, chartColoursOf(*theme_), QRect(QPoint(0, 0), plotSize()), markSize());
  drawLimits(painter);
  if (bar_ > 0) drawBar(painter);
}

void ViewCurveWnd::drawStationLabels(QPainter& painter) const {
  painter.setPen(QColor(theme_->chartText));
  const int top = plotSize().height();
  for (const auto& label : labels_) {
    painter.drawLine(label.column, top, label.column, top + kTick - 1);
    const auto text = qtText(label.text);
    painter.drawText(QRect(label.left, top + kTick, width() - label.left, height() - top - kTick),
                     Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, text);
  }
}

// Over the traces, on a ground of their own, so that neither hides the other for long: the view moves on.
void ViewCurveWnd::drawLimits(QPainter& painter) const {
  const auto size = plotSize();
  const std::array limits{std::pair(setup_.axisMaximum, Qt::AlignTop), std::pair(setup_.axisMinimum, Qt::AlignBottom)};
  for (const auto& [limit, edge] : limits) {
    const auto text = qtText(limitText(setup_.kind, limit));
    const int wide = fontMetrics().horizontalAdvance(text) + 4;
    const int high = fontMetrics().height();
    const int top = edge == Qt::AlignTop ? 1 : size.height() - 1 - high;
    const QRect place(size.width() - 1 - wide, top, wide, high);
    painter.fillRect(place, QColor(theme_->chart));
    painter.setPen(QColor(theme_->chartText));
    painter.drawText(place, Qt::AlignCenter | Qt::TextSingleLine, text);
  }
}

void ViewCurveWnd::drawBar(QPainter& painter) const {
  const int x = bar_ + kFirstColumn - 1;
  const int bottom = plotSize().height() - 1;
  painter.setPen(QColor(theme_->focus));
  painter.drawLine(x, 0, x, bottom);
  painter.setBrush(QColor(theme_->focus));
  const std::array above{QPoint(x - kHandle, 0), QPoint(x + kHandle, 0), QPoint(x, kHandle)};
  const std::array below{QPoint(x - kHandle, bottom), QPoint(x + kHandle, bottom), QPoint(x, bottom - kHandle)};
  painter.drawPolygon(above.data(), static_cast<int>(above.size()));
  painter.drawPolygon(below.data(), static_cast<int>(below.size()));
}

}  // namespace kalmira
