#pragma once

#include "chart/profile_chart.h"
#include "logging/session.h"

namespace kalmira {

// What a redraw cost, for those who watch over it.
struct RedrawCost {
  int recordsRead = 0;
  int readingsDrawn = 0;
};

// Draws the profile of the session's data file anew: of its current line, the readings that fit, placed and joined as
// they were when they came. Reads backwards from the end and no further than it must, so that it costs what is shown,
// not what the file holds. Leaves the session's traceStarted and `traces` as the last reading left them. Without a
// file, or when it cannot be read, the chart is left empty. Records that wait in memory for room on the disk are not
// drawn.
RedrawCost RedrawProfileFromFile(Session& session, const ProfileSetup& setup, ChartCanvas& canvas, TraceState& traces);

}  // namespace kalmira
