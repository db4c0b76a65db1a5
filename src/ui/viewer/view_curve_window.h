#pragma once

#include <QImage>
#include <QWidget>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "chart/chart_picture.h"
#include "ui/screen/theme.h"
#include "viewer/plot_points.h"

namespace kalmira {

// Draws an arrow for each mark at the upper or lower edge of a plot, `size` pixels wide and high.
void paintOffScale(QPainter& painter, std::span<const OffScaleMark> marks, const ChartColours& colours,
                   const QRect& plot, int size);

// ViewCurveWnd: the plot of the rows in view, station labels below, the limits of the scale at the right edge, arrows
// where a trace is off the scale, and the bar. A tap, or a finger that is drawn over it, asks for the bar.
class ViewCurveWnd final : public QWidget {
 public:
  // `barWanted`: the bar is wanted at that column, counted from 1; within the plot.
  ViewCurveWnd(const Theme& theme, std::function<void(int bar)> barWanted, QWidget* parent);
  ~ViewCurveWnd() override;

  // Of the plot itself, without the labels below: what a ProfileSetup for showStations is made for.
  QSize plotSize() const;
  // Draws them; `points` is not kept.
  void showStations(const ProfileSetup& setup, const PlotView& view, std::span<const StationPoint> points);
  // The same of a line with more rows than columns.
  void showSummary(const ProfileSetup& setup, const LineSummary& summary, const PlotView& view);
  void clearPlot();
  // Column from 1; 0: no bar.
  void setBar(int bar);
  int bar() const { return bar_; }
  // The picture without bar and labels.
  QImage picture() const;
  std::span<const OffScaleMark> offScale() const { return marks_; }
  std::span<const StationLabel> labels() const { return labels_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  int labelHeight() const;
  void makePicture();
  void startPlot(const ProfileSetup& setup);
  void endPlot(std::span<const StationTick> ticks);
  int markSize() const;
  void askForBar(int x);
  void drawStationLabels(QPainter& painter) const;
  void drawLimits(QPainter& painter) const;
  void drawBar(QPainter& painter) const;
  QRect barPlace(int bar) const;

  const Theme* theme_;
  std::function<void(int)> bar_wanted_;
  std::unique_ptr<ChartPicture> picture_;
  ProfileSetup setup_;
  bool filled_ = false;
  std::vector<StationLabel> labels_;
  std::vector<OffScaleMark> marks_;
  int bar_ = 0;
};

}  // namespace kalmira
