#include "viewer/navigation.h"

#include <algorithm>

#include "logging/keys.h"

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

// The bar stays where every line begins with it, even past the end of a short line: the readout is then empty, and the
// next key brings it back.
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

ViewStep goToEnd(Navigation& state) { return goToRow(state, state.totalRows); }

ViewStep lineGrew(Navigation& state, int totalRows) {
  const int row = rowAtBar(state);
  const bool atEnd = state.lastRow >= state.totalRows;
  const bool barAtEnd = row == state.totalRows;
  state.totalRows = totalRows;
  showFrom(state, atEnd ? std::max(1, lastView(state)) : state.firstRow);
  const int wanted = barAtEnd && atEnd ? totalRows : row;
  placeBar(state, std::clamp(wanted - state.firstRow + 1, 1, state.pointsInView));
  return kViewMoved;
}

ViewStep goToRow(Navigation& state, int row) {
  if (!state.fileOpen || state.totalRows < 1) return kNothing;
  const int wanted = std::clamp(row, 1, state.totalRows);
  showFrom(state, std::max(std::min(wanted - state.pointsInView / 2, lastView(state)), 1));
  placeBar(state, wanted - state.firstRow + 1);
  return kViewMoved;
}

const std::array<ViewEntry, kViewButtons>& viewEntries() {
  using enum ViewCommand;
  static constexpr std::array<ViewEntry, kViewButtons> kEntries{{
      {openFile, "&File", "F", {}, false, false, "Open a data file"},
      {scale, "&Scale", "S", {}, false, false, "Scale of the profile"},
      {help, "?", "", {}, false, false, "Help"},
      {exit, "E&xit", "XE", {}, false, false, "Back to the menu"},
      {kSavePicture, "&Picture", "P", {}, true, false, "Save picture"},
      {kExport, "Expo&rt", "RC", {}, true, false, "Export to tables and maps"},
      {kZoomOut, "-", "", {key::kMinus, 0}, true, true, "Narrower stations, at last the whole line"},
      {kZoomIn, "+", "", {kPlusKey, 0}, true, true, "Wider stations"},
      {kFitScale, "Fi&t", "T", {}, true, false, "Fit the scale to the line"},
      {lineStart, "<<--", "", {key::kHome, 0}, true, true, "Start of line"},
      {pageLeft, "<---", "", {key::kPageUp, 0}, true, true, "80 stations left"},
      {barLeft, "|<--", "", {key::kLeft, key::kUp}, true, true, "Bar one station left"},
      {barRight, "-->|", "", {key::kRight, key::kDown}, true, true, "Bar one station right"},
      {pageRight, "--->", "", {key::kPageDown, 0}, true, true, "80 stations right"},
      {lineEnd, "-->>", "", {key::kEnd, 0}, true, true, "End of line"},
  }};
  return kEntries;
}

std::optional<ViewCommand> viewCommandOfKey(int keyCode) {
  if (keyCode == 'L' || keyCode == 'l') return ViewCommand::lineList;
  const bool small = keyCode >= 'a' && keyCode <= 'z';
  const bool letter = small || (keyCode >= 'A' && keyCode <= 'Z');
  for (const auto& entry : viewEntries()) {
    const auto capital = static_cast<char>(letter ? keyCode & ~0x20 : 0);
    if (letter && entry.keys.find(capital) != std::string_view::npos) return entry.command;
    const bool isOne = std::find(entry.keyCodes.begin(), entry.keyCodes.end(), keyCode) != entry.keyCodes.end();
    if (keyCode != 0 && isOne) return entry.command;
  }
  return std::nullopt;
}

std::string viewHelpText(int storageClass) {
  static constexpr std::array<std::string_view, 11> kLong{
      "Select Survey Line in combo box (L)ine.",
      "  ",
      "To move profile along survey line:",
      "  Start Line     - tap <<--  or key Home",
      "  End Line      - tap -->>  or key End  ",
      "  80 Stn left   - tap <---  or key PgUp ",
      "  80 Stn right - tap --->  or key PgDn",
      "  ",
      "To move vertical bar:",
      "  1 Stn left   - tap  |<--  or key Left ",
      "  1 Stn right - tap  -->|  or key Right",
  };
  static constexpr std::array<std::string_view, 11> kShort{
      "Select Line in box (L)ine.", "  ",
      "To move along line:",        " to Start- tap <<-- /Home",
      " to End  - tap -->> /End ",  " 80 left  - tap <--- /PgUp",
      " 80 right- tap ---> /PgDn",  "  ",
      "To move vertical bar:",      " 1 left   - tap |<-- /Left ",
      " 1 right - tap -->| /Right",
  };
  std::string text;
  for (const auto line : storageClass == 0 ? kLong : kShort) {
    if (!text.empty()) text += "\r\n";
    text += line;
  }
  return text;
}

std::string_view viewScaleTemplate(Kind kind) { return profileScaleTemplate(kind, false, false); }

}  // namespace kalmira
