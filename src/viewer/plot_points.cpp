#include "viewer/plot_points.h"

#include <fmt/format.h>

#include <algorithm>
#include <bitset>

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
    if (!traces.drawn[i]) continue;
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
TracePoints endOf(const ProfileSetup& setup, const TraceSpans& spans, float ValueSpan::*end) {
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
  const auto least = endOf(setup, spans, &ValueSpan::least);
  const auto largest = endOf(setup, spans, &ValueSpan::largest);
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

}  // namespace

ProfileSetup plotSetup(const ScannedFile& file, const Settings& settings, int width, int height) {
  Settings asLogged = settings;
  asLogged.surveyListA = file.header.listA;
  return profileSetupOf(file.header.kind, file.wantsThickness, asLogged, true, 1.0, width, height);
}

void DrawStationPlot(ChartCanvas& canvas, const ProfileSetup& setup, std::span<const StationPoint> points) {
  canvas.clear();
  DrawProfileAxes(canvas, setup);
  Pens pens;
  int column = kFirstColumn;
  for (const auto& point : points) {
    if (point.valid) {
      drawStation(canvas, setup, tracesOf(setup, point), column, pens);
    } else {
      pens.down.reset();
    }
    ++column;
  }
}

std::vector<StationLabel> stationLabels(std::span<const StationPoint> points, int spacing) {
  std::vector<StationLabel> labels;
  int column = kFirstColumn;
  for (const auto& point : points) {
    const bool room = labels.empty() || column - labels.back().column >= spacing;
    if (point.valid && room) labels.push_back({column, fmt::format("{:.2f}", point.station)});
    ++column;
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

void DrawOverview(ChartCanvas& canvas, const ProfileSetup& setup, const Overview& overview) {
  canvas.clear();
  Strokes before{};
  int column = 0;
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
