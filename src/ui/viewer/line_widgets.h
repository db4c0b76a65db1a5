#pragma once

#include <QComboBox>
#include <QWidget>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "chart/chart_picture.h"
#include "ui/screen/theme.h"
#include "viewer/line_extract.h"
#include "viewer/plot_points.h"

namespace kalmira {

// The drop-down list of a file's survey lines; it opens at once when a million of them stand in it.
class LineList final : public QComboBox {
 public:
  // `chosen`: an entry was confirmed, counted from 0; `closed`: the list is no longer open, chosen or not.
  LineList(std::function<void(int index)> chosen, std::function<void()> closed, QWidget* parent);

  // Selects the first one. The lines must outlive the list or be taken away: nullptr.
  void setLines(const std::vector<SurveyLine>* lines);
  // Lines have been added at the end of the table.
  void takeNewLines();
  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  void wheelEvent(QWheelEvent* event) override;

 private:
  std::function<void()> closed_;
};

// The whole line in one strip, with the shown window framed and the bar's row marked. A tap, or a finger that is drawn
// over it, asks for that row.
class OverviewStrip final : public QWidget {
 public:
  OverviewStrip(const Theme& theme, std::function<void(int row)> rowWanted, QWidget* parent);
  ~OverviewStrip() override;

  // `setup` is as high as this widget and as wide as `overview` has columns. The `points` of a line with fewer rows
  // than the widget has pixels are drawn in place of it, with a `setup` as wide as the widget.
  void showLine(const ProfileSetup& setup, Overview overview, std::span<const StationPoint> points = {});
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
  int middleOf(int row) const;

  const Theme* theme_;
  std::function<void(int)> row_wanted_;
  std::unique_ptr<ChartPicture> picture_;
  Overview overview_;
  std::vector<OffScaleMark> marks_;
  int first_row_ = 0;
  int last_row_ = 0;
  int bar_row_ = 0;
};

}  // namespace kalmira
