#include "ui/viewer/font_window.h"

#include <fmt/format.h>

#include <QEvent>
#include <QFontDatabase>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <algorithm>
#include <array>
#include <utility>

#include "logging/keys.h"
#include "ui/screen/key_table.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/theme.h"
#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

// Of the sample, pixels: from the smallest that anything is shown in to that of the state word.
constexpr std::array kSizes{8, 10, 12, 14, 16, 20, 24, 32, 40, 48};
constexpr int kFirstSize = 4;
constexpr int kPageRows = 10;

enum : int { kSmaller, kLarger, kExit };
constexpr std::array kActions{Action{.text = "&Smaller", .letters = "S"}, Action{.text = "&Larger", .letters = "L"},
                              Action{.text = "E&xit", .letters = "XE"}};

constexpr const char* kSample = "LOGGING  Stn: 1290.50\nC: 31.40 mS/m  I: -0.52 ppt\n0O 1lI 5S 8B";

QString sizesText(const QString& family) {
  std::string text;
  for (const int size : QFontDatabase::pointSizes(family)) text += fmt::format(" {}", size);
  const bool scalable = QFontDatabase::isSmoothlyScalable(family);
  return qtText(fmt::format("Sizes:{}{}", text, scalable ? " and any between" : ""));
}

}  // namespace

FontWnd::FontWnd(std::function<void()> onLeft, const Theme& theme, QWidget* parent)
    : CoverWindow("FontWnd", "Fonts", std::move(onLeft), parent),
      families_(new QListWidget(this)),
      sizes_(new QLabel(this)),
      sample_(new QLabel(this)),
      buttons_(this, theme, [this](int index) { press(index); }),
      size_index_(kFirstSize) {
  buttons_.setActions(kActions);
  buttons_.setHighlight(kExit);
  makeSamples();
}

void FontWnd::makeSamples() {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(4, 4, 4, 4);
  grid->setSpacing(4);
  grid->addWidget(families_, 0, 0, 1, 3);
  grid->addWidget(sizes_, 1, 0, 1, 3);
  grid->addWidget(sample_, 2, 0, 1, 3);
  int column = 0;
  for (auto* button : buttons_.buttons()) grid->addWidget(button, 3, column++);
  grid->setRowStretch(0, 3);
  grid->setRowStretch(2, 2);
  sizes_->setWordWrap(true);
  // Of a large sample the beginning is seen; the list keeps its room.
  for (auto* label : {sizes_, sample_}) {
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    label->setTextFormat(Qt::PlainText);
  }
  sample_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  sample_->setText(kSample);
  families_->setObjectName("families");
  families_->setAccessibleName(QStringLiteral("Font"));
  families_->setFocusPolicy(Qt::NoFocus);
  families_->setUniformItemSizes(true);
  families_->addItems(QFontDatabase::families());
  connect(families_, &QListWidget::currentRowChanged, this, [this] { showFamily(); });
  fitForFingers(*this);
}

void FontWnd::open() {
  const auto row = families_->findItems(QFontInfo(font()).family(), Qt::MatchExactly);
  families_->setCurrentRow(row.isEmpty() ? 0 : families_->row(row.constFirst()));
  showFamily();
  cover();
}

void FontWnd::showFamily() {
  const auto* item = families_->currentItem();
  if (item == nullptr) return;
  QFont shown(item->text());
  shown.setPixelSize(kSizes.at(static_cast<std::size_t>(size_index_)));
  sample_->setFont(shown);
  sizes_->setText(sizesText(item->text()) + qtText(fmt::format("\nShown: {} pixels", shown.pixelSize())));
}

void FontWnd::changeSize(int step) {
  size_index_ = std::clamp(size_index_ + step, 0, static_cast<int>(kSizes.size()) - 1);
  buttons_.setUsable(kSmaller, size_index_ > 0);
  buttons_.setUsable(kLarger, size_index_ + 1 < static_cast<int>(kSizes.size()));
  showFamily();
  setFocus();
}

void FontWnd::press(int index) {
  if (index == kExit) return leave();
  changeSize(index == kSmaller ? -1 : 1);
}

void FontWnd::keyPressEvent(QKeyEvent* event) {
  // What else is no key of this window ends here, for the menu below has keys of its own.
  if (isFunctionKey(event->key())) return QWidget::keyPressEvent(event);
  const int keyCode = keyCodeOf(event->key());
  if (const int rows = scrollStepOf(keyCode, kPageRows); rows != 0) {
    const int last = std::max(0, families_->count() - 1);
    return families_->setCurrentRow(std::clamp(families_->currentRow() + rows, 0, last));
  }
  if (keyCode == key::kLeft || keyCode == key::kMinus) return changeSize(-1);
  if (keyCode == key::kRight || event->key() == Qt::Key_Plus) return changeSize(1);
  if (event->key() == Qt::Key_Escape) return leave();
  if (const auto index = buttons_.pressedBy(keyCode)) press(*index);
}

void FontWnd::resizeEvent(QResizeEvent*) {
  QFont texts = font();
  texts.setPixelSize(dialogTextPixels(screenScaleOf(width(), height()).scale));
  families_->setFont(texts);
  sizes_->setFont(texts);
  for (auto* button : buttons_.buttons()) button->setFont(texts);
  // Room for what is said of the sizes, whichever family comes.
  sizes_->setFixedHeight(QFontMetrics(texts).lineSpacing() * 4);
  sample_->setMinimumHeight(height() / 5);
  layout()->activate();
  fitTogether(buttons_.buttons(), texts.pixelSize());
}

}  // namespace kalmira
