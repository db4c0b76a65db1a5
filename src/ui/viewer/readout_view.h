#pragma once

#include <QWidget>
#include <array>
#include <vector>

#include "chart/profile_chart.h"
#include "ui/screen/theme.h"
#include "viewer/opened_file.h"

namespace kalmira {

// The values of the station at the bar and what was noted there, in as many columns and as large as fits.
class ReadoutView final : public QWidget {
 public:
  ReadoutView(const Theme& theme, QWidget* parent);

  // `setup` has the colours by which the traces are told apart, beside their names. `largest` is the size of the text
  // in pixels where there is room.
  void showReadout(RowReadout readout, const ProfileSetup& setup);
  void setLargestText(int pixels);
  // All that is shown, one a line.
  std::string text() const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct Grid {
    QFont font;
    std::vector<int> widths;  // of the columns
    int lineHeight = 0;
    bool units = true;
    bool fits = false;
  };
  Grid gridOf(int pixels, bool units) const;
  Grid gridFor() const;
  int heightOfNotes(const QFontMetrics& metrics) const;
  void drawField(QPainter& painter, const ReadoutField& field, const QRect& cell, bool units) const;

  const Theme* theme_;
  RowReadout readout_;
  std::array<std::uint32_t, kProfilePoints> colours_{};
  int largest_text_ = 14;
};

}  // namespace kalmira
