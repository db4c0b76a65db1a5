#include "ui/session/panel_view.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <map>
#include <memory>
#include <utility>

namespace kalmira {
namespace {

std::size_t indexOf(PanelField field) { return static_cast<std::size_t>(field); }

QRect rectOf(const PanelCell& cell) { return {cell.left, cell.top, cell.width, cell.height}; }

std::string_view withoutTrailingBlanks(std::string_view text) { return text.substr(0, text.find_last_not_of(' ') + 1); }

struct StateColours {
  QColor band;
  QColor text;
};

StateColours coloursOfState(const Theme& theme, int loggingState) {
  if (loggingState == 0) return {QColor(theme.monitor), QColor(theme.monitorText)};
  if (loggingState < 0) return {QColor(theme.standBy), QColor(theme.standByText)};
  return {QColor(theme.logging), QColor(theme.loggingText)};
}

// The signs of tape recorders and cameras: a ring while nothing is kept, two bars while paused, a disc while recording.
void paintStateShape(QPainter& painter, const QRectF& room, int loggingState, const QColor& colour) {
  const double stroke = room.width() / 5;
  if (loggingState < 0) {
    const double bar = room.width() / 3;
    painter.fillRect(QRectF(room.left(), room.top(), bar, room.height()), colour);
    painter.fillRect(QRectF(room.right() - bar, room.top(), bar, room.height()), colour);
    return;
  }
  painter.setPen(QPen(colour, stroke));
  painter.setBrush(loggingState > 0 ? QBrush(colour) : QBrush(Qt::NoBrush));
  painter.drawEllipse(room.adjusted(stroke / 2, stroke / 2, -stroke / 2, -stroke / 2));
}

// Where letters stand in a row: their capitals in its middle, as far as the tails of "y" and "p" have room.
double baselineIn(const QRectF& room, const QFontMetricsF& metrics) {
  const double middle = (room.height() + metrics.capHeight()) / 2;
  const double lowest = std::max(room.height() - metrics.descent(), metrics.capHeight());
  return room.top() + std::min(middle, lowest);
}

}  // namespace

QFont fontOfPanel(const QFont& base, PanelFont font, double pixelSize) {
  QFont made = base;
  made.setPixelSize(std::max(1, static_cast<int>(pixelSize)));
  made.setBold(font == PanelFont::state);
  return made;
}

MeasureText measureWith(const QFont& base) {
  using Fonts = std::map<std::pair<PanelFont, int>, QFontMetricsF>;
  return [base, fonts = std::make_shared<Fonts>()](PanelFont font, double pixelSize, std::string_view text) {
    const std::pair key{font, static_cast<int>(pixelSize)};
    auto known = fonts->find(key);
    if (known == fonts->end()) {
      known = fonts->emplace(key, QFontMetricsF(fontOfPanel(base, font, pixelSize))).first;
    }
    return known->second.horizontalAdvance(qtText(text));
  };
}

PanelView::PanelView(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
  setAttribute(Qt::WA_OpaquePaintEvent);
}

int PanelView::arrange(const PanelSpace& space) {
  layout_ = layOutPanel(space, measureWith(font()));
  for (const auto kind : {PanelFont::text, PanelFont::value, PanelFont::state}) {
    fonts_[static_cast<std::size_t>(kind)] = fontOfPanel(font(), kind, layout_.size(kind));
  }
  update();
  return layout_.height;
}

void PanelView::setTheme(const Theme& theme) {
  theme_ = &theme;
  update();
}

void PanelView::showText(PanelField field, std::string_view text) {
  auto& held = texts_[indexOf(field)];
  if (held == text) return;
  held = text;
  const auto* cell = cellOf(field);
  if (cell != nullptr) update(rectOf(*cell));
}

void PanelView::setLoggingState(int loggingState) {
  if (logging_state_ == loggingState) return;
  logging_state_ = loggingState;
  update(0, 0, width(), layout_.stateBandHeight);
}

void PanelView::clearTexts() {
  texts_.fill({});
  update();
}

const std::string& PanelView::text(PanelField field) const { return texts_[indexOf(field)]; }

const PanelCell* PanelView::cellOf(PanelField field) const {
  const auto found = std::find_if(layout_.cells.begin(), layout_.cells.end(),
                                  [field](const PanelCell& cell) { return cell.field == field; });
  return found == layout_.cells.end() ? nullptr : &*found;
}

const QFont& PanelView::fontOf(PanelFont font) const { return fonts_[static_cast<std::size_t>(font)]; }

// Only when it is drawn: a hidden window's texts change as often.
PanelView::Shown PanelView::shownIn(const PanelCell& cell) const {
  auto text = qtText(withoutTrailingBlanks(texts_[indexOf(cell.field)]));
  const double width = QFontMetricsF(fontOf(cell.font)).horizontalAdvance(text);
  return {.text = std::move(text), .width = width};
}

void PanelView::paintBand(QPainter& painter) const {
  const auto colours = coloursOfState(*theme_, logging_state_);
  painter.fillRect(0, 0, width(), layout_.stateBandHeight, colours.band);
  const auto* state = cellOf(PanelField::state);
  if (state == nullptr) return;
  const double side = 0.6 * layout_.stateSize;
  const QRectF room((state->left - side) / 2, (state->height - side) / 2, side, side);
  paintStateShape(painter, room, logging_state_, colours.text);
}

void PanelView::paintText(QPainter& painter, const QRectF& room, const Shown& shown, PanelFont font) const {
  painter.setFont(fontOf(font));
  const double baseline = baselineIn(room, QFontMetricsF(painter.font()));
  if (shown.width <= room.width()) {
    painter.drawText(QPointF(room.left(), baseline), shown.text);
    return;
  }
  painter.save();
  painter.translate(room.left(), baseline);
  painter.scale(room.width() / shown.width, 1.0);
  painter.drawText(QPointF(0, 0), shown.text);
  painter.restore();
}

void PanelView::paintCell(QPainter& painter, const PanelCell& cell) const {
  const auto shown = shownIn(cell);
  QRectF room = rectOf(cell);
  QColor colour(theme_->text);
  if (cell.top < layout_.stateBandHeight) colour = coloursOfState(*theme_, logging_state_).text;
  if (cell.field == PanelField::message) {
    if (shown.text.isEmpty()) return;
    colour = QColor(theme_->warningText);
    painter.fillRect(room, QColor(theme_->warning));
    room.adjust(cell.padding, 0, -cell.padding, 0);
  } else if (cell.field == PanelField::calibration && shown.width < room.width()) {
    room.setLeft((width() - shown.width) / 2);
  }
  if (!cell.label.empty()) {
    painter.setFont(fontOf(PanelFont::text));
    painter.setPen(QColor(theme_->faintText));
    painter.drawText(QPointF(room.left(), baselineIn(room, QFontMetricsF(painter.font()))), qtText(cell.label));
    room.setLeft(room.left() + cell.labelWidth);
  }
  painter.setPen(colour);
  paintText(painter, room, shown, cell.font);
}

void PanelView::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const auto& region = event->region();
  painter.fillRect(event->rect(), QColor(theme_->background));
  if (event->rect().top() < layout_.stateBandHeight) paintBand(painter);
  for (const auto& cell : layout_.cells) {
    if (region.intersects(rectOf(cell))) paintCell(painter, cell);
  }
}

}  // namespace kalmira
