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

#include "ui/screen/screen_scale.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

// Of the sample, pixels: from the smallest that anything is shown in to that of the state word.
constexpr std::array kSizes{8, 10, 12, 14, 16, 20, 24, 32, 40, 48};
constexpr int kFirstSize = 4;

constexpr const char* kSample = "LOGGING  Stn: 1290.50\nC: 31.40 mS/m  I: -0.52 ppt\n0O 1lI 5S 8B";

QString sizesText(const QString& family) {
  std::string text;
  for (const int size : QFontDatabase::pointSizes(family)) text += fmt::format(" {}", size);
  const bool scalable = QFontDatabase::isSmoothlyScalable(family);
  return QString::fromStdString(fmt::format("Sizes:{}{}", text, scalable ? " and any between" : ""));
}

}  // namespace

FontWnd::FontWnd(std::function<void()> onLeft, const Theme& theme, QWidget* parent)
    : QWidget(parent),
      on_left_(std::move(onLeft)),
      families_(new QListWidget(this)),
      sizes_(new QLabel(this)),
      sample_(new QLabel(this)),
      smaller_(new TouchButton("&Smaller", theme, this)),
      larger_(new TouchButton("&Larger", theme, this)),
      exit_(new TouchButton("E&xit", theme, this)),
      size_index_(kFirstSize) {
  setObjectName("FontWnd");
  setFocusPolicy(Qt::StrongFocus);
  setAutoFillBackground(true);
  makeSamples();
  connect(smaller_, &QPushButton::clicked, this, [this] { changeSize(-1); });
  connect(larger_, &QPushButton::clicked, this, [this] { changeSize(1); });
  connect(exit_, &QPushButton::clicked, this, [this] { leave(); });
  exit_->setDefault(true);
  if (parent != nullptr) parent->installEventFilter(this);
  hide();
}

void FontWnd::makeSamples() {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(4, 4, 4, 4);
  grid->setSpacing(4);
  grid->addWidget(families_, 0, 0, 1, 3);
  grid->addWidget(sizes_, 1, 0, 1, 3);
  grid->addWidget(sample_, 2, 0, 1, 3);
  int column = 0;
  for (auto* button : {smaller_, larger_, exit_}) grid->addWidget(button, 3, column++);
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
  families_->setFocusPolicy(Qt::NoFocus);
  families_->setUniformItemSizes(true);
  families_->addItems(QFontDatabase::families());
  connect(families_, &QListWidget::currentRowChanged, this, [this] { showFamily(); });
  fitForFingers(*this);
}

void FontWnd::open() {
  if (parentWidget() != nullptr) setGeometry(parentWidget()->rect());
  const auto row = families_->findItems(QFontInfo(font()).family(), Qt::MatchExactly);
  families_->setCurrentRow(row.isEmpty() ? 0 : families_->row(row.constFirst()));
  showFamily();
  show();
  raise();
  setFocus();
}

void FontWnd::leave() {
  hide();
  if (on_left_) on_left_();
}

void FontWnd::showFamily() {
  const auto* item = families_->currentItem();
  if (item == nullptr) return;
  QFont shown(item->text());
  shown.setPixelSize(kSizes.at(static_cast<std::size_t>(size_index_)));
  sample_->setFont(shown);
  sizes_->setText(sizesText(item->text()) +
                  QString::fromStdString(fmt::format("\nShown: {} pixels", shown.pixelSize())));
}

void FontWnd::changeSize(int step) {
  size_index_ = std::clamp(size_index_ + step, 0, static_cast<int>(kSizes.size()) - 1);
  smaller_->setEnabled(size_index_ > 0);
  larger_->setEnabled(size_index_ + 1 < static_cast<int>(kSizes.size()));
  showFamily();
  setFocus();
}

void FontWnd::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
      const bool page = event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown;
      const bool back = event->key() == Qt::Key_Up || event->key() == Qt::Key_PageUp;
      const int step = page ? 10 : 1;
      const int row = families_->currentRow() + (back ? -step : step);
      return families_->setCurrentRow(std::clamp(row, 0, std::max(0, families_->count() - 1)));
    }
    case Qt::Key_Left:
    case Qt::Key_Minus:
    case Qt::Key_S:
      return changeSize(-1);
    case Qt::Key_Right:
    case Qt::Key_Plus:
    case Qt::Key_L:
      return changeSize(1);
    case Qt::Key_X:
    case Qt::Key_E:
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return leave();
    case Qt::Key_F11:
      return QWidget::keyPressEvent(event);  // the program's
    default:
      return;  // the menu below has keys of its own
  }
}

void FontWnd::resizeEvent(QResizeEvent*) {
  QFont texts = font();
  texts.setPixelSize(dialogTextPixels(screenScaleOf(width(), height()).scale));
  for (QWidget* each :
       {static_cast<QWidget*>(families_), static_cast<QWidget*>(sizes_), static_cast<QWidget*>(smaller_),
        static_cast<QWidget*>(larger_), static_cast<QWidget*>(exit_)}) {
    each->setFont(texts);
  }
  // Room for what is said of the sizes, whichever family comes.
  sizes_->setFixedHeight(QFontMetrics(texts).lineSpacing() * 4);
  sample_->setMinimumHeight(height() / 5);
  layout()->activate();
  const std::array buttons{smaller_, larger_, exit_};
  fitTogether(buttons, texts.pixelSize());
}

bool FontWnd::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parentWidget() && event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
  return false;
}

}  // namespace kalmira
