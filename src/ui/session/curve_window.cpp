#include "ui/session/curve_window.h"

#include <fmt/format.h>

#include <QPaintEvent>
#include <QPainter>
#include <algorithm>

#include "chart/profile_redraw.h"

namespace kalmira {
namespace {

constexpr int kLabelGap = 2;          // pixels between a label and what is beside it
constexpr int kSmallestLabel = 7;     // pixels high; smaller ones cannot be read
constexpr double kLabelUnits = 10.0;  // high, where there is room
constexpr int kWidestPen = 4;         // pixels

// The widget's font of `pixels` height, made smaller until `text` fits.
QFont fittingFont(QFont font, int pixels, const QString& text, int width) {
  font.setPixelSize(std::max(kSmallestLabel, pixels));
  while (font.pixelSize() > kSmallestLabel && QFontMetrics(font).horizontalAdvance(text) > width) {
    font.setPixelSize(font.pixelSize() - 1);
  }
  return font;
}

}  // namespace

QImage imageOf(const ChartPicture& picture) {
  return {reinterpret_cast<const uchar*>(picture.pixels()), picture.width(), picture.height(),
          static_cast<qsizetype>(picture.rowBytes()), QImage::Format_RGB32};
}

std::string limitText(Kind kind, float limit) {
  auto text = instrumentOf(kind).firstAxisIsThickness ? fmt::format("{:.1f}", limit) : fmt::format("{:.0f}", limit);
  return text == "-0" ? "0" : text;
}

CurveWnd::CurveWnd(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::NoFocus);
  setAccessibleName(QStringLiteral("Profile"));
  rebuild();
}

CurveWnd::~CurveWnd() = default;

void CurveWnd::setSession(Session* session) {
  session_ = session;
  traces_ =
      session != nullptr ? std::make_unique<TraceState>(TraceState{.traceStarted = session->traceStarted}) : nullptr;
  redraw();
}

void CurveWnd::setLayoutOf(bool wideLayout, double scale) {
  wide_layout_ = wideLayout;
  scale_ = scale;
  redraw();
}

void CurveWnd::setTheme(const Theme& theme) {
  theme_ = &theme;
  redraw();
}

void CurveWnd::rebuild() {
  static const Settings kNoSettings;
  const bool any = session_ != nullptr;
  setup_ = profileSetupOf(any ? session_->instrument.kind : Kind::orla, any && session_->iceOption,
                          any ? session_->settings : kNoSettings, wide_layout_, scale_, width(), height());
  picture_ = std::make_unique<ChartPicture>(chartColoursOf(*theme_), setup_.width, setup_.height);
  if (any) {
    RedrawProfileFromFile(*session_, setup_, *picture_, *traces_);
  } else {
    DrawProfileAxes(*picture_, setup_);
  }
}

void CurveWnd::redraw() {
  rebuild();
  update();
}

void CurveWnd::clearChart() {
  picture_->clear();
  DrawProfileAxes(*picture_, setup_);
  update();
}

void CurveWnd::addPoint(const ProfilePoint& point) {
  if (session_ == nullptr) return;
  DrawProfilePoint(*picture_, setup_, *traces_, point);
  const int x = setup_.pointColumn;
  const int left = point.newStation ? 0 : x - 2 - kWidestPen;
  update(QRect(QPoint(left, 0), QPoint(x + 1, setup_.height - 1)));
}

QImage CurveWnd::picture() const { return imageOf(*picture_).copy(); }

void CurveWnd::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  redraw();
}

void CurveWnd::paintEvent(QPaintEvent* event) {
  if (session_ != nullptr && session_->linkLost) {
    session_->linkLost = false;
    redraw();
  }
  QPainter painter(this);
  const QRect dirty = event->rect().intersected(QRect(0, 0, picture_->width(), picture_->height()));
  painter.drawImage(dirty, imageOf(*picture_), dirty);
  if (event->rect().right() > setup_.pointColumn + 1) drawLabels(painter);
}

// Right of the newest point: nothing is drawn there, so that neither covers the other.
void CurveWnd::drawLabels(QPainter& painter) const {
  const QString top = qtText(limitText(setup_.kind, setup_.axisMaximum));
  const QString bottom = qtText(limitText(setup_.kind, setup_.axisMinimum));
  const int room = width() - setup_.pointColumn - kWidestPen - 2 * kLabelGap;
  const QString& longer = top.size() >= bottom.size() ? top : bottom;
  const int pixels = std::max(QFontInfo(font()).pixelSize(), static_cast<int>(kLabelUnits * scale_));
  painter.setFont(fittingFont(font(), pixels, longer, room));
  painter.setPen(QColor(theme_->chartText));
  const QRect area = rect().adjusted(kLabelGap, 0, -kLabelGap, 0);
  painter.drawText(area, Qt::AlignRight | Qt::AlignTop | Qt::TextSingleLine, top);
  painter.drawText(area, Qt::AlignRight | Qt::AlignBottom | Qt::TextSingleLine, bottom);
}

}  // namespace kalmira
