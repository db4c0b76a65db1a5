#include "ui/session/saving_line.h"

#include <QPainter>
#include <algorithm>
#include <tuple>
#include <utility>

namespace kalmira {

SavingLine::SavingLine(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::NoFocus);
}

void SavingLine::setTheme(const Theme& theme) {
  theme_ = &theme;
  update();
}

void SavingLine::setSigns(SavingSigns signs) {
  if (signs_ == signs) return;
  signs_ = std::move(signs);
  setAccessibleName(qtText(signs_.text()));
  update();
}

void SavingLine::setSmall(bool small) {
  small_ = small;
  update();
}

void SavingLine::paintEvent(QPaintEvent*) {
  constexpr double kTextHeight = 0.9;  // of the line
  constexpr int kSmallestFont = 8;     // pixels; below it is drawn narrower
  QPainter painter(this);
  auto ground = theme_->background;
  auto colour = theme_->text;
  if (signs_.worst() == Urgency::warning) std::tie(ground, colour) = std::pair(theme_->stale, theme_->staleText);
  if (signs_.worst() == Urgency::alarm) std::tie(ground, colour) = std::pair(theme_->warning, theme_->warningText);
  painter.fillRect(rect(), QColor(ground));
  painter.setPen(QColor(colour));
  const auto words = qtText(text());
  const int margin = height() / 4;
  const int room = width() - 2 * margin;
  // Figures are alike in width: what a number counts changes nothing here.
  const FittedTo fitted{.letters = words.size(), .size = size(), .font = this->font()};
  if (std::exchange(fitted_to_, fitted) != fitted) {
    letters_ = this->font();
    letters_.setPixelSize(std::max(kSmallestFont, static_cast<int>(kTextHeight * height())));
    while (letters_.pixelSize() > kSmallestFont && QFontMetrics(letters_).horizontalAdvance(words) > room) {
      letters_.setPixelSize(letters_.pixelSize() - 1);
    }
  }
  painter.setFont(letters_);
  const QFontMetrics metrics(letters_);
  const double narrower = std::min(1.0, static_cast<double>(room) / std::max(1, metrics.horizontalAdvance(words)));
  painter.translate(margin, (height() + metrics.capHeight()) / 2.0);
  painter.scale(narrower, 1.0);
  painter.drawText(QPointF(0, 0), words);
}

}  // namespace kalmira
