#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "chart/profile_chart.h"
#include "settings/settings.h"
#include "viewer/line_extract.h"

// The viewer's plot: one station a pixel column, on whatever a ChartCanvas draws on.
namespace kalmira {

// Colours, widths, shown flags, grid and scales are the operator's; kind and quantity are the file's. The result fits
// DrawProfileAxes. `width` and `height` of the plot in pixels.
ProfileSetup plotSetup(const ScannedFile& file, const Settings& settings, int width, int height);

// Whose colour and width a trace is drawn with: its own, or for the auxiliary values those of other traces.
constexpr std::size_t penOf(std::size_t trace) {
  constexpr std::array<std::size_t, kProfilePoints - kTraces> kExtraPens{1, 5};
  return trace < kTraces ? trace : kExtraPens[trace - kTraces];
}

// Column of the first point; the plot's outermost columns are its frame.
inline constexpr int kFirstColumn = 1;

// Clears, draws the grid, then the traces; points[0] stands in kFirstColumn. A trace is joined over stations where it
// has no value, never over a break row.
void DrawStationPlot(ChartCanvas& canvas, const ProfileSetup& setup, std::span<const StationPoint> points);

struct StationLabel {
  int column = 0;    // of the station
  std::string text;  // "12.50"
};
// Labels at stations at least `spacing` columns apart, for the plot's lower edge.
std::vector<StationLabel> stationLabels(std::span<const StationPoint> points, int spacing);

// A whole line in few columns: the least and the largest value of each trace in each column.
struct Overview {
  int columns = 0;
  int rowCount = 0;
  std::vector<TraceSpans> spans;  // one entry a column
};
// Of a line shorter than `columns` every row has a column of its own; of a very long one a column may show a few rows
// of its neighbour's, too.
Overview lineOverview(const LineSummary& summary, int columns);
// Clears, then draws the shown traces as upright strokes that touch their neighbours. No grid.
void DrawOverview(ChartCanvas& canvas, const ProfileSetup& setup, const Overview& overview);

// From an overview column (0 to columns - 1) to the row in its middle, and from a row to its column. Both stay within
// the line; 0 when it is empty.
int overviewRow(const Overview& overview, int column);
int overviewColumn(const Overview& overview, int row);

}  // namespace kalmira
