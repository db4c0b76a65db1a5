#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "chart/profile_chart.h"
#include "settings/settings.h"
#include "viewer/line_extract.h"
#include "viewer/plot_view.h"

// The viewer's plot, on whatever a ChartCanvas draws on.
namespace kalmira {

// Colours, widths, shown flags, grid and scales are the operator's; kind and quantity are the file's. The result fits
// DrawProfileAxes. `width` and `height` of the plot in pixels.
ProfileSetup plotSetup(const ScannedFile& file, const Settings& settings, int width, int height);

// The settings with scales that hold the shown traces; one that no trace stands on stays as it is.
Settings fittedSettings(const ScannedFile& file, const TraceSpans& spans, const Settings& settings);

// Whose colour and width a trace is drawn with: its own, or for the auxiliary values those of other traces.
constexpr std::size_t penOf(std::size_t trace) {
  constexpr std::array<std::size_t, kProfilePoints - kTraces> kExtraPens{1, 5};
  return trace < kTraces ? trace : kExtraPens[trace - kTraces];
}

// Column of the first point; the plot's outermost columns are its frame.
inline constexpr int kFirstColumn = 1;

// Clears, draws the grid, then the traces of the rows of `view`, the first of which is points[0]. A trace is joined
// from station to station, never over a station where it has no value.
void DrawStationPlot(ChartCanvas& canvas, const ProfileSetup& setup, const PlotView& view,
                     std::span<const StationPoint> points);

// A trace left the scale there: an arrow at the edge points to where it is.
struct OffScaleMark {
  int column = 0;  // of the picture
  bool above = false;
  int colour = 0;  // the settings' 0x00BBGGRR
};
// One where a trace leaves and one each few marks' widths as long as it is away; `size` is a mark's width in columns.
std::vector<OffScaleMark> offScaleMarks(const ProfileSetup& setup, const PlotView& view,
                                        std::span<const StationPoint> points, int size);

struct StationLabel {
  int column = 0;    // of the station, in the picture
  std::string text;  // "12.50"
  int left = 0;      // of the text
};
struct StationTick {
  int column = 0;  // of the picture
  double station = 0;
};
std::vector<StationTick> stationTicks(const PlotView& view, std::span<const StationPoint> points);
// As many as find room below the plot, `width` columns wide, each as wide as `widthOf` says and a gap apart.
std::vector<StationLabel> stationLabels(std::span<const StationTick> ticks, int width,
                                        const std::function<int(const std::string&)>& widthOf, int gap);

// A whole line in few columns: the least and the largest value of each trace in each column.
struct Overview {
  int columns = 0;
  int rowCount = 0;
  std::vector<TraceSpans> spans;  // one entry a column
};
// Of a line shorter than `columns` every row has a column of its own; of a very long one a column may show a few rows
// of its neighbour's, too.
Overview lineOverview(const LineSummary& summary, int columns);
// Clears, then draws the shown traces as upright strokes that touch their neighbours, from column `left` on. `grid`:
// over the grid.
void DrawOverview(ChartCanvas& canvas, const ProfileSetup& setup, const Overview& overview, int left, bool grid);
std::vector<OffScaleMark> offScaleMarks(const ProfileSetup& setup, const Overview& overview, int left, int size);
// Of the overview drawn from kFirstColumn on.
std::vector<StationTick> stationTicks(const LineSummary& summary, const Overview& overview);

// From an overview column (0 to columns - 1) to the row in its middle, and from a row to its column. Both stay within
// the line; 0 when it is empty.
int overviewRow(const Overview& overview, int column);
int overviewColumn(const Overview& overview, int row);

}  // namespace kalmira
