#pragma once

#include <unistd.h>

#include <QApplication>
#include <QEvent>
#include <QTimer>

namespace kalmira::bench {

// Says on the standard output when a window stands painted on the screen, and ends the program.
class EndWhenPainted final : public QObject {
 public:
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() != QEvent::Paint || !object->isWidgetType() || told_) return false;
    told_ = true;
    // By then everything that is due has been painted, not only the first of it.
    QTimer::singleShot(0, [] {
      if (::write(STDOUT_FILENO, "painted\n", 8) != 8) QCoreApplication::exit(1);
      QCoreApplication::exit(0);
    });
    return false;
  }

 private:
  bool told_ = false;
};

}  // namespace kalmira::bench
