#pragma once

#include <QWidget>
#include <functional>
#include <string_view>
#include <vector>

#include "ui/screen/theme.h"

namespace kalmira {

class TouchButton;

// One row of buttons over the whole width, of which one is marked as the one that Enter presses. Buttons take
// no keyboard focus: keys belong to the window.
class ButtonRowView final : public QWidget {
 public:
  ButtonRowView(const Theme& theme, std::function<void(int index)> pressed, QWidget* parent);

  void setTexts(const std::vector<std::string_view>& texts);
  // The button that Enter presses; -1: none.
  void setFocusIndex(int index);
  void setTheme(const Theme& theme);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void placeButtons();

  const Theme* theme_;
  std::function<void(int)> pressed_;
  std::vector<TouchButton*> buttons_;
};

}  // namespace kalmira
