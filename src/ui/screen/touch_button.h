#pragma once

#include <QPixmap>
#include <QPushButton>
#include <memory>
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

// The tap before, for buttons that come in each other's place.
struct TapMemory {
  quint64 time = 0;              // of the event, ms; 0: none yet
  const void* button = nullptr;  // that it met, as long as it stands there
};

// A push button for fingers: high contrast, its text wrapped over as many lines as are needed and made smaller before
// anything would be cut, a thick frame and a pointer when it is the one that Enter presses (isDefault). A letter behind
// "&" is underlined. Takes no keyboard focus of its own.
class TouchButton final : public QPushButton {
 public:
  TouchButton(const QString& text, const Theme& theme, QWidget* parent = nullptr);

  void setTheme(const Theme& theme);
  // For a button that moves something on: every tap counts, however quick, and held down it presses itself again.
  void setRepeats();
  // Buttons that replace each other remember the taps together.
  void shareTaps(std::shared_ptr<TapMemory> taps) { taps_ = std::move(taps); }
  // The text in one line, and touch height.
  QSize sizeHint() const override;
  // A square of touch height: the text is fitted into whatever the button gets.
  QSize minimumSizeHint() const override;
  // Where the text may stand.
  QRect textRoom() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  // The second tap of a double tap is none, unless the button repeats: it may meet what came in place of what was
  // tapped first.
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  // All that its picture depends on, but for the theme.
  struct Look {
    QSize size;
    QString text;
    QFont font;
    bool isDefault = false;
    bool enabled = false;
    bool down = false;
    bool operator==(const Look&) const = default;
  };
  int frameWidth() const;
  void paint(QPainter& painter) const;
  void paintFrame(QPainter& painter) const;
  void paintPointer(QPainter& painter) const;

  const Theme* theme_;
  Look look_;        // when it was painted last
  QPixmap picture_;  // of that look, once it has been painted twice
  std::shared_ptr<TapMemory> taps_ = std::make_shared<TapMemory>();
};

// Gives all of them one size of text: the largest, up to `pixels`, in which each text fits its button.
void fitTogether(std::span<TouchButton* const> buttons, int pixels);

}  // namespace kalmira
