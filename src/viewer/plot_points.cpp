#include "viewer/plot_points.h"

#include <fmt/format.h>

#include <algorithm>
#include <bitset>
#include <cmath>
#include <optional>
#include <utility>

#include "settings/display_options.h"
#include "viewer/row_files.h"

namespace kalmira {
namespace {

TracePoints tracesOf(const ProfileSetup& setup, const StationPoint& point) {
  return tracePointsOf(
      setup, {.newStation = false, .channels = point.channels, .extra1 = point.extras[0], .extra2 = point.extras[1]});
}

// Where each trace was last.
struct Pens {
  std::bitset<kProfilePoints> down;
  std::array<int, kProfilePoints> column{};
  std::array<int, kProfilePoints> y{};
};

void drawStation(ChartCanvas& canvas, const ProfileSetup& setup, const TracePoints& traces, int column, Pens& pens) {
  for (std::size_t i = 0; i < kProfilePoints; ++i) {
    if (!traces.drawn[i]) {
      pens.down.reset(i);
      continue;
    }
    const int colour = setup.traceColour[penOf(i)];
    const int width = setup.traceWidth[penOf(i)];
    if (pens.down[i]) {
      canvas.line(pens.column[i], pens.y[i], column, traces.y[i], colour, width);
    } else {
      canvas.point(column, traces.y[i], colour, width);
    }
    pens.down.set(i);
    pens.column[i] = column;
    pens.y[i] = traces.y[i];
  }
}

// The y of one end of every trace's span.
TracePoints endOf(const ProfileSetup& setup, const TraceSpans& spans, float TraceSpan::*end) {
  StationPoint point;
  for (std::size_t slot = 0; slot < kSlots; ++slot) {
    point.channels.present[slot] = spans[slot].any() ? 1 : 0;
    if (spans[slot].any()) point.channels.value[slot] = spans[slot].*end;
  }
  for (std::size_t i = 0; i < point.extras.size(); ++i) {
    if (spans[kSlots + i].any()) point.extras[i] = spans[kSlots + i].*end;
  }
  return tracesOf(setup, point);
}

// Pixels from `top` down to `bottom` that a trace covers in one column.
struct Stroke {
  bool any = false;
  int top = 0;
  int bottom = 0;
};
using Strokes = std::array<Stroke, kProfilePoints>;

Strokes strokesOf(const ProfileSetup& setup, const TraceSpans& spans) {
  const auto least = endOf(setup, spans, &TraceSpan::least);
  const auto largest = endOf(setup, spans, &TraceSpan::largest);
  Strokes strokes;
  for (std::size_t i = 0; i < kProfilePoints; ++i) {
    strokes[i] = {.any = spans[i].any() && least.drawn[i], .top = largest.y[i], .bottom = least.y[i]};
  }
  return strokes;
}

void drawStrokes(ChartCanvas& canvas, const ProfileSetup& setup, int column, const Strokes& strokes,
                 const Strokes& before) {
  for (std::size_t i = 0; i < kProfilePoints; ++i) {
    if (!strokes[i].any) continue;
    auto [any, top, bottom] = strokes[i];
    if (before[i].any) {
      top = std::min(top, before[i].bottom);
      bottom = std::max(bottom, before[i].top);
    }
    canvas.line(column, top, column, bottom, setup.traceColour[penOf(i)], 1);
  }
}

constexpr int kMarksApart = 4;  // marks' widths, as long as a trace is away

// Puts marks where traces leave the scale, each beside the one before.
class Marks {
 public:
  Marks(const ProfileSetup& setup, int size) : setup_(setup), size_(std::max(1, size)) {}

  // The traces' highest and lowest y in a column.
  void takeColumn(int column, const TracePoints& highest, const TracePoints& lowest) {
    for (std::size_t i = 0; i < kProfilePoints; ++i) {
      take(column, i, true, highest.drawn[i] && highest.y[i] < 0);
      take(column, i, false, lowest.drawn[i] && lowest.y[i] > setup_.height);
    }
  }
  std::vector<OffScaleMark> made;

 private:
  void take(int column, std::size_t trace, bool above, bool away) {
    auto& last = last_[trace][above ? 1 : 0];
    auto& used = used_[above ? 1 : 0];
    const bool was = std::exchange(away_[trace][above ? 1 : 0], away);
    const int apart = (was ? kMarksApart : 1) * size_;
    if (!away || (last && column - *last < apart)) return;
    last = used ? std::max(column, *used + size_) : column;
    used = last;
    made.push_back({.column = *last, .above = above, .colour = setup_.traceColour[penOf(trace)]});
  }

  using Edges = std::array<std::optional<int>, 2>;
  const ProfileSetup& setup_;
  int size_;
  std::array<Edges, kProfilePoints> last_{};
  std::array<std::array<bool, 2>, kProfilePoints> away_{};
  Edges used_{};
};

constexpr double kRoom = 0.03;   // of the values' range, beyond each end
constexpr double kSteps = 10.0;  // that the scale is made of, about

// The smallest of 1, 2, 5, 10, 20 ... times `unit` that is not below `wanted`.
double roundStep(double wanted, double unit) {
  double step = unit;
  for (int turn = 0; step < wanted; ++turn) step *= turn % 3 == 1 ? 2.5 : 2.0;
  return step;
}

// Ends at round numbers, with a little room at both so that no trace runs along an edge. Whole numbers, of a thickness
// in metres tenths from 0 up.
ScaleEnds endsAround(const TraceSpan& values, bool thickness) {
  constexpr double kFarthest = 1e9;
  const double low = std::clamp(static_cast<double>(values.least), -kFarthest, kFarthest);
  const double high = std::clamp(static_cast<double>(values.largest), low, kFarthest);
  const double room = (high - low) * kRoom;
  const double step = roundStep((high - low) / kSteps, thickness ? 0.1 : 1.0);
  double minimum = std::floor((low - room) / step) * step;
  double maximum = std::ceil((high + room) / step) * step;
  if (maximum - minimum < 2.0 * step) minimum -= step, maximum += step;
  if (thickness) minimum = std::max(minimum, 0.0);
  return {static_cast<float>(minimum), static_cast<float>(maximum)};
}

ScaleEnds fitted(const Instrument& instrument, bool ice, const ProfileSetup& setup, int axis, const TraceSpans& spans,
                 const ScaleEnds& before) {
  TraceSpan values;
  for (const auto& channel : channelsOf(instrument, ice)) {
    if (channel.axis == axis && setup.traceShown[channel.slot] == 1) values.take(spans[channel.slot]);
  }
  for (std::size_t i = kSlots; axis == kConductivityAxis && setup.secondCoil && i < kProfilePoints; ++i)
    values.take(spans[i]);
  if (!values.any()) return before;
  const bool thickness = axis == kIceAxis || (axis == kConductivityAxis && instrument.firstAxisIsThickness);
  return endsAround(values, thickness);
}

}  // namespace

ProfileSetup plotSetup(const ScannedFile& file, const Settings& settings, int width, int height) {
  Settings asLogged = settings;
  asLogged.surveyListA = file.header.listA;
  return profileSetupOf(file.header.kind, file.wantsThickness, asLogged, true, 1.0, width, height);
}

Settings fittedSettings(const ScannedFile& file, const TraceSpans& spans, const Settings& settings) {
  Settings result = settings;
  const auto& instrument = instrumentOf(file.header.kind);
  const auto setup = plotSetup(file, settings, 1, 1);
  const auto fit = [&](int axis, float Settings::*minimum, float Settings::*maximum) {
    const ScaleEnds before{settings.*minimum, settings.*maximum};
    const auto ends = fitted(instrument, file.wantsThickness, setup, axis, spans, before);
    result.*minimum = ends.minimum;
    result.*maximum = ends.maximum;
  };
  fit(kConductivityAxis, &Settings::conductivityMinimum, &Settings::conductivityMaximum);
  fit(kInphaseAxis, &Settings::inphaseMinimum, &Settings::inphaseMaximum);
  fit(kIceAxis, &Settings::iceMinimum, &Settings::iceMaximum);
  return result;
}

void DrawStationPlot(ChartCanvas& canvas, const ProfileSetup& setup, const PlotView& view,
                     std::span<const StationPoint> points) {
  canvas.clear();
  DrawProfileAxes(canvas, setup);
  Pens pens;
  int row = view.firstRow;
  for (const auto& point : points) {
    const int column = kFirstColumn + view.columnOf(row++);
    if (point.valid) {
      drawStation(canvas, setup, tracesOf(setup, point), column, pens);
    } else {
      pens.down.reset();
    }
  }
}

std::vector<OffScaleMark> offScaleMarks(const ProfileSetup& setup, const PlotView& view,
                                        std::span<const StationPoint> points, int size) {
  Marks marks(setup, size);
  int row = view.firstRow;
  for (const auto& point : points) {
    const auto traces = point.valid ? tracesOf(setup, point) : TracePoints{};
    marks.takeColumn(kFirstColumn + view.columnOf(row++), traces, traces);
  }
  return std::move(marks.made);
}

std::vector<OffScaleMark> offScaleMarks(const ProfileSetup& setup, const Overview& overview, int left, int size) {
  Marks marks(setup, size);
  int column = left;
  for (const auto& spans : overview.spans) {
    auto highest = endOf(setup, spans, &TraceSpan::largest);
    auto lowest = endOf(setup, spans, &TraceSpan::least);
    for (std::size_t i = 0; i < kProfilePoints; ++i) {
      highest.drawn[i] = highest.drawn[i] && spans[i].any();
      lowest.drawn[i] = lowest.drawn[i] && spans[i].any();
    }
    marks.takeColumn(column++, highest, lowest);
  }
  return std::move(marks.made);
}

std::vector<StationTick> stationTicks(const PlotView& view, std::span<const StationPoint> points) {
  std::vector<StationTick> ticks;
  int row = view.firstRow;
  for (const auto& point : points) {
    if (point.valid) ticks.push_back({kFirstColumn + view.columnOf(row), point.station});
    ++row;
  }
  return ticks;
}

std::vector<StationTick> stationTicks(const LineSummary& summary, const Overview& overview) {
  std::vector<StationTick> ticks;
  int row = 1;
  for (const auto& block : summary.blocks()) {
    if (block.hasStation) ticks.push_back({kFirstColumn + overviewColumn(overview, row), block.station});
    row += summary.rowsPerBlock();
  }
  return ticks;
}

std::vector<StationLabel> stationLabels(std::span<const StationTick> ticks, int width,
                                        const std::function<int(const std::string&)>& widthOf, int gap) {
  std::vector<StationLabel> labels;
  int free = 0;
  for (const auto& tick : ticks) {
    // A label that begins left of its station still covers it: what is too near needs no text to be known.
    if (tick.column < free) continue;
    StationLabel label{.column = tick.column, .text = fmt::format("{:.2f}", tick.station)};
    const int wide = widthOf(label.text);
    label.left = std::clamp(tick.column - wide / 2, 0, std::max(0, width - wide));
    if (label.left < free) continue;
    free = label.left + wide + gap;
    labels.push_back(std::move(label));
  }
  return labels;
}

Overview lineOverview(const LineSummary& summary, int columns) {
  const int rows = summary.rowCount();
  Overview overview{.columns = std::max(0, std::min(columns, rows)), .rowCount = rows, .spans = {}};
  overview.spans.resize(static_cast<std::size_t>(overview.columns));
  int row = 1;
  for (const auto& block : summary.blocks()) {
    const int next = row + summary.rowsPerBlock();
    for (int column = overviewColumn(overview, row); column <= overviewColumn(overview, next - 1); ++column) {
      auto& spans = overview.spans[static_cast<std::size_t>(column)];
      for (std::size_t i = 0; i < spans.size(); ++i) spans[i].take(block.spans[i]);
    }
    row = next;
  }
  return overview;
}

void DrawOverview(ChartCanvas& canvas, const ProfileSetup& setup, const Overview& overview, int left, bool grid) {
  canvas.clear();
  if (grid) DrawProfileAxes(canvas, setup);
  Strokes before{};
  int column = left;
  for (const auto& spans : overview.spans) {
    const auto strokes = strokesOf(setup, spans);
    drawStrokes(canvas, setup, column, strokes, before);
    before = strokes;
    ++column;
  }
}

int overviewRow(const Overview& overview, int column) {
  if (overview.columns < 1) return 0;
  const std::int64_t columns = overview.columns;
  const std::int64_t at = std::clamp(column, 0, overview.columns - 1);
  const auto firstOf = [&](std::int64_t of) { return (of * overview.rowCount + columns - 1) / columns; };
  return static_cast<int>(1 + (firstOf(at) + firstOf(at + 1) - 1) / 2);
}

int overviewColumn(const Overview& overview, int row) {
  if (overview.columns < 1) return 0;
  const std::int64_t at = std::clamp(row, 1, overview.rowCount) - 1;
  return static_cast<int>(at * overview.columns / overview.rowCount);
}

}  // namespace kalmira
