#pragma once

#include <QRegion>
#include <QTimer>
#include <QWidget>

namespace kalmira {

// Has what changes on a widget painted five times a second at most, the first change at once: figures that change more
// often cannot be read, and painting is most of what a reading costs a window. To be used on the windows' thread, and
// to go before its widget.
class CalmUpdates {
 public:
  explicit CalmUpdates(QWidget& widget);

  // That part of the widget is to be painted anew.
  void add(const QRect& part);

 private:
  void paintWaiting();

  QWidget& widget_;
  QRegion waiting_;
  QTimer rest_;
};

}  // namespace kalmira
