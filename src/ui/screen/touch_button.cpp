#include "ui/screen/touch_button.h"

#include <xcb/xcb.h>

#include <QFontInfo>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QStyleHints>
#include <algorithm>
#include <cmath>

namespace kalmira {
namespace {

constexpr double kTouchMillimetres = 9.0;
constexpr double kMillimetresPerInch = 25.4;
constexpr double kUsualDotsPerInch = 96.0;
constexpr double kFewestDotsPerInch = 50.0;
constexpr double kMostDotsPerInch = 800.0;
constexpr double kRounding = 1e-6;  // of the division, which must not make a whole pixel
constexpr int kSmallestFont = 5;    // pixels
constexpr int kRepeatDelay_ms = 400;
constexpr int kRepeat_ms = 60;
constexpr int kTextFlags = Qt::AlignCenter | Qt::TextWordWrap | Qt::TextShowMnemonic;

bool fits(const QString& text, const QFont& font, QSize room) {
  const QRect needed = QFontMetrics(font).boundingRect(QRect(QPoint(0, 0), room), kTextFlags, text);
  return needed.width() <= room.width() && needed.height() <= room.height();
}

// The part of the room in which the lines of the text are about equally long.
QRect balanced(const QString& text, const QFont& font, const QRect& room) {
  const int lines = QFontMetrics(font).boundingRect(room, kTextFlags, text).height();
  const int step = std::max(1, room.width() / 40);
  QRect narrow = room;
  while (narrow.width() > 2 * step && fits(text, font, {narrow.width() - 2 * step, lines})) {
    narrow.adjust(step, 0, -step, 0);
  }
  return narrow;
}

// What the X server itself says of its screen; 0 where there is none.
double serverDotsPerInch() {
#if QT_CONFIG(xcb)
  const auto* application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (application == nullptr || application->connection() == nullptr) return 0.0;
  const auto screens = xcb_setup_roots_iterator(xcb_get_setup(application->connection()));
  if (screens.rem == 0 || screens.data->height_in_millimeters == 0) return 0.0;
  return screens.data->height_in_pixels * kMillimetresPerInch / screens.data->height_in_millimeters;
#else
  return 0.0;
#endif
}

}  // namespace

int touchHeightAt(double dotsPerInch) {
  const bool sensible = dotsPerInch >= kFewestDotsPerInch && dotsPerInch <= kMostDotsPerInch;
  const double dots = sensible ? dotsPerInch : kUsualDotsPerInch;
  return static_cast<int>(std::ceil(kTouchMillimetres * dots / kMillimetresPerInch - kRounding));
}

int touchHeight(const QScreen* screen) {
  if (screen == nullptr) return touchHeightAt(0.0);
  // A screen is described in several places, and often in one of them only. Who says more has looked more closely; and
  // a finger would rather have too much. Qt counts these dots in the coordinates of widgets, whatever the screen's own
  // pixels are.
  const auto sensible = [](double dots) { return dots <= kMostDotsPerInch ? dots : 0.0; };
  return touchHeightAt(std::max({sensible(screen->physicalDotsPerInchY()), sensible(screen->logicalDotsPerInchY()),
                                 sensible(serverDotsPerInch() / screen->devicePixelRatio())}));
}

// In growing steps down and in halves between: trying a size has the system look for a font of that size.
QFont fittedFont(const QString& text, const QFont& wanted, QSize room) {
  QFont font = wanted;
  const auto fitsAt = [&](int size) {
    font.setPixelSize(size);
    return fits(text, font, room);
  };
  int tooLarge = std::max(QFontInfo(wanted).pixelSize(), kSmallestFont);
  if (tooLarge == kSmallestFont || fitsAt(tooLarge)) return font.setPixelSize(tooLarge), font;
  int fitting = kSmallestFont;
  for (int step = 1, size = tooLarge - 1; size > kSmallestFont; size -= step *= 2) {
    if (fitsAt(size)) {
      fitting = size;
      break;
    }
    tooLarge = size;
  }
  while (tooLarge - fitting > 1) {
    const int size = (fitting + tooLarge) / 2;
    (fitsAt(size) ? fitting : tooLarge) = size;
  }
  font.setPixelSize(fitting);
  return font;
}

TouchButton::TouchButton(const QString& text, const Theme& theme, QWidget* parent)
    : QPushButton(text, parent), theme_(&theme) {
  setFocusPolicy(Qt::NoFocus);
  setAutoDefault(false);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void TouchButton::setTheme(const Theme& theme) {
  theme_ = &theme;
  picture_ = {};
  update();
}

QSize TouchButton::sizeHint() const {
  const QSize line = QFontMetrics(font()).size(Qt::TextShowMnemonic, text());
  const int frame = 2 * (frameWidth() + frameWidth() / 2 + 1);
  return {line.width() + frame, std::max(line.height() + frame, touchHeight(screen()))};
}

QSize TouchButton::minimumSizeHint() const {
  const int side = touchHeight(screen());
  return {side, side};
}

// In step with the font, which is in step with the window.
int TouchButton::frameWidth() const { return std::max(2, QFontInfo(font()).pixelSize() / 5); }

QRect TouchButton::textRoom() const {
  const int frame = frameWidth() + frameWidth() / 2 + 1;
  const int pointer = isDefault() ? frameWidth() : 0;
  return rect().adjusted(frame, frame + pointer, -frame, -frame);
}

void TouchButton::paintFrame(QPainter& painter) const {
  const int width = isDefault() ? frameWidth() : std::max(1, frameWidth() / 2);
  QPen edge(QColor(isDefault() ? theme_->focus : theme_->buttonEdge), width);
  if (!isEnabled()) edge.setStyle(Qt::DotLine);
  edge.setJoinStyle(Qt::MiterJoin);
  painter.setPen(edge);
  const bool flat = !isEnabled();
  painter.setBrush(QColor(flat ? theme_->background : isDown() ? theme_->pressedButton : theme_->button));
  const double inset = width / 2.0;
  const double radius = 1.5 * frameWidth();
  painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
}

// A wedge from the upper edge down to the text: the button that Enter presses is known without its colour.
void TouchButton::paintPointer(QPainter& painter) const {
  const double middle = width() / 2.0;
  const double top = frameWidth() - 1.0;
  const double depth = 1.6 * frameWidth();
  QPainterPath wedge;
  wedge.moveTo(middle - depth, top);
  wedge.lineTo(middle + depth, top);
  wedge.lineTo(middle, top + depth);
  painter.fillPath(wedge, QColor(theme_->focus));
}

void TouchButton::setRepeats() {
  setAutoRepeat(true);
  setAutoRepeatDelay(kRepeatDelay_ms);
  setAutoRepeatInterval(kRepeat_ms);
}

// A finger seldom meets the same pixel twice, so that the system often takes two quick taps for two.
void TouchButton::mousePressEvent(QMouseEvent* event) {
  const auto interval = static_cast<quint64>(QGuiApplication::styleHints()->mouseDoubleClickInterval());
  const bool replaced = taps_->button == nullptr;
  const bool quick = taps_->time != 0 && event->timestamp() - taps_->time < interval;
  const bool second = !autoRepeat() && quick && (replaced || taps_->button == this);
  *taps_ = {.time = event->timestamp(), .button = this};
  if (!second) QPushButton::mousePressEvent(event);
}

void TouchButton::mouseDoubleClickEvent(QMouseEvent* event) {
  *taps_ = {.time = event->timestamp(), .button = this};
  if (autoRepeat()) QPushButton::mousePressEvent(event);
}

// One that lies on something that moves is painted again and again: then a picture of it is.
void TouchButton::paintEvent(QPaintEvent* /*event*/) {
  const Look look{.size = size(),
                  .text = text(),
                  .font = font(),
                  .isDefault = isDefault(),
                  .enabled = isEnabled(),
                  .down = isDown()};
  QPainter painter(this);
  if (look != look_) {
    look_ = look;
    picture_ = {};
    return paint(painter);
  }
  if (picture_.devicePixelRatio() != devicePixelRatioF() || picture_.isNull()) {
    picture_ = QPixmap(size() * devicePixelRatioF());
    picture_.setDevicePixelRatio(devicePixelRatioF());
    picture_.fill(Qt::transparent);
    QPainter onPicture(&picture_);
    paint(onPicture);
  }
  painter.drawPixmap(0, 0, picture_);
}

void TouchButton::paint(QPainter& painter) const {
  painter.setRenderHint(QPainter::Antialiasing);
  paintFrame(painter);
  if (isDefault()) paintPointer(painter);
  const QFont font = fittedFont(text(), this->font(), textRoom().size());
  QRect room = balanced(text(), font, textRoom());
  painter.setFont(font);
  painter.setPen(QColor(isEnabled() ? theme_->buttonText : theme_->faintText));
  if (isDown()) room.translate(1, 1);
  painter.drawText(room, kTextFlags, text());
}

void fitTogether(std::span<TouchButton* const> buttons, int pixels) {
  if (buttons.empty()) return;
  QFont font = buttons.front()->font();
  font.setPixelSize(std::max(kSmallestFont, pixels));
  for (const auto* button : buttons) font = fittedFont(button->text(), font, button->textRoom().size());
  for (auto* button : buttons) button->setFont(font);
}

}  // namespace kalmira
