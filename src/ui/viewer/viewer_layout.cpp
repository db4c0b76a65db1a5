#include "ui/viewer/viewer_layout.h"

#include <algorithm>
#include <span>

#include "ui/screen/theme.h"

namespace kalmira {
namespace {

constexpr double kRowUnits = 26;  // of a row of buttons
constexpr double kCaptionUnits = 13;
constexpr double kSideUnits = 54;      // of the column of two buttons beside the readout
constexpr double kReadoutWidth = 104;  // wide, in a window that lies
constexpr int kLeastCaption = 15;
constexpr int kListShares = 2;  // of a row, where a button has one

using enum ViewCommand;
constexpr std::array kSteps{lineStart, pageLeft, barLeft, barRight, pageRight, lineEnd};
constexpr std::array kLyingSteps{kZoomOut, kZoomIn, lineStart, pageLeft, barLeft, barRight, pageRight, lineEnd};
constexpr std::array kFileCommands{openFile, ViewCommand::scale, help, ViewCommand::exit};
constexpr std::array kSideCommands{kSavePicture, kExport};

struct Measures {
  double scale;
  int gap;
  int row;
  int caption;

  int units(double count) const { return static_cast<int>(count * scale); }
};

std::size_t buttonOf(ViewCommand command) {
  const auto& entries = viewEntries();
  const auto* found = std::find_if(entries.begin(), entries.end(),
                                   [command](const ViewEntry& entry) { return entry.command == command; });
  return static_cast<std::size_t>(found - entries.begin());
}

// Share `index` of `count` equal ones of a row, `shares` wide.
QRect shareOf(const QRect& row, int index, int count, int gap, int shares = 1) {
  const int left = row.left() + (row.width() + gap) * index / count;
  const int right = row.left() + (row.width() + gap) * (index + shares) / count - gap;
  return {left, row.top(), right - left, row.height()};
}

// The list of lines and the buttons behind it.
void placeTop(const QRect& row, std::span<const ViewCommand> commands, int gap, ViewerLayout& layout) {
  const int count = kListShares + static_cast<int>(commands.size());
  layout.lines = shareOf(row, 0, count, gap, kListShares);
  int index = kListShares;
  for (const auto command : commands) layout.buttons[buttonOf(command)] = shareOf(row, index++, count, gap);
}

void placeSteps(const QRect& row, std::span<const ViewCommand> steps, int gap, ViewerLayout& layout) {
  int index = 0;
  for (const auto command : steps) {
    layout.buttons[buttonOf(command)] = shareOf(row, index++, static_cast<int>(steps.size()), gap);
  }
}

// The strip of the whole line with square buttons beside it.
void placeOverview(QRect row, std::span<const ViewCommand> before, int gap, ViewerLayout& layout) {
  const int side = row.height();
  for (const auto command : before) {
    layout.buttons[buttonOf(command)] = {row.left(), row.top(), side, side};
    row.setLeft(row.left() + side + gap);
  }
  layout.buttons[buttonOf(kFitScale)] = {row.right() + 1 - side, row.top(), side, side};
  layout.overview = row.adjusted(0, 0, -side - gap, 0);
}

// Readout above the plot, beside it the two buttons that save, one above the other.
void placeUpright(const QRect& inside, const Measures& measures, ViewerLayout& layout) {
  const int gap = measures.gap;
  const int side = std::max(measures.row, measures.units(kSideUnits));
  const int readoutHeight = 2 * measures.row + gap;
  layout.caption = {inside.left(), inside.top(), inside.width(), measures.caption};
  const int top = inside.top() + measures.caption + gap;
  layout.readout = {inside.left(), top, inside.width() - side - gap, readoutHeight};
  int at = top;
  for (const auto command : kSideCommands) {
    layout.buttons[buttonOf(command)] = {inside.left() + inside.width() - side, at, side, measures.row};
    at += measures.row + gap;
  }
  const int bottom = inside.top() + inside.height();
  constexpr std::array kZooms{kZoomOut, kZoomIn};
  placeOverview({inside.left(), bottom - measures.row, inside.width(), measures.row}, kZooms, gap, layout);
  const int plotTop = top + readoutHeight + gap;
  layout.plot = {inside.left(), plotTop, inside.width(), std::max(1, layout.overview.top() - gap - plotTop)};
}

void placeLying(const QRect& inside, const Measures& measures, ViewerLayout& layout) {
  const int gap = measures.gap;
  const int readoutWidth = measures.units(kReadoutWidth);
  const int plotWidth = inside.width() - readoutWidth - gap;
  layout.readout = {inside.left() + plotWidth + gap, inside.top(), readoutWidth, inside.height()};
  layout.caption = {inside.left(), inside.top(), plotWidth, measures.caption};
  const int bottom = inside.top() + inside.height();
  placeOverview({inside.left(), bottom - measures.row, plotWidth, measures.row}, {}, gap, layout);
  const int plotTop = inside.top() + measures.caption + gap;
  layout.plot = {inside.left(), plotTop, plotWidth, std::max(1, layout.overview.top() - gap - plotTop)};
}

}  // namespace

ViewerLayout layOutViewer(int width, int height, int touchHeight) {
  const auto screen = screenScaleOf(width, height);
  const Measures measures{.scale = screen.scale,
                          .gap = std::max(2, std::min(width, height) / 120),
                          .row = std::max(touchHeight, static_cast<int>(kRowUnits * screen.scale)),
                          .caption = std::max(kLeastCaption, static_cast<int>(kCaptionUnits * screen.scale))};
  const int gap = measures.gap;
  const int inner = width - 2 * gap;
  const QRect top{gap, gap, inner, measures.row};
  const QRect steps{gap, height - gap - measures.row, inner, measures.row};
  const int insideTop = top.top() + top.height() + gap;
  const QRect inside{gap, insideTop, inner, std::max(1, steps.top() - gap - insideTop)};
  ViewerLayout layout;
  layout.scale = screen.scale;
  if (screen.portrait) {
    placeSteps(steps, kSteps, gap, layout);
    placeTop(top, kFileCommands, gap, layout);
    placeUpright(inside, measures, layout);
  } else {
    placeSteps(steps, kLyingSteps, gap, layout);
    constexpr std::array kAll{openFile, ViewCommand::scale, help, ViewCommand::exit, kSavePicture, kExport};
    placeTop(top, kAll, gap, layout);
    placeLying(inside, measures, layout);
  }
  return layout;
}

}  // namespace kalmira
