#include "viewer/plot_view.h"

#include <algorithm>
#include <cmath>

namespace kalmira {
namespace {

bool showsAll(const Navigation& state, int pixels) {
  return pixels == 0 || std::int64_t{state.totalRows} * pixels <= state.pointsInView;
}

void barToMiddle(const Navigation& state, Zoom& zoom) {
  zoom.offset = state.bar - 1 - state.pointsInView / zoom.pixels / 2;
}

}  // namespace

int PlotView::columnOf(int row) const {
  return static_cast<int>(std::floor((static_cast<double>(row) - firstRow + 0.5) * columnsPerRow));
}

int PlotView::rowAt(int column) const {
  return firstRow + static_cast<int>(std::floor((column + 0.5) / columnsPerRow));
}

PlotView plotView(const Navigation& state, Zoom& zoom) {
  PlotView view{.firstRow = state.firstRow, .rows = state.pointsInView, .columns = state.pointsInView};
  if (state.totalRows < 1) return view;
  if (showsAll(state, zoom.pixels)) {
    view.firstRow = 1;
    view.rows = state.totalRows;
    view.columnsPerRow = static_cast<double>(view.columns) / state.totalRows;
    return view;
  }
  if (zoom.pixels == 1) return view;
  view.rows = std::max(1, view.columns / zoom.pixels);
  view.columnsPerRow = zoom.pixels;
  const int bar = std::clamp(rowAtBar(state), 1, state.totalRows);
  const int first = std::clamp(state.firstRow + zoom.offset, std::max(1, bar - view.rows + 1), bar);
  view.firstRow = std::clamp(first, 1, std::max(1, state.totalRows - view.rows + 1));
  zoom.offset = view.firstRow - state.firstRow;
  return view;
}

void zoomIn(const Navigation& state, Zoom& zoom) {
  int pixels = std::max(1, zoom.pixels * 2);
  while (showsAll(state, pixels) && pixels < kWidestStation) pixels *= 2;
  if (pixels > kWidestStation || showsAll(state, pixels)) return;
  zoom.pixels = pixels;
  barToMiddle(state, zoom);
}

void zoomOut(const Navigation& state, Zoom& zoom) {
  zoom.pixels /= 2;
  if (showsAll(state, zoom.pixels)) zoom.pixels = 0;
  if (zoom.pixels > 1) barToMiddle(state, zoom);
}

}  // namespace kalmira
