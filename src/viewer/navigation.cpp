#include "viewer/navigation.h"

#include <algorithm>

namespace kalmira {
namespace {

constexpr int kFrame = 2;  // pixels

void showFrom(Navigation& state, int firstRow) {
  state.firstRow = firstRow;
  state.lastRow = std::min(firstRow + state.pointsInView - 1, state.totalRows);
}

// So that the line's last row stands in the last column. Of a line shorter than the view it is below 1.
int lastView(const Navigation& state) { return state.totalRows - state.pointsInView + 1; }

void placeBar(Navigation& state, int bar) {
  state.previousBar = state.bar;
  state.bar = bar;
}

constexpr ViewStep kNothing{};
constexpr ViewStep kBarMoved{.readout = true, .moveBar = true};
constexpr ViewStep kViewMoved{.load = true, .readout = true, .redraw = true};

ViewStep pageLeft(Navigation& state) {
  showFrom(state, std::max(state.firstRow - kPageStep, 1));
  return kViewMoved;
}

ViewStep pageRight(Navigation& state) {
  const int next = state.firstRow + kPageStep;
  if (next > state.totalRows) return kNothing;
  const bool beyond = next + state.pointsInView - 1 > state.totalRows;
  showFrom(state, beyond ? lastView(state) : next);
  return kViewMoved;
}

// A line one row shorter than the view is shown from row 0: its last row stands at the right edge.
ViewStep lineEnd(Navigation& state) {
  if (lastView(state) < 0) return kNothing;
  showFrom(state, lastView(state));
  return kViewMoved;
}

ViewStep moveBar(Navigation& state, bool possible, int bar) {
  if (!possible) return {.readout = true};
  placeBar(state, bar);
  return kBarMoved;
}

void barToOpening(Navigation& state) {
  state.bar = std::min(kBarAtOpening, state.pointsInView);
  state.previousBar = state.bar;
}

}  // namespace

void setPlotWidth(Navigation& state, int plotWidth) {
  state.pointsInView = std::max(plotWidth - kFrame, 1);
  state.bar = std::min(state.bar, state.pointsInView);
  state.previousBar = std::min(state.previousBar, state.pointsInView);
  showFrom(state, state.firstRow);
}

ViewStep moveView(Navigation& state, ViewCommand command) {
  if (!state.fileOpen) return kNothing;
  switch (command) {
    case ViewCommand::lineStart: showFrom(state, 1); return kViewMoved;
    case ViewCommand::pageLeft: return pageLeft(state);
    case ViewCommand::barLeft: return moveBar(state, state.bar > 1, state.bar - 1);
    case ViewCommand::barRight:
      return moveBar(state, state.bar < state.pointsInView && state.bar < state.totalRows, state.bar + 1);
    case ViewCommand::pageRight: return pageRight(state);
    case ViewCommand::lineEnd: return lineEnd(state);
    default: return kNothing;
  }
}

bool selectLine(Navigation& state, std::size_t index) {
  if (!state.fileOpen || index == state.selectedLine) return false;
  state.selectedLine = index;
  return true;
}

// The bar stays where every line begins with it, even past the end of a short line: the readout is then
// empty, and the next key brings it back.
ViewStep lineExtracted(Navigation& state, int totalRows) {
  state.totalRows = totalRows;
  barToOpening(state);
  showFrom(state, 1);
  return kViewMoved;
}

ViewStep fileOpened(Navigation& state, int totalRows) {
  state.fileOpen = true;
  state.selectedLine = 0;
  const auto step = lineExtracted(state, totalRows);
  if (state.bar >= totalRows) {
    state.bar = std::max(totalRows / 2, 1);
    state.previousBar = state.bar;
  }
  return step;
}

void fileClosed(Navigation& state) {
  const int pointsInView = state.pointsInView;
  state = Navigation{};
  state.pointsInView = pointsInView;
}

ViewStep goToRow(Navigation& state, int row) {
  if (!state.fileOpen || state.totalRows < 1) return kNothing;
  const int wanted = std::clamp(row, 1, state.totalRows);
  showFrom(state, std::max(std::min(wanted - state.pointsInView / 2, lastView(state)), 1));
  placeBar(state, wanted - state.firstRow + 1);
  return kViewMoved;
}

}  // namespace kalmira
