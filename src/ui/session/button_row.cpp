#include "ui/session/button_row.h"

#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

constexpr int kTextPercent = 45;  // of the row's height, for one line

}  // namespace

ButtonRowView::ButtonRowView(const Theme& theme, std::function<void(int index)> pressed, QWidget* parent)
    : QWidget(parent), theme_(&theme), pressed_(std::move(pressed)) {}

void ButtonRowView::setTexts(const std::vector<std::string_view>& texts) {
  // The button being pressed may be the one that asks for this: it goes when its click is over.
  for (auto* button : buttons_) {
    button->hide();
    button->deleteLater();
  }
  buttons_.clear();
  for (const auto text : texts) {
    const int index = static_cast<int>(buttons_.size());
    auto* button =
        new TouchButton(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())), *theme_, this);
    connect(button, &QPushButton::clicked, this, [this, index] { pressed_(index); });
    buttons_.push_back(button);
    button->show();
  }
  placeButtons();
}

void ButtonRowView::setFocusIndex(int index) {
  for (std::size_t i = 0; i < buttons_.size(); ++i) buttons_[i]->setDefault(static_cast<int>(i) == index);
}

void ButtonRowView::setTheme(const Theme& theme) {
  theme_ = &theme;
  for (auto* button : buttons_) button->setTheme(theme);
}

void ButtonRowView::resizeEvent(QResizeEvent*) {
  placeButtons();
}

void ButtonRowView::placeButtons() {
  const int count = static_cast<int>(buttons_.size());
  for (int i = 0; i < count; ++i) {
    const int left = width() * i / count;
    buttons_[static_cast<std::size_t>(i)]->setGeometry(left, 0, width() * (i + 1) / count - left, height());
  }
  fitTogether(buttons_, height() * kTextPercent / 100);
}

}  // namespace kalmira
