#pragma once

#include <QRect>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "ui/screen/theme.h"

class QWidget;

namespace kalmira {

class TouchButton;
struct TapMemory;

struct Action {
  std::string_view text;          // of the button, with "&" before the letter that is underlined
  std::string_view letters = {};  // capitals; the keys that press it wherever the highlight stands
  std::string_view toolTip = {};  // for who has a mouse, and for screen readers
  int identifier = 0;             // the button's object name; 0: none
  bool repeats = false;           // every tap counts, and it goes on while held
};

// The buttons of a window and the highlight: the one of them that Enter presses. They take no keyboard focus, keys
// belong to the window; where they stand is the window's to say, too. The highlight stands on no button that is greyed
// as long as there is another.
class ActionBar {
 public:
  // `pressed` is told the position of a button that was tapped. `window` outlives the bar.
  ActionBar(QWidget* window, const Theme& theme, std::function<void(int index)> pressed);
  ActionBar(const ActionBar&) = delete;
  ActionBar& operator=(const ActionBar&) = delete;

  // In place of those that were there, with the highlight on the first.
  void setActions(std::span<const Action> actions);
  std::span<TouchButton* const> buttons() const { return buttons_; }
  void setUsable(int index, bool usable);
  void setTheme(const Theme& theme);
  // All texts in one size, the largest up to `textPixels` in which they fit.
  void place(std::span<const QRect> places, int textPixels);
  // In equal shares of `row`.
  void placeInRow(const QRect& row, int textPixels);

  int highlight() const { return highlight_; }
  void setHighlight(int index);  // -1: none
  // To the next button that can be pressed, before it with a `step` of -1, round past the ends.
  void moveHighlight(int step);
  // By the arrow keys and Tab, as key codes; false for other keys.
  bool moveByKey(int keyCode);
  // The button that Enter or one of the letters, of either case, presses, if it can be pressed.
  std::optional<int> pressedBy(int keyCode) const;

 private:
  QWidget* window_;
  const Theme* theme_;
  std::function<void(int)> pressed_;
  std::vector<TouchButton*> buttons_;
  std::vector<std::string_view> letters_;
  std::shared_ptr<TapMemory> taps_;
  int highlight_ = 0;
};

}  // namespace kalmira
