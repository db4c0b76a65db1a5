#pragma once

#include <QWidget>

#include "ui/screen/theme.h"

namespace kalmira {

// A piece of a profile, drawn as the chart draws it: what a colour and a thickness will look like. `theme`
// must live as long as the sample.
class LineSample final : public QWidget {
 public:
  explicit LineSample(const Theme& theme, QWidget* parent = nullptr);

  // A trace that is not shown leaves only the grid line. `colour` is 0x00BBGGRR, `width` in pixels.
  void setLine(bool shown, int colour, int width);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const Theme& theme_;
  bool shown_ = true;
  int colour_ = 0;
  int width_ = 1;
};

}  // namespace kalmira
