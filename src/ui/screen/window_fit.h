#pragma once

#include <QMargins>
#include <QObject>
#include <QRect>
#include <QTimer>
#include <functional>

class QWidget;

// Windows that stay on the screen with the frame that the desktop draws round them. For the user-interface thread.
namespace kalmira {

// The frame of a window that is shown; of one that is not yet, that of the window it belongs to.
QMargins frameOf(const QWidget& window);
// Where the inside of a window may be: what the desktop leaves of its screen, less its frame.
QRect roomFor(const QWidget& window);

// Brings the window, frame included, back onto its screen, and makes it smaller where that must be. Does nothing to one
// that covers the whole screen.
void keepOnScreen(QWidget& window);

// How thick a frame is shows some moments after its window does: looks then, and calls `refit` when the window with it
// goes off the screen. Belongs to the window.
class FrameWatch final : public QObject {
 public:
  FrameWatch(QWidget& window, std::function<void()> refit);
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void look();

  QWidget& window_;
  std::function<void()> refit_;
  QTimer timer_;
  int looks_ = 0;
};

}  // namespace kalmira
