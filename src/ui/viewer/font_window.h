#pragma once

#include <QWidget>
#include <functional>

#include "ui/screen/theme.h"

class QLabel;
class QListWidget;

namespace kalmira {

class TouchButton;

// FontWnd: which font families this machine has, in which sizes, and how the logger's texts look in them; for
// finding out why a screen is hard to read. All over its parent while it is shown.
class FontWnd final : public QWidget {
 public:
  // `onLeft`: it was left, the main menu is to be shown.
  FontWnd(std::function<void()> onLeft, const Theme& theme, QWidget* parent);

  void open();
  void leave();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  bool focusNextPrevChild(bool) override { return false; }

 private:
  void makeSamples();
  void showFamily();
  void changeSize(int step);

  std::function<void()> on_left_;
  QListWidget* families_;
  QLabel* sizes_;
  QLabel* sample_;
  TouchButton* smaller_;
  TouchButton* larger_;
  TouchButton* exit_;
  int size_index_;
};

}  // namespace kalmira
