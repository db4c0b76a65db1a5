#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "instruments/catalogue.h"

// Where the operator stands in a line: which rows the plot shows and which of them the bar marks. Rows and bar count
// from 1.
namespace kalmira {

inline constexpr int kPageStep = 80;  // rows
inline constexpr int kBarAtOpening = 50;

struct Navigation {
  int pointsInView = 1;  // columns of the plot, one a station
  int firstRow = 1;
  int lastRow = 0;
  int totalRows = 0;
  int bar = kBarAtOpening;  // 1 to pointsInView, within the view
  int previousBar = kBarAtOpening;
  std::size_t selectedLine = 0;  // index in the line list
  bool fileOpen = false;
};

// The row that the bar marks; below 1 or above totalRows: there is none.
constexpr int rowAtBar(const Navigation& state) { return state.firstRow + state.bar - 1; }

// Commands by number; a button's identifier is kFirstCommandId plus the number.
enum class ViewCommand {
  lineStart = 0,
  pageLeft,
  barLeft,
  barRight,
  pageRight,
  lineEnd,
  openFile,
  scale,
  exit,
  help,
  lineList,
};
inline constexpr int kFirstCommandId = 480;

// What is to be done after a command.
struct ViewStep {
  bool load = false;     // the rows from firstRow on into points 1 to pointsInView
  bool readout = false;  // show the station at the bar
  bool redraw = false;   // the plot, and with it the readout
  bool moveBar = false;  // erase it at previousBar, draw it at bar
};

// Every command begins with it: two pixels of the plot's width are its frame. The rows in view follow.
void setPlotWidth(Navigation& state, int plotWidth);

// Commands lineStart to lineEnd; the others do nothing here. Without an open file nothing happens.
ViewStep moveView(Navigation& state, ViewCommand command);

// An entry of the line list was confirmed. True: another line than the present one, to be extracted; then call
// lineExtracted. False: only redraw.
bool selectLine(Navigation& state, std::size_t index);
ViewStep lineExtracted(Navigation& state, int totalRows);

// The line has grown to `totalRows`. While its last row is in view the view goes along; a bar on that row stays on the
// last one, any other on its station as long as that is in view.
ViewStep lineGrew(Navigation& state, int totalRows);
// The view and the bar to the last row.
ViewStep goToEnd(Navigation& state);

// A file was opened and its first line extracted (`totalRows` 0 where it has none).
ViewStep fileOpened(Navigation& state, int totalRows);
void fileClosed(Navigation& state);

// The view begins so that `row` stands in its middle, as far as the line goes; the bar moves onto the row. For a tap
// into the overview.
ViewStep goToRow(Navigation& state, int row);

// The viewer's commands: their buttons and keys, and the texts that go with them.

// Behind the numbered commands: the two that save, and those that change how the line is seen.
inline constexpr ViewCommand kSavePicture{11};
inline constexpr ViewCommand kExport{12};
inline constexpr ViewCommand kFitScale{13};
inline constexpr ViewCommand kZoomOut{14};
inline constexpr ViewCommand kZoomIn{15};

struct ViewEntry {
  ViewCommand command;
  std::string_view text;          // of the button, with "&" before the letter that is underlined
  std::string_view keys;          // capital letters
  std::array<int, 2> keyCodes;    // the handheld's, 0 for none
  bool needsFile = true;          // greyed while none is open
  bool repeats = false;           // moves on; goes on while it is held
  std::string_view toolTip = {};  // for who has a mouse, and for screen readers
};
inline constexpr int kViewButtons = 15;
// In the order in which Tab goes over the buttons.
const std::array<ViewEntry, kViewButtons>& viewEntries();

inline constexpr int kPlusKey = '+';  // with or without Shift, wherever it stands
// What a key asks for, by the handheld's virtual key codes (letters of either case by their ASCII codes); nothing for
// Tab and Enter, which go by the highlight.
std::optional<ViewCommand> viewCommandOfKey(int keyCode);

// "View Files Help"; there is a shorter wording for storage classes other than 0, whose screens are smaller.
std::string viewHelpText(int storageClass);

// The profile scale dialog's template.
std::string_view viewScaleTemplate(Kind kind);

}  // namespace kalmira
