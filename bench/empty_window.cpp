// The least a program with a window takes to start: what the toolkit itself costs.
#include <QWidget>

#include "window_painted.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  kalmira::bench::EndWhenPainted filter;
  application.installEventFilter(&filter);
  QWidget window;
  window.resize(480, 640);
  window.show();
  return QApplication::exec();
}
