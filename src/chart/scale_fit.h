#pragma once

#include <deque>
#include <optional>
#include <vector>

#include "chart/profile_chart.h"
#include "settings/display_options.h"

// A chart whose values lie beyond its scale says so, and finds the scale that shows them.
namespace kalmira {

// An arrow at the edge that values left the chart by.
struct EdgeArrow {
  std::size_t trace = 0;
  bool above = false;
  int columns = 0;  // from the newest column back to where it stands
  int rank = 0;     // how many other arrows stand there already
};
// Of traces that are away for long one in every `spacing` columns.
std::vector<EdgeArrow> edgeArrows(const std::deque<ShownColumn>& shown, int spacing);
// Its point touches the edge at column `x`; `size` rows of pixels, and one less than twice as wide.
void drawEdgeArrow(ChartCanvas& canvas, const ProfileSetup& setup, const EdgeArrow& arrow, int x, int size);

bool anyOffScale(const std::deque<ShownColumn>& shown);

// The ends of a scale on which `span` stands with a little room: round numbers, multiples of `leastStep` apart.
ScaleEnds fittedEnds(const ValueSpan& span, double leastStep);
// `settings` with the scales that hold what is shown, of those axes on which anything is; nothing where nothing is.
std::optional<Settings> fittedScales(Kind kind, const Settings& settings, const std::deque<ShownColumn>& shown);

}  // namespace kalmira
