#include "ui/session/curve_window.h"

#include <fmt/format.h>

#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "chart/profile_redraw.h"

namespace kalmira {
namespace {

constexpr int kLabelGap = 2;          // pixels between a label and what is beside it
constexpr int kSmallestLabel = 7;     // pixels high; smaller ones cannot be read
constexpr double kLabelUnits = 10.0;  // high, where there is room
constexpr int kWidestPen = 4;         // pixels

constexpr double kLegendUnits = 8.5;
constexpr double kArrowUnits = 4.5;
constexpr int kSmallestArrow = 5;  // pixels
constexpr int kArrowSpacing = 28;  // columns
constexpr std::array kAuxiliaryLabels{"T", "t"};

// A painter as what a chart is drawn on, for what is laid over the picture.
class PainterCanvas final : public ChartCanvas {
 public:
  PainterCanvas(QPainter& painter, const ChartColours& colours) : painter_(painter), colours_(colours) {}
  void clear() override {}
  void scrollLeft(int) override {}
  void eraseColumns(int, int) override {}
  void gridPiece(int, int, int, int) override {}
  void line(int x1, int y1, int x2, int y2, int colour, int width) override {
    painter_.fillRect(QRect(QPoint(x1, y1), QPoint(x2, y2 + width - 1)), QColor(traceColourOn(colours_, colour)));
  }
  void point(int x, int y, int colour, int width) override { line(x, y, x, y, colour, width); }

 private:
  QPainter& painter_;
  ChartColours colours_;
};

// A line of the legend: a trace, or the unit of those that follow.
struct LegendLine {
  std::string_view text;
  std::optional<std::size_t> trace;
};

std::vector<LegendLine> legendOf(const ProfileSetup& setup, const std::bitset<kProfilePoints>& seen) {
  std::vector<LegendLine> lines;
  std::string_view unit;
  for (const int axis : {kConductivityAxis, kInphaseAxis, kIceAxis}) {
    for (const auto& channel : instrumentOf(setup.kind).channels) {
      if (channel.axis != axis || !seen[channel.slot]) continue;
      if (std::exchange(unit, channel.unit) != channel.unit) lines.push_back({channel.unit, std::nullopt});
      lines.push_back({channel.label, channel.slot});
    }
  }
  for (std::size_t i = 0; i < kAuxiliaryLabels.size(); ++i) {
    if (seen[kSlots + i]) lines.push_back({kAuxiliaryLabels.at(i), kSlots + i});
  }
  return lines;
}

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
  seen_.reset();
  if (any) {
    for (const auto& column : traces_->shown) seen_ |= column.inside | column.above | column.below;
  }
  note_ = note();
}

void CurveWnd::redraw() {
  rebuild();
  update();
}

std::optional<Settings> CurveWnd::fitted() const {
  if (session_ == nullptr) return std::nullopt;
  return fittedScales(setup_.kind, session_->settings, traces_->shown);
}

std::string CurveWnd::note() const {
  if (session_ == nullptr) return {};
  const auto& shown = traces_->shown;
  if (shown.empty()) return session_->file.isOpen() ? "No readings in this line yet" : "Nothing is recorded yet";
  std::bitset<kProfilePoints> inside, outside;
  for (const auto& column : shown) {
    inside |= column.inside;
    outside |= column.above | column.below;
  }
  if (inside.any()) return {};
  return outside.any() ? "Off the scale: Fit" : "No trace is shown: Display Options";
}

void CurveWnd::clearChart() {
  picture_->clear();
  DrawProfileAxes(*picture_, setup_);
  if (traces_ != nullptr) traces_->shown.clear();
  seen_.reset();
  note_ = note();
  update();
}

void CurveWnd::addPoint(const ProfilePoint& point) {
  if (session_ == nullptr) return;
  DrawProfilePoint(*picture_, setup_, *traces_, point);
  const auto& newest = traces_->shown.back();
  const auto seen = seen_ | newest.inside | newest.above | newest.below;
  const auto noteNow = note_.empty() ? note_ : note();
  const bool legendChanges = std::exchange(seen_, seen) != seen;
  if (std::exchange(note_, noteNow) != noteNow || legendChanges) update();
  const int x = setup_.pointColumn;
  const int left = point.newStation ? 0 : x - 2 - kWidestPen;
  updates_.add(QRect(QPoint(left, 0), QPoint(x + 1, setup_.height - 1)));
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
  drawArrows(painter);
  if (event->rect().right() > setup_.pointColumn + 1) drawLabels(painter);
  if (note_.empty()) return;
  painter.setPen(QColor(theme_->chartText));
  const QRect room(0, 0, setup_.pointColumn, height());
  painter.setFont(fittingFont(font(), static_cast<int>(kLabelUnits * 1.3 * scale_), qtText(note_), room.width()));
  painter.drawText(room, Qt::AlignCenter | Qt::TextSingleLine, qtText(note_));
}

void CurveWnd::drawArrows(QPainter& painter) const {
  if (traces_ == nullptr) return;
  PainterCanvas canvas(painter, chartColoursOf(*theme_));
  const int size = std::max(kSmallestArrow, static_cast<int>(kArrowUnits * scale_));
  for (const auto& arrow : edgeArrows(traces_->shown, kArrowSpacing)) {
    // Left of its column, so that the newest one's keeps to the part that is drawn with every reading.
    drawEdgeArrow(canvas, setup_, arrow, setup_.pointColumn - 2 * arrow.columns - size - arrow.rank * 2 * size, size);
  }
}

// Right of the newest point: nothing is drawn there, so that neither covers the other.
QRect CurveWnd::labelRoom() const {
  const int left = setup_.pointColumn + kWidestPen + kLabelGap;
  return {left, 0, std::max(1, width() - left - kLabelGap), height()};
}

void CurveWnd::drawLabels(QPainter& painter) const {
  const QString top = qtText(limitText(setup_.kind, setup_.axisMaximum));
  const QString bottom = qtText(limitText(setup_.kind, setup_.axisMinimum));
  const QRect room = labelRoom();
  const QString& longer = top.size() >= bottom.size() ? top : bottom;
  const int pixels = std::max(QFontInfo(font()).pixelSize(), static_cast<int>(kLabelUnits * scale_));
  painter.setFont(fittingFont(font(), pixels, longer, room.width()));
  painter.setPen(QColor(theme_->chartText));
  painter.drawText(room, Qt::AlignRight | Qt::AlignTop | Qt::TextSingleLine, top);
  painter.drawText(room, Qt::AlignRight | Qt::AlignBottom | Qt::TextSingleLine, bottom);
  const int line = QFontMetrics(painter.font()).height();
  drawLegend(painter, room.adjusted(0, line, 0, -line));
}

// One trace a line, below the unit that it is in.
void CurveWnd::drawLegend(QPainter& painter, const QRect& room) const {
  const auto lines = legendOf(setup_, seen_);
  if (lines.empty()) return;
  const int count = static_cast<int>(lines.size());
  const auto& longest = *std::max_element(lines.begin(), lines.end(),
                                          [](const auto& a, const auto& b) { return a.text.size() < b.text.size(); });
  const int wanted = std::max(kSmallestLabel + 2, static_cast<int>(kLegendUnits * scale_));
  // A square and a gap beside the text take about one letter's height.
  painter.setFont(fittingFont(font(), std::min(wanted, room.height() / count), qtText(longest.text),
                              room.width() - std::min(wanted, room.height() / count)));
  const QFontMetrics metrics(painter.font());
  const int height = std::min(metrics.height(), std::max(1, room.height() / count));
  const int square = painter.font().pixelSize() * 2 / 3;
  int top = room.top() + (room.height() - count * height) / 2;
  for (const auto& line : lines) {
    const QRect place(room.left(), top, room.width(), height);
    painter.setPen(QColor(line.trace ? theme_->chartText : theme_->faintText));
    painter.drawText(line.trace ? place.adjusted(square + kLabelGap, 0, 0, 0) : place,
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, qtText(line.text));
    if (line.trace) {
      painter.fillRect(QRect(place.left(), top + (height - square) / 2, square, square),
                       QColor(traceColourOn(*theme_, traceColourOf(setup_, *line.trace))));
    }
    top += height;
  }
}

}  // namespace kalmira
