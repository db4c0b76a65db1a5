#pragma once

#include <QPushButton>
#include <span>

#include "ui/screen/theme.h"

class QScreen;

namespace kalmira {

// How high a button must be to be hit with a gloved finger, 9 mm, in pixels of the widget's coordinates. A screen that
// tells no sensible size is taken for one of 96 dots an inch.
int touchHeight(const QScreen* screen);
int touchHeightAt(double dotsPerInch);

// The font, as large as `wanted` or smaller, in which `text` (with "&" before a letter to underline), broken between
// words, fits in `room`.
QFont fittedFont(const QString& text, const QFont& wanted, QSize room);

// A push button for fingers: high contrast, its text wrapped over as many lines as are needed and made smaller before
// anything would be cut, a thick frame and a pointer when it is the one that Enter presses (isDefault). A letter behind
// "&" is underlined. Takes no keyboard focus of its own.
class TouchButton final : public QPushButton {
 public:
  TouchButton(const QString& text, const Theme& theme, QWidget* parent = nullptr);

  void setTheme(const Theme& theme);
  // The text in one line, and touch height.
  QSize sizeHint() const override;
  // A square of touch height: the text is fitted into whatever the button gets.
  QSize minimumSizeHint() const override;
  // Where the text may stand.
  QRect textRoom() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  // The second tap of a double tap is none: it may meet a button that came in place of the one first tapped.
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  int frameWidth() const;
  void paintFrame(QPainter& painter) const;
  void paintPointer(QPainter& painter) const;

  const Theme* theme_;
};

// Gives all of them one size of text: the largest, up to `pixels`, in which each text fits its button.
void fitTogether(std::span<TouchButton* const> buttons, int pixels);

}  // namespace kalmira
