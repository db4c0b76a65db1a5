#pragma once

#include "ui/screen/action_bar.h"
#include "ui/screen/cover_window.h"

class QLabel;
class QListWidget;

namespace kalmira {

// FontWnd: which font families this machine has, in which sizes, and how the logger's texts look in them; for finding
// out why a screen is hard to read.
class FontWnd final : public CoverWindow {
 public:
  FontWnd(std::function<void()> onLeft, const Theme& theme, QWidget* parent);

  void open();
  void leave() { uncover(); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void makeSamples();
  void showFamily();
  void press(int index);
  void changeSize(int step);

  QListWidget* families_;
  QLabel* sizes_;
  QLabel* sample_;
  ActionBar buttons_;
  int size_index_;
};

}  // namespace kalmira
