#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <deque>

#include "instruments/catalogue.h"
#include "instruments/profile_map.h"
#include "logging/session_view.h"
#include "settings/settings.h"

// The scrolling profile, drawn on whatever a ChartCanvas draws on. Pixels count from the chart's upper left corner,
// down and to the right. The grid is shared with the viewer's plot.
namespace kalmira {

// What the profile needs of a picture. Colours of traces are the settings' 0x00BBGGRR. The y of lines and points may be
// any number, however far outside; x stands in the chart or a few columns left of it.
class ChartCanvas {
 public:
  ChartCanvas() = default;
  ChartCanvas(const ChartCanvas&) = delete;
  ChartCanvas& operator=(const ChartCanvas&) = delete;
  virtual ~ChartCanvas() = default;

  virtual void clear() = 0;
  // Moves what stands from column 2 to x + 1 to the left by two. Right of x + 1 nothing but grid is ever drawn.
  virtual void scrollLeft(int x) = 0;
  virtual void eraseColumns(int left, int right) = 0;                            // both included
  virtual void gridPiece(int left, int right, int y, int pixels) = 0;            // rows y to y + pixels - 1
  virtual void line(int x1, int y1, int x2, int y2, int colour, int width) = 0;  // both ends included
  virtual void point(int x, int y, int colour, int width) = 0;
};

struct ProfileGrid {
  int gridCount = 0;            // last index used
  std::array<int, 10> gridY{};  // from index 1 on; 1 is the zero line when the scale spans zero
  bool spansZero = false;
};
// `height` in pixels, above 0. A scale that spans zero has its lines at round parts of its longer side; any other (or
// one that makes no sense) four lines at fifths of the height.
ProfileGrid gridOf(int height, float minimum, float maximum, float pixelsPerUnit);

// The scale that the axis shows: 0 conductivity (GLACO: thickness), 1 inphase, 2 ice thickness. profileGrid of the
// settings is 0 without grid lines and 1 plus the group with them; a kind that draws only one scale shows that.
int displayGroup(Kind kind, bool iceOption, const Settings& settings);
bool gridShown(const Settings& settings);

// How one session's profile is drawn on a chart of this size.
struct ProfileSetup {
  Kind kind = Kind::orla;
  bool iceOption = false;
  bool secondCoil = false;  // TESK2: two further traces
  int width = 0;
  int height = 0;
  int pointColumn = 0;  // x of the newest point
  ProfileAxes axes{};
  ProfileGrid grid{};
  float axisMinimum = 0, axisMaximum = 0;  // of the scale that the axis shows
  bool showGrid = true;
  std::array<int, kTraces> traceShown{};
  std::array<int, kTraces> traceWidth{};   // pixels, 1 to 4
  std::array<int, kTraces> traceColour{};  // 0x00BBGGRR
};
// `scale`: screen pixels a unit. The newest point stands at 200 units in the wide layout (portrait), else 270, but
// always with two columns right of it. A scale whose maximum is not above its minimum is taken to be one unit high.
ProfileSetup profileSetupOf(Kind kind, bool iceOption, const Settings& settings, bool wideLayout, double scale,
                            int width, int height);

// Whose colour a trace is drawn in: its own, or for an auxiliary value that of another trace.
int traceColourOf(const ProfileSetup& setup, std::size_t trace);

// The least and the largest of some values.
struct ValueSpan {
  float least = 0, largest = 0;
  bool any = false;
  void take(float value);  // what is no number is left out
  void take(const ValueSpan& other);
};

// What stands in one column of a chart: for arrows, legend and fitted scales.
struct ShownColumn {
  std::bitset<kProfilePoints> inside, above, below;  // traces with a value on the chart, over and under it
  std::array<ValueSpan, 3> spans;                    // by axis
};

// Where the traces stand. traceStarted is the session's own: commands and the watchdog clear it.
struct TraceState {
  std::array<int, kProfilePoints>& traceStarted;
  std::array<int, kProfilePoints> previousY{};
  std::deque<ShownColumn> shown{};  // the columns that the chart shows, the newest last
};

// The traces that a reading has a point on: present in it, drawn for its kind, and shown.
struct TracePoints {
  std::array<int, kProfilePoints> y{};
  std::array<bool, kProfilePoints> drawn{};
};
TracePoints tracePointsOf(const ProfileSetup& setup, const ProfilePoint& point);
// Adds a reading, with its points, to what its column shows.
void takeShown(const ProfileSetup& setup, const ProfilePoint& point, const TracePoints& points, ShownColumn& column);

// Draws the whole grid; labels are the window's.
void DrawProfileAxes(ChartCanvas& canvas, const ProfileSetup& setup);
// One reading: scrolls first when it begins a new station.
void DrawProfilePoint(ChartCanvas& canvas, const ProfileSetup& setup, TraceState& traces, const ProfilePoint& point);

}  // namespace kalmira
