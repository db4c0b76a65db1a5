#include "ui/session/panel_view.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

std::size_t indexOf(PanelField field) { return static_cast<std::size_t>(field); }

QRect rectOf(const PanelCell& cell) { return {cell.left, cell.top, cell.width, cell.height}; }

std::string_view withoutTrailingBlanks(std::string_view text) { return text.substr(0, text.find_last_not_of(' ') + 1); }

bool isValue(PanelField field) { return field >= PanelField::value1 && field <= PanelField::marker; }
bool isGpsText(PanelField field) { return field >= PanelField::gpsActivity && field <= PanelField::pdop; }

using StateColours = PanelView::StateColours;

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

PanelView::StateColours PanelView::bandColours() const {
  auto colours = coloursOfState(*theme_, logging_state_);
  if (calibration_.stage != CalibrationSign::Stage::none) {
    colours = {QColor(theme_->calibration), QColor(theme_->calibrationText)};
  }
  if (flash_) std::swap(colours.band, colours.text);
  return colours;
}

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
  if (cell == nullptr) return;
  // In a row that says what is old, one text makes room for another.
  const bool band = !signs_.instrument.empty() && cell->top < layout_.stateBandHeight;
  const bool gps = !signs_.gps.empty() && isGpsText(field);
  updates_.add(band || gps ? QRect(0, cell->top, width(), cell->height) : rectOf(*cell));
}

void PanelView::setLoggingState(int loggingState) {
  if (logging_state_ == loggingState) return;
  logging_state_ = loggingState;
  update(0, 0, width(), layout_.stateBandHeight);
}

void PanelView::setSigns(const LinkSigns& signs) {
  if (signs_ == signs) return;
  const bool valuesChange = signs_.instrument.empty() != signs.instrument.empty();
  if (signs_.instrument != signs.instrument) update(0, 0, width(), layout_.stateBandHeight);
  signs_ = signs;
  for (const auto& cell : layout_.cells) {
    if (isGpsText(cell.field)) update(0, cell.top, width(), cell.height);
    if (valuesChange && isValue(cell.field)) update(rectOf(cell));
  }
}

void PanelView::setCalibration(const CalibrationSign& sign) {
  if (calibration_ == sign) return;
  calibration_ = sign;
  update();
}

void PanelView::setFlash(bool flash) {
  flash_ = flash;
  update(0, 0, width(), layout_.stateBandHeight);
}

void PanelView::clearTexts() {
  texts_.fill({});
  signs_ = {};
  calibration_ = {};
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
  const auto colours = bandColours();
  painter.fillRect(0, 0, width(), layout_.stateBandHeight, colours.band);
  const auto* state = cellOf(PanelField::state);
  if (state == nullptr) return;
  const double side = 0.6 * layout_.stateSize;
  const QRectF room((state->left - side) / 2, (state->height - side) / 2, side, side);
  paintStateShape(painter, room, logging_state_, colours.text);
}

bool PanelView::isOld(PanelField field) const {
  return (isValue(field) && !signs_.instrument.empty()) || (isGpsText(field) && !signs_.gps.empty());
}

// A text on a ground of its own, drawn narrower where it has no room.
void PanelView::paintPlate(QPainter& painter, const QRectF& room, const QString& text, const QFont& font) const {
  const double margin = layout_.textSize / 4;
  const QFontMetricsF metrics(font);
  const double needed = metrics.horizontalAdvance(text);
  const double given = std::max(1.0, std::min(needed, room.width() - 2 * margin));
  painter.fillRect(QRectF(room.left(), room.top(), given + 2 * margin, room.height()), QColor(theme_->stale));
  painter.setPen(QColor(theme_->staleText));
  painter.setFont(font);
  painter.save();
  painter.translate(room.left() + margin, baselineIn(room, metrics));
  painter.scale(given / std::max(needed, 1.0), 1.0);
  painter.drawText(QPointF(0, 0), text);
  painter.restore();
}

// Stripes from edge to edge; the word stays where it stands, and what else the band shows but this makes room.
void PanelView::paintOldBand(QPainter& painter) const {
  const double height = layout_.stateBandHeight;
  painter.fillRect(QRectF(0, 0, width(), height), QColor(theme_->stale));
  painter.setBrush(QColor(theme_->staleText));
  painter.setPen(Qt::NoPen);
  const double stripe = height / 3;
  for (double left = -height; left < width(); left += 2 * stripe) {
    const QPointF corners[]{{left, height}, {left + height, 0}, {left + height + stripe, 0}, {left + stripe, height}};
    painter.drawConvexPolygon(corners, 4);
  }
  const auto* state = cellOf(PanelField::state);
  const auto* battery = cellOf(PanelField::battery);
  if (state == nullptr || battery == nullptr) return;
  const double gap = layout_.textSize / 3;
  const auto word = shownIn(*state);
  const double margin = layout_.textSize / 4;
  paintPlate(painter, QRectF(state->left - margin, 0, word.width + 2 * margin, height), word.text, fontOf(state->font));
  double left = state->left + word.width + margin + gap;
  double right = width();
  if (const auto shown = shownIn(*battery); !shown.text.isEmpty()) {
    paintPlate(painter, QRectF(battery->left - margin, 0, shown.width + 2 * margin, height), shown.text,
               fontOf(battery->font));
    right = battery->left - margin - gap;
  }
  const auto* message = cellOf(PanelField::message);
  if (message != nullptr && message->top == 0 && !text(PanelField::message).empty()) {
    const auto shown = shownIn(*message);
    const double needed = std::min(shown.width + 2 * margin, (right - left) / 2);
    const QRectF room(right - needed, 0, needed, height);
    painter.fillRect(room, QColor(theme_->warning));
    painter.setPen(QColor(theme_->warningText));
    paintText(painter, room.adjusted(margin, 0, -margin, 0), shown, message->font);
    right -= needed + gap;
  }
  paintNoData(painter, QRectF(left, 0, right - left, height));
}

// "NO DATA 4 s", in two lines where one would be small.
void PanelView::paintNoData(QPainter& painter, const QRectF& room) const {
  constexpr double kLeast = 0.6;     // of the state word's size, for one line
  constexpr double kHalfLine = 0.5;  // of the band's height: letters are capitals and figures, and leave a gap
  const auto words = qtText(signs_.instrument);
  const double margin = layout_.textSize / 4;
  QFont font = fontOf(PanelFont::state);
  const double needed = QFontMetricsF(font).horizontalAdvance(words);
  const double fitting = layout_.stateSize * std::min(1.0, (room.width() - 2 * margin) / needed);
  if (fitting >= kLeast * layout_.stateSize) {
    font.setPixelSize(std::max(1, static_cast<int>(fitting)));
    return paintPlate(painter, room, words, font);
  }
  font.setPixelSize(std::max(1, static_cast<int>(kHalfLine * room.height())));
  const double half = room.height() / 2;
  paintPlate(painter, QRectF(room.left(), 0, room.width(), half), words.section(' ', 0, 1), font);
  paintPlate(painter, QRectF(room.left(), half, room.width(), half), words.section(' ', 2), font);
}

QFont PanelView::gpsSignFont() const {
  QFont font = fontOf(PanelFont::text);
  font.setBold(true);
  return font;
}

// From where the fix stands to the next text of the row. What stands there without a text makes room with its label,
// and a PDOP where there is too little: of bad sentences it is not known.
QRect PanelView::gpsSignRect() const {
  const auto* fix = cellOf(PanelField::fix);
  if (fix == nullptr) return {};
  const double needed = QFontMetricsF(gpsSignFont()).horizontalAdvance(qtText(signs_.gps)) + layout_.textSize / 2;
  int right = fix->left + fix->width;
  for (const auto field : {PanelField::pdop, PanelField::satellites, PanelField::gpsCount}) {
    const auto* cell = cellOf(field);
    if (cell == nullptr) continue;
    const bool enough = cell->left - fix->left >= needed;
    right = cell->left;
    if (!text(field).empty() && (enough || field != PanelField::pdop)) break;
    right = cell->left + cell->width;
  }
  return {fix->left, fix->top, right - fix->left, fix->height};
}

void PanelView::paintGpsSign(QPainter& painter) const {
  paintPlate(painter, gpsSignRect(), qtText(signs_.gps), gpsSignFont());
}

// Below the band, down to the values while they are measured, else to the calibration's own text.
QRect PanelView::calibrationRect() const {
  const bool measuring = calibration_.stage == CalibrationSign::Stage::measuring;
  const auto* end = cellOf(measuring ? PanelField::value1 : PanelField::calibration);
  const int top = layout_.stateBandHeight;
  return {0, top, width(), (end == nullptr ? layout_.height : end->top) - top};
}

// What to do, as large as there is room for it, and the seconds that are left beside it.
void PanelView::paintCalibration(QPainter& painter) const {
  const QRect room = calibrationRect();
  const bool failed = calibration_.stage == CalibrationSign::Stage::failed;
  painter.fillRect(room, QColor(failed ? theme_->warning : theme_->calibration));
  painter.setPen(QColor(failed ? theme_->warningText : theme_->calibrationText));
  const int margin = static_cast<int>(layout_.textSize / 2);
  const auto seconds = qtText(calibration_.seconds);
  QFont font = fontOfPanel(this->font(), PanelFont::state, room.height() * 0.7);
  const auto widthOf = [&font](const QString& text) { return QFontMetrics(font).horizontalAdvance(text); };
  while (font.pixelSize() > layout_.textSize && widthOf(seconds) > room.width() / 4) {
    font.setPixelSize(font.pixelSize() - 1);
  }
  painter.setFont(font);
  const QRect right(room.right() - widthOf(seconds) - margin, room.top(), widthOf(seconds), room.height());
  painter.drawText(right, Qt::AlignCenter | Qt::TextSingleLine, seconds);
  const QRect left(margin, room.top(), right.left() - 2 * margin, room.height());
  font.setPixelSize(std::max(1, static_cast<int>(room.height() * 0.7)));
  painter.setFont(fittedFont(qtText(calibration_.doing), font, left.size()));
  painter.drawText(left, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, qtText(calibration_.doing));
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
  if (!signs_.gps.empty() && isGpsText(cell.field) && gpsSignRect().intersects(rectOf(cell))) return;
  const auto shown = shownIn(cell);
  QRectF room = rectOf(cell);
  QColor colour(isOld(cell.field) ? theme_->oldText : theme_->text);
  if (cell.top < layout_.stateBandHeight) colour = bandColours().text;
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
  }
  room.setLeft(room.left() + cell.labelWidth);
  painter.setPen(colour);
  paintText(painter, room, shown, cell.font);
}

void PanelView::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const auto& region = event->region();
  painter.fillRect(event->rect(), QColor(theme_->background));
  const bool old = !signs_.instrument.empty() && !flash_;
  if (event->rect().top() < layout_.stateBandHeight) old ? paintOldBand(painter) : paintBand(painter);
  for (const auto& cell : layout_.cells) {
    const bool drawn = old && cell.top < layout_.stateBandHeight;
    if (!drawn && region.intersects(rectOf(cell))) paintCell(painter, cell);
  }
  if (calibration_.stage != CalibrationSign::Stage::none) return paintCalibration(painter);
  if (!signs_.gps.empty() && region.intersects(gpsSignRect())) paintGpsSign(painter);
}

}  // namespace kalmira
