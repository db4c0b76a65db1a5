#include "ui/screen/action_bar.h"

#include <cctype>
#include <utility>

#include "logging/keys.h"
#include "ui/screen/touch_button.h"

namespace kalmira {

ActionBar::ActionBar(QWidget* window, const Theme& theme, std::function<void(int index)> pressed)
    : window_(window), theme_(&theme), pressed_(std::move(pressed)), taps_(std::make_shared<TapMemory>()) {}

void ActionBar::setActions(std::span<const Action> actions) {
  // The button being pressed may be the one that asks for this: it goes when its click is over.
  for (auto* button : buttons_) {
    button->hide();
    button->deleteLater();
  }
  buttons_.clear();
  letters_.clear();
  taps_->button = nullptr;
  for (const auto& action : actions) {
    const int index = static_cast<int>(buttons_.size());
    auto* button = new TouchButton(qtText(action.text), *theme_, window_);
    if (action.identifier != 0) button->setObjectName(QString::number(action.identifier));
    button->shareTaps(taps_);
    if (action.repeats) button->setRepeats();
    button->setToolTip(qtText(action.toolTip));
    button->setAccessibleName(qtText(action.toolTip));
    QObject::connect(button, &QPushButton::clicked, button, [this, index] { pressed_(index); });
    buttons_.push_back(button);
    letters_.push_back(action.letters);
    button->show();
  }
  setHighlight(0);
}

void ActionBar::setUsable(int index, bool usable) {
  buttons_.at(static_cast<std::size_t>(index))->setEnabled(usable);
  if (!usable && index == highlight_) moveHighlight(1);
}

void ActionBar::setTheme(const Theme& theme) {
  theme_ = &theme;
  for (auto* button : buttons_) button->setTheme(theme);
}

void ActionBar::place(std::span<const QRect> places, int textPixels) {
  for (std::size_t i = 0; i < buttons_.size(); ++i) buttons_[i]->setGeometry(places[i]);
  fitTogether(buttons_, textPixels);
}

void ActionBar::placeInRow(const QRect& row, int textPixels) {
  const int count = static_cast<int>(buttons_.size());
  std::vector<QRect> places;
  for (int i = 0; i < count; ++i) {
    const int left = row.width() * i / count;
    places.emplace_back(row.left() + left, row.top(), row.width() * (i + 1) / count - left, row.height());
  }
  place(places, textPixels);
}

void ActionBar::setHighlight(int index) {
  highlight_ = index;
  for (std::size_t i = 0; i < buttons_.size(); ++i) buttons_[i]->setDefault(static_cast<int>(i) == index);
}

void ActionBar::moveHighlight(int step) {
  const int count = static_cast<int>(buttons_.size());
  int index = highlight_;
  for (int tried = 0; tried < count; ++tried) {
    index = (index + step + count) % count;
    if (buttons_[static_cast<std::size_t>(index)]->isEnabled()) return setHighlight(index);
  }
}

bool ActionBar::moveByKey(int keyCode) {
  const bool back = keyCode == key::kLeft || keyCode == key::kUp;
  if (!back && keyCode != key::kRight && keyCode != key::kDown && keyCode != key::kTab) return false;
  moveHighlight(back ? -1 : 1);
  return true;
}

std::optional<int> ActionBar::pressedBy(int keyCode) const {
  const auto usable = [this](int index) {
    return buttons_.at(static_cast<std::size_t>(index))->isEnabled() ? std::optional(index) : std::nullopt;
  };
  if (keyCode == key::kEnter) return highlight_ < 0 ? std::nullopt : usable(highlight_);
  if (keyCode < 'A' || keyCode > 'z' || std::isalpha(keyCode) == 0) return std::nullopt;
  const auto letter = static_cast<char>(std::toupper(keyCode));
  for (std::size_t i = 0; i < letters_.size(); ++i) {
    if (letters_[i].find(letter) != std::string_view::npos) return usable(static_cast<int>(i));
  }
  return std::nullopt;
}

}  // namespace kalmira
