#include "chart/profile_chart.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kalmira {
namespace {

constexpr double kPortraitColumn = 200.0;   // units
constexpr double kLandscapeColumn = 270.0;  // units
constexpr double kPortraitWidth = 240.0;    // units, of the whole chart
constexpr double kLandscapeWidth = 320.0;

constexpr int kIndexEnd = 10;  // grid lines have the indices 1 to 9

// TESK2: the traces of the auxiliary values are drawn with the pens of these.
constexpr std::size_t kFirstExtra = kTraces;
constexpr std::array<std::size_t, kProfilePoints - kTraces> kExtraPens{1, 5};

// Truncates; what no int can hold is brought to the nearest one.
int pixel(double position) {
  if (std::isnan(position)) return 0;
  constexpr double kLeast = std::numeric_limits<int>::min();
  constexpr double kMost = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(position, kLeast, kMost));
}

ProfileGrid fixedGrid(int height) {
  ProfileGrid grid{.gridCount = 4};
  for (std::size_t i = 1; i <= 4; ++i) {
    grid.gridY[i] = pixel(height - 0.2 * static_cast<double>(i) * (height + 1.0));
  }
  return grid;
}

// How many times the shorter side of the zero line goes into the longer one, rounded.
int sideRatio(int longer, int shorter) {
  if (shorter == 0) return std::numeric_limits<int>::max();
  return pixel(static_cast<double>(longer) / shorter + 0.5);
}

// Units from one grid line to the next; 0 when the zero line stands outside the chart.
float gridStep(int height, int zeroY, float minimum, float maximum) {
  const bool zeroIsLow = 2 * std::int64_t{zeroY} >= height;
  const float longer = std::abs(zeroIsLow ? maximum : minimum);
  const float shorter = std::abs(zeroIsLow ? minimum : maximum);
  const int ratio = zeroIsLow ? sideRatio(zeroY, height - zeroY) : sideRatio(height - zeroY, zeroY);
  if (ratio <= 0) return 0.0F;
  if (ratio > 4) return longer / 5.0F;
  return ratio == 1 ? shorter / 4.0F : longer / static_cast<float>(ratio);
}

struct Scale {
  float minimum = 0;
  float maximum = 1;
};

// A file may hold anything.
Scale scaleOf(float minimum, float maximum) {
  const float range = maximum - minimum;
  if (std::isfinite(range) && range > 0.0F) return {minimum, maximum};
  const bool usable = std::isfinite(minimum) && minimum + 1.0F > minimum;
  return usable ? Scale{minimum, minimum + 1.0F} : Scale{};
}

ProfileAxis axisOf(const Scale& scale, int height) {
  return {.top = scale.maximum, .scale = static_cast<float>(height) / (scale.maximum - scale.minimum)};
}

void takeScales(const Settings& settings, ProfileSetup& setup) {
  const std::array scales{scaleOf(settings.conductivityMinimum, settings.conductivityMaximum),
                          scaleOf(settings.inphaseMinimum, settings.inphaseMaximum),
                          scaleOf(settings.iceMinimum, settings.iceMaximum)};
  setup.axes = {.conductivity = axisOf(scales[0], setup.height),
                .inphase = axisOf(scales[1], setup.height),
                .ice = axisOf(scales[2], setup.height)};
  const auto& shown = scales.at(static_cast<std::size_t>(displayGroup(setup.kind, setup.iceOption, settings)));
  setup.axisMinimum = shown.minimum;
  setup.axisMaximum = shown.maximum;
  setup.grid = gridOf(setup.height, shown.minimum, shown.maximum, axisOf(shown, setup.height).scale);
}

std::size_t penOf(std::size_t trace) { return trace < kFirstExtra ? trace : kExtraPens.at(trace - kFirstExtra); }

void drawGrid(ChartCanvas& canvas, const ProfileSetup& setup, int left, int right) {
  if (!setup.showGrid) return;
  const auto& grid = setup.grid;
  for (int i = 1; i <= grid.gridCount; ++i) {
    const bool zeroLine = i == 1 && grid.spansZero;
    canvas.gridPiece(left, right, grid.gridY[static_cast<std::size_t>(i)], zeroLine ? 2 : 1);
  }
}

}  // namespace

ProfileGrid gridOf(int height, float minimum, float maximum, float pixelsPerUnit) {
  const bool spansZero = minimum < 0.0F && maximum > 0.0F;
  const bool usable = std::isfinite(minimum) && std::isfinite(maximum) && pixelsPerUnit > 0.0F;
  if (!spansZero || !usable) return fixedGrid(height);
  const auto rowOf = [&](float unitsBelowTop) { return pixel(static_cast<double>(unitsBelowTop * pixelsPerUnit)); };
  ProfileGrid grid{.gridCount = 1, .spansZero = true};
  grid.gridY[1] = std::clamp(rowOf(maximum), -1, height + 1);
  const float step = gridStep(height, grid.gridY[1], minimum, maximum);
  if (!(step > 0.0F)) return fixedGrid(height);
  int next = 2;
  const auto add = [&](int y) { grid.gridY[static_cast<std::size_t>(next++)] = y; };
  while (next < kIndexEnd) {
    const int y = rowOf(maximum - step * static_cast<float>(next - 1));
    if (y <= 0) break;
    add(y);
  }
  for (int below = 1; next < kIndexEnd; ++below) {
    const int y = rowOf(maximum + step * static_cast<float>(below));
    if (y >= height) break;
    add(y);
  }
  grid.gridCount = next - 1;
  return grid;
}

bool gridShown(const Settings& settings) { return indexOr(settings.profileGrid, 4, 1) != 0; }

int displayGroup(Kind kind, bool iceOption, const Settings& settings) {
  const auto& instrument = instrumentOf(kind);
  if (instrument.hasIce() && iceOption) return kIceAxis;
  return instrument.axes.size() > 1 && settings.profileGrid == 1 + kInphaseAxis ? kInphaseAxis : kConductivityAxis;
}

ProfileSetup profileSetupOf(Kind kind, bool iceOption, const Settings& settings, bool wideLayout, double scale,
                            int width, int height) {
  ProfileSetup setup{.kind = kind,
                     .iceOption = iceOption,
                     .secondCoil = instrumentOf(kind).unscaledInphase && settings.surveyListA == 1,
                     .width = std::max(width, 1),
                     .height = std::max(height, 1)};
  // On a screen wider than the layout the chart's left part grows: more of the line is seen.
  const int column = pixel((wideLayout ? kPortraitColumn : kLandscapeColumn) * scale) +
                     std::max(0, setup.width - pixel((wideLayout ? kPortraitWidth : kLandscapeWidth) * scale));
  setup.pointColumn = std::clamp(column, 0, std::max(0, setup.width - 3));
  takeScales(settings, setup);
  setup.showGrid = gridShown(settings);
  for (std::size_t i = 0; i < kTraces; ++i) {
    setup.traceShown[i] = indexOr(settings.traceShown[i], 2, 1);
    setup.traceWidth[i] = indexOr(settings.traceWidth[i] - 1, 4, 0) + 1;
    setup.traceColour[i] = settings.traceColour[i];
  }
  return setup;
}

TracePoints tracePointsOf(const ProfileSetup& setup, const ProfilePoint& point) {
  TracePoints points;
  const auto& instrument = instrumentOf(setup.kind);
  const bool ice = setup.iceOption && instrument.hasIce();
  const auto mapped = drawnTraces(instrument, ice, setup.secondCoil);
  MapProfilePoints(instrument, ice, setup.secondCoil, setup.axes, point.channels.value, point.extra1, point.extra2,
                   points.y);
  for (std::size_t i = 0; i < kProfilePoints; ++i) {
    // The auxiliary values are in every reading, and have no setting to hide them.
    const bool wanted = i >= kFirstExtra || (point.channels.present[i] != 0 && setup.traceShown[i] == 1);
    points.drawn[i] = wanted && mapped[i];
  }
  return points;
}

void ValueSpan::take(float value) {
  if (!std::isfinite(value)) return;
  least = any ? std::min(least, value) : value;
  largest = any ? std::max(largest, value) : value;
  any = true;
}

void ValueSpan::take(const ValueSpan& other) {
  if (!other.any) return;
  take(other.least);
  take(other.largest);
}

int traceColourOf(const ProfileSetup& setup, std::size_t trace) { return setup.traceColour[penOf(trace)]; }

void takeShown(const ProfileSetup& setup, const ProfilePoint& point, const TracePoints& points, ShownColumn& column) {
  const auto take = [&](std::size_t trace, int axis, float value) {
    if (!points.drawn[trace]) return;
    const int y = points.y[trace];
    auto& side = y < 0 ? column.above : y > setup.height ? column.below : column.inside;
    side.set(trace);
    column.spans.at(static_cast<std::size_t>(axis)).take(value);
  };
  for (const auto& channel : instrumentOf(setup.kind).channels) {
    take(channel.slot, channel.axis, point.channels.value[channel.slot]);
  }
  take(kFirstExtra, kConductivityAxis, point.extra1);
  take(kFirstExtra + 1, kConductivityAxis, point.extra2);
}

void DrawProfileAxes(ChartCanvas& canvas, const ProfileSetup& setup) { drawGrid(canvas, setup, 0, setup.width - 1); }

void DrawProfilePoint(ChartCanvas& canvas, const ProfileSetup& setup, TraceState& traces, const ProfilePoint& point) {
  const int x = setup.pointColumn;
  if (point.newStation) {
    canvas.scrollLeft(x);
    canvas.eraseColumns(x - 1, x + 1);
    drawGrid(canvas, setup, x - 1, x + 1);
  }
  const auto points = tracePointsOf(setup, point);
  if (point.newStation || traces.shown.empty()) traces.shown.emplace_back();
  while (traces.shown.size() > static_cast<std::size_t>(x) / 2 + 1) traces.shown.pop_front();
  takeShown(setup, point, points, traces.shown.back());
  for (std::size_t i = 0; i < kProfilePoints; ++i) {
    if (!points.drawn[i]) continue;
    const auto pen = penOf(i);
    const int colour = setup.traceColour[pen];
    const int width = setup.traceWidth[pen];
    if (traces.traceStarted[i] != 0) {
      canvas.line(x - 2, traces.previousY[i], x, points.y[i], colour, width);
    } else {
      canvas.point(x, points.y[i], colour, width);
    }
    traces.traceStarted[i] = 1;
    traces.previousY[i] = points.y[i];
  }
}

}  // namespace kalmira
