#include "viewer/plot_points.h"

#include <fmt/format.h>

#include "support/viewed_file.h"
#include "viewer/navigation.h"

namespace kalmira {
namespace {

constexpr int kHeight = 100;  // 10 pixels a mS/m, 5 a ppt

// Writes down what is drawn of the traces.
class TraceCanvas final : public ChartCanvas {
 public:
  void clear() override { drawn.clear(); }
  void scrollLeft(int) override { ADD_FAILURE(); }
  void eraseColumns(int, int) override { ADD_FAILURE(); }
  void gridPiece(int, int, int, int) override {}
  void line(int x1, int y1, int x2, int y2, int colour, int width) override {
    drawn.push_back(fmt::format("{}:{} {},{}-{},{}", colour, width, x1, y1, x2, y2));
  }
  void point(int x, int y, int colour, int width) override {
    drawn.push_back(fmt::format("{}:{} {},{}", colour, width, x, y));
  }
  std::vector<std::string> drawn;
};

using Drawn = std::vector<std::string>;

StationPoint stationPoint(std::size_t slot, float value) {
  StationPoint point{.valid = true, .station = 1, .channels = {}};
  point.channels.present[slot] = 1;
  point.channels.value[slot] = value;
  return point;
}

Settings plainSettings() {
  Settings settings;
  for (std::size_t i = 0; i < kTraces; ++i) settings.traceColour[i] = static_cast<int>(i);
  settings.traceWidth[2] = 3;
  return settings;
}

TEST(StationPlot, joinsStationsButNotOverBreaks) {
  auto settings = plainSettings();
  const ViewedFile viewed(kOrla);
  const std::vector<StationPoint> points{stationPoint(0, 5), stationPoint(2, 0), stationPoint(0, 6),
                                         StationPoint{},     stationPoint(0, 7), stationPoint(0, 8)};
  TraceCanvas canvas;
  DrawStationPlot(canvas, plotSetup(viewed.file, settings, 102, kHeight), points);
  EXPECT_EQ(canvas.drawn, (Drawn{"0:1 1,50", "2:3 2,50", "0:1 1,50-3,40", "0:1 5,30", "0:1 5,30-6,20"}));
  settings.traceShown[0] = 0;
  DrawStationPlot(canvas, plotSetup(viewed.file, settings, 102, kHeight), points);
  EXPECT_EQ(canvas.drawn, (Drawn{"2:3 2,50"}));
}

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
        Walk{450, "44444", 351, 450, 50}, Walk{500, "41", 1, 100, 50}, Walk{500, "1", 1, 100, 50},
        Walk{500, "5", 401, 500, 50}, Walk{500, "51", 321, 420, 50}, Walk{500, "50", 1, 100, 50},
        // At the end of the line the view stays; one that is shorter than the step is not moved at all.
        Walk{60, "4", 1, 60, 50},
        // Shorter than the view: its end is brought to the right edge, from row 0 on by "end".
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

}  // namespace
}  // namespace kalmira
