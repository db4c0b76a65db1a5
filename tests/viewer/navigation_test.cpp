#include "viewer/navigation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kalmira {
namespace {

constexpr int kPlotWidth = 102;  // 100 points in view

Navigation opened(int totalRows) {
  Navigation state;
  setPlotWidth(state, kPlotWidth);
  fileOpened(state, totalRows);
  return state;
}

TEST(Navigation, commands) {
  struct Walk {
    int totalRows;
    std::string commands;  // by number
    int firstRow, lastRow, bar;
  };
  for (const auto& walk :
       {Walk{500, "4", 81, 180, 50}, Walk{500, "44444", 401, 500, 50}, Walk{500, "444444", 401, 500, 50},
        Walk{450, "44444", 351, 450, 50}, Walk{500, "441", 81, 180, 50}, Walk{500, "41", 1, 100, 50},
        Walk{500, "1", 1, 100, 50}, Walk{500, "5", 401, 500, 50}, Walk{500, "51", 321, 420, 50},
        Walk{500, "50", 1, 100, 50},
        // At the end of the line the view stays; a line shorter than the step is not moved at all.
        Walk{60, "4", 1, 60, 50},
        // Shorter than the view: its end is brought to the right edge, from row 0 on by "end" but not
        // further.
        Walk{100, "5", 1, 100, 50}, Walk{99, "5", 0, 99, 50}, Walk{98, "5", 1, 98, 50}, Walk{90, "4", -9, 90, 50},
        Walk{81, "4", -18, 81, 50}, Walk{80, "4", 1, 80, 50}, Walk{90, "41", 1, 90, 50}, Walk{500, "223", 1, 100, 49},
        Walk{500, std::string(60, '3'), 1, 100, 100}, Walk{500, std::string(60, '2'), 1, 100, 1},
        Walk{52, "33333", 1, 52, 52}, Walk{500, "43", 81, 180, 51}}) {
    SCOPED_TRACE(walk.commands + " on " + std::to_string(walk.totalRows));
    auto state = opened(walk.totalRows);
    for (const char command : walk.commands) moveView(state, static_cast<ViewCommand>(command - '0'));
    EXPECT_EQ(state.firstRow, walk.firstRow);
    EXPECT_EQ(state.lastRow, walk.lastRow);
    EXPECT_EQ(state.bar, walk.bar);
  }
}

TEST(Navigation, whatIsToBeDone) {
  auto state = opened(500);
  const auto moved = moveView(state, ViewCommand::pageRight);
  EXPECT_TRUE(moved.load && moved.readout && moved.redraw && !moved.moveBar);
  const auto bar = moveView(state, ViewCommand::barLeft);
  EXPECT_TRUE(!bar.load && bar.readout && !bar.redraw && bar.moveBar);
  EXPECT_EQ(state.previousBar, 50);
  EXPECT_EQ(rowAtBar(state), 81 + 49 - 1);
  moveView(state, ViewCommand::lineEnd);
  EXPECT_TRUE(moveView(state, ViewCommand::lineEnd).load);
  auto shortLine = opened(60);
  EXPECT_FALSE(moveView(shortLine, ViewCommand::pageRight).load);
  fileClosed(state);
  EXPECT_FALSE(moveView(state, ViewCommand::lineStart).load);
  EXPECT_EQ(state.pointsInView, 100);
}

// Opening a file looks at the length of its first line, choosing a line does not.
TEST(Navigation, barOnShortLines) {
  for (const auto& [rows, bar] : {std::pair{0, 1}, {1, 1}, {3, 1}, {30, 15}, {50, 25}, {51, 50}}) {
    auto state = opened(rows);
    EXPECT_EQ(state.bar, bar) << rows;
    EXPECT_EQ(state.previousBar, bar) << rows;
    moveView(state, ViewCommand::barRight);
    EXPECT_FALSE(selectLine(state, 0));
    EXPECT_TRUE(selectLine(state, 1));
    lineExtracted(state, rows);
    EXPECT_EQ(state.bar, 50);
    EXPECT_EQ(state.firstRow, 1);
  }
}

TEST(Navigation, plotWidthAndTaps) {
  auto state = opened(500);
  setPlotWidth(state, 32);
  EXPECT_EQ(state.bar, 30);
  EXPECT_EQ(state.lastRow, 30);
  setPlotWidth(state, 0);
  EXPECT_EQ(state.pointsInView, 1);
  setPlotWidth(state, kPlotWidth);
  struct Tap {
    int row, firstRow, bar;
  };
  for (const auto& tap : {Tap{1, 1, 1}, {250, 200, 51}, {500, 401, 100}, {999, 401, 100}, {-5, 1, 1}}) {
    goToRow(state, tap.row);
    EXPECT_EQ(state.firstRow, tap.firstRow) << tap.row;
    EXPECT_EQ(state.bar, tap.bar) << tap.row;
  }
}

}  // namespace
}  // namespace kalmira
