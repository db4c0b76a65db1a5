#pragma once

#include "viewer/navigation.h"

// How wide a station is drawn. Commands count rows as if each were one column wide; this only says what of the line is
// seen. The view follows the bar.
namespace kalmira {

inline constexpr int kWidestStation = 32;  // pixels

struct Zoom {
  int pixels = 1;  // a station; 0: the whole line
  int offset = 0;  // of the first row shown behind the first that the commands count, where not all of those are
};

// What the plot shows. Rows count from 1, columns from 0.
struct PlotView {
  int firstRow = 1;
  int rows = 0;              // shown; past the line's end there may be none
  int columns = 1;           // of the plot
  double columnsPerRow = 1;  // below 1: several rows share a column

  bool summed() const { return columnsPerRow < 1; }
  // In the middle of what the row has; may lie outside.
  int columnOf(int row) const;
  int rowAt(int column) const;
  int lastRow() const { return firstRow + rows - 1; }
  bool operator==(const PlotView&) const = default;
};

// A line that is shorter than the view at `pixels` a station is stretched to it.
PlotView plotView(const Navigation& state, Zoom& zoom);
// The next step that shows fewer or more of the line, as far as there is one.
void zoomIn(const Navigation& state, Zoom& zoom);
void zoomOut(const Navigation& state, Zoom& zoom);

}  // namespace kalmira
