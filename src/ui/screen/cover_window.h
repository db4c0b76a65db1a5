#pragma once

#include <QWidget>
#include <functional>

namespace kalmira {

// A window all over its parent while it is shown: it follows its parent's size and has the keyboard, Tab included.
// Hidden until it covers.
class CoverWindow : public QWidget {
 public:
  // `spoken`: what a screen reader calls it, for it has the keyboard. `onLeft`: it is hidden again; what it covered is
  // to be shown and gets the keyboard. May be empty.
  CoverWindow(const char* name, const char* spoken, std::function<void()> onLeft, QWidget* parent);

 protected:
  void cover();
  void uncover();

  bool eventFilter(QObject* watched, QEvent* event) override;
  bool focusNextPrevChild(bool) override { return false; }

 private:
  std::function<void()> on_left_;
};

// Gives a window, and so its dialogs, the font of texts for this many pixels a unit.
void setTextScale(QWidget& window, double scale);

}  // namespace kalmira
