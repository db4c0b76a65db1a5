#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "chart/chart_picture.h"
#include "ui/screen/theme.h"
#include "viewer/plot_points.h"

namespace kalmira {

// The whole line in one strip, with the shown window framed and the bar's row marked. A tap, or a finger that
// is drawn over it, asks for that row.
class OverviewStrip final : public QWidget {
 public:
  OverviewStrip(const Theme& theme, std::function<void(int row)> rowWanted, QWidget* parent);
  ~OverviewStrip() override;

  // `setup` is as high as this widget and as wide as `overview` has columns: a short line is stretched.
  void showLine(const ProfileSetup& setup, Overview overview);
  void clearLine();
  // Rows from 1.
  void setWindow(int firstRow, int lastRow, int barRow);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  void askForRow(int x);
  int leftOf(int row) const;

  const Theme* theme_;
  std::function<void(int)> row_wanted_;
  std::unique_ptr<ChartPicture> picture_;
  Overview overview_;
  int first_row_ = 0;
  int last_row_ = 0;
  int bar_row_ = 0;
};

}  // namespace kalmira
