#include "ui/screen/touch_style.h"

#include <QGuiApplication>
#include <QProxyStyle>
#include <QScreen>
#include <QStyleOption>
#include <QWidget>
#include <algorithm>

#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

class TouchStyle final : public QProxyStyle {
 public:
  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
    switch (metric) {
      case PM_IndicatorWidth:
      case PM_IndicatorHeight:
      case PM_ExclusiveIndicatorWidth:
      case PM_ExclusiveIndicatorHeight: return heightFor(widget);
      default: return QProxyStyle::pixelMetric(metric, option, widget);
    }
  }
  QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                       const QWidget* widget) const override {
    auto rect = QProxyStyle::subControlRect(control, option, part, widget);
    if (control != CC_ComboBox || (part != SC_ComboBoxArrow && part != SC_ComboBoxEditField)) return rect;
    // No more than a third of a narrow list.
    const auto usual = QProxyStyle::subControlRect(control, option, SC_ComboBoxArrow, widget).width();
    const int width = std::max(usual, std::min(heightFor(widget), option->rect.width() / 3));
    if (part == SC_ComboBoxArrow) {
      rect.setLeft(rect.right() + 1 - width);
    } else {
      rect.setRight(std::max(rect.left(), rect.right() - (width - usual)));
    }
    return rect;
  }

 private:
  static int heightFor(const QWidget* widget) {
    return touchHeight(widget != nullptr ? widget->screen() : QGuiApplication::primaryScreen());
  }
};

}  // namespace

QStyle* makeTouchStyle() { return new TouchStyle; }

}  // namespace kalmira
