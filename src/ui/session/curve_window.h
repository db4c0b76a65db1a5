#pragma once

#include <QImage>
#include <QWidget>
#include <memory>
#include <string>

#include "chart/chart_picture.h"
#include "chart/profile_chart.h"
#include "chart/scale_fit.h"
#include "logging/session.h"
#include "ui/screen/calm_updates.h"
#include "ui/screen/theme.h"

namespace kalmira {

// A picture's pixels as Qt draws them: a view, no copy.
QImage imageOf(const ChartPicture& picture);
// The limit of a scale as it stands at the axis.
std::string limitText(Kind kind, float limit);

// CurveWnd: the profile on the screen. It is drawn on a picture that scrolls, so that a reading costs one column and
// not the chart; the limits of the scale are laid over it. The picture has one pixel for each of the widget's own
// coordinates: on a screen with smaller dots the lines keep the widths that were chosen. Arrows tell where values left
// it, a legend what its traces are, and an empty one says why. The session must outlive it or be taken away.
class CurveWnd final : public QWidget {
 public:
  CurveWnd(const Theme& theme, QWidget* parent);
  ~CurveWnd() override;

  // From now on this session's profile is shown; nullptr: none, an empty chart.
  void setSession(Session* session);
  // Screen pixels a unit, and which layout: these with the widget's size and the settings make the chart.
  void setLayoutOf(bool wideLayout, double scale);
  void setTheme(const Theme& theme);

  void addPoint(const ProfilePoint& point);
  void redraw();      // from the data file, with the settings and the size as they are now
  void clearChart();  // axes alone

  bool offScale() const { return traces_ != nullptr && anyOffScale(traces_->shown); }
  // The session's settings with scales that hold what is shown; nothing when nothing is.
  std::optional<Settings> fitted() const;
  // What an empty chart says; empty while there is something to be seen.
  std::string note() const;

  // The picture as it stands, without labels.
  QImage picture() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void rebuild();
  void drawLabels(QPainter& painter) const;
  void drawLegend(QPainter& painter, const QRect& room) const;
  void drawArrows(QPainter& painter) const;
  QRect labelRoom() const;

  const Theme* theme_;
  Session* session_ = nullptr;
  bool wide_layout_ = true;
  double scale_ = 1.0;
  ProfileSetup setup_;
  std::unique_ptr<ChartPicture> picture_;
  std::unique_ptr<TraceState> traces_;
  std::bitset<kProfilePoints> seen_;  // the traces that the legend names
  std::string note_;
  CalmUpdates updates_{*this};
};

}  // namespace kalmira
