#include "chart/profile_redraw.h"

#include <algorithm>
#include <bitset>
#include <cmath>
#include <optional>
#include <vector>

#include "datafile/record_parse.h"
#include "datafile/record_reader.h"

namespace kalmira {
namespace {

// Columns left of the chart that are drawn too: a line reaches two columns back, its pen two more.
constexpr int kMarginColumns = 4;

// A trace that comes back after a rest is joined to its last point, wherever that is in the line. A rest longer than
// this many records (minutes, with everything logged at full rate) is not bridged: what is found there would not be
// worth the wait.
constexpr int kMostOlderRecords = 4096;

// No file that was recorded needs as many for one chart; a damaged one may, and must not hold up the screen.
constexpr int kMostRecords = 200000;

using Traces = std::bitset<kProfilePoints>;

// What live drawing did, in order.
struct Step {
  enum class What { point, tracesCleared, recordingStarted } what = What::point;
  ProfilePoint point{};
};

// What the trip back through the file brings home.
struct Found {
  std::vector<Step> steps;  // newest first
  // Traces whose oldest point found is joined to a still older one, if the line has one.
  Traces joined;
  std::array<int, kProfilePoints> joinedColumn{};  // stations from that point to the newest
  Traces seen;
  bool cleared = false;  // somewhere among the steps all traces began anew
  bool lineBegins = false;
};

// The records of the current line, newest first, with the calibration factors that held at each.
class LineBackwards {
 public:
  explicit LineBackwards(const Session& session) : session_(session), factors_(session.factorsThatHold()) {}

  bool open() {
    if (!session_.file.isOpen() || reader_.open(session_.file.path()).kind != FileErrorKind::none) return false;
    if (reader_.recordLength() != session_.instrument.fileRecordLength) return false;
    decoder_ = ReadingDecoder(reader_.header(), session_.setup.teskRangeTimes10);
    reader_.seekToEnd();
    return true;
  }

  // The step before, up to `most` records read in all; nothing at the line's begin (or that limit).
  std::optional<Step> previous(int most) {
    Record record;
    while (recordsRead < most && reader_.previous(record)) {
      ++recordsRead;
      switch (recordTypeOf(record.bytes)) {
        case RecordType::reading: return Step{.point = pointOf(record.bytes)};
        case RecordType::event:
          if (auto step = eventStep(parseNote(record.bytes))) return step;
          break;
        case RecordType::station: return Step{.what = Step::What::tracesCleared};
        case RecordType::calibration: goBackTo(record.bytes); break;
        case RecordType::lineName: lineBegins = true; return std::nullopt;
        default: break;
      }
    }
    lineBegins = recordsRead < most;
    return std::nullopt;
  }

  int recordsRead = 0;
  bool lineBegins = false;

 private:
  // newStation stands for "the first reading at its station" until the steps are drawn.
  ProfilePoint pointOf(std::string_view record) {
    decoder_.setCalibration(factors_);
    auto point = profilePointOf(decoder_.decode(readingText(record)));
    point.newStation = readingRepeat(record) == 1;
    return point;
  }

  static std::optional<Step> eventStep(const std::string& text) {
    if (text == "$STARTED") return Step{.what = Step::What::recordingStarted};
    if (text == "$CONN BREAK") return Step{.what = Step::What::tracesCleared};
    return std::nullopt;
  }

  // Readings before this record were taken with the factor that it replaced. The file has three decimals of it; the
  // session knows the factors that were replaced last to the full.
  void goBackTo(std::string_view record) {
    const auto calibration = parseCalibration(record);
    if (!calibration) return;
    const auto index = static_cast<std::size_t>(calibration->channel - 1);
    const float known = session_.calibration.deletedCalibration[index];
    const bool same = std::abs(static_cast<double>(known) - calibration->replaced) <= 0.0006;
    factors_[index] = same ? known : static_cast<float>(calibration->replaced);
  }

  const Session& session_;
  std::array<float, 6> factors_;
  RecordReader reader_;
  ReadingDecoder decoder_{Header1{}};
};

void takePoint(const ProfileSetup& setup, const ProfilePoint& point, int column, Found& found) {
  const auto points = tracePointsOf(setup, point);
  for (std::size_t i = 0; i < kProfilePoints; ++i) {
    if (!points.drawn[i]) continue;
    found.seen.set(i);
    found.joined.set(i);
    found.joinedColumn[i] = column;
  }
}

// The steps that the chart has room for.
Found findSteps(const ProfileSetup& setup, LineBackwards& line) {
  Found found;
  const int columns = setup.pointColumn / 2 + kMarginColumns;
  int column = 0;
  bool moves = false;  // the reading found last moved the chart on, unless it was the first since a start
  while (const auto step = line.previous(kMostRecords)) {
    if (step->what == Step::What::point) {
      if (moves) ++column;
      moves = step->point.newStation;
      takePoint(setup, step->point, column, found);
    } else {
      if (step->what == Step::What::recordingStarted) moves = false;
      found.joined.reset();
      found.cleared = true;
    }
    found.steps.push_back(*step);
    if (column > columns) return found;
  }
  found.lineBegins = line.lineBegins;
  return found;
}

// Traces whose last point lies further back than what is drawn, but shows in it or in what comes next.
Traces openTraces(const ProfileSetup& setup, const Found& found, const std::array<int, kProfilePoints>& started) {
  Traces open;
  if (found.lineBegins) return open;
  const int lastVisible = setup.pointColumn / 2 + kMarginColumns / 2;
  for (std::size_t i = 0; i < kProfilePoints; ++i) {
    const bool joinShows = found.joined[i] && found.joinedColumn[i] <= lastVisible;
    const bool resting = !found.seen[i] && !found.cleared && started[i] != 0;
    open[i] = joinShows || resting;
  }
  return open;
}

// Looks for the points that the open traces continue, and starts those traces there.
void findOlderPoints(const ProfileSetup& setup, Traces open, LineBackwards& line, TraceState& traces) {
  const int most = line.recordsRead + kMostOlderRecords;
  while (open.any()) {
    const auto step = line.previous(most);
    if (!step || step->what != Step::What::point) return;
    const auto points = tracePointsOf(setup, step->point);
    for (std::size_t i = 0; i < kProfilePoints; ++i) {
      if (!open[i] || !points.drawn[i]) continue;
      traces.traceStarted[i] = 1;
      traces.previousY[i] = points.y[i];
      open.reset(i);
    }
  }
}

int drawSteps(const ProfileSetup& setup, const std::vector<Step>& steps, ChartCanvas& canvas, TraceState& traces) {
  int drawn = 0;
  bool anyPoint = false;  // since recording was started
  for (const auto& step : steps) {
    if (step.what != Step::What::point) {
      traces.traceStarted.fill(0);
      if (step.what == Step::What::recordingStarted) anyPoint = false;
      continue;
    }
    auto point = step.point;
    point.newStation = point.newStation && anyPoint;
    anyPoint = true;
    DrawProfilePoint(canvas, setup, traces, point);
    ++drawn;
  }
  return drawn;
}

}  // namespace

RedrawCost RedrawProfileFromFile(Session& session, const ProfileSetup& setup, ChartCanvas& canvas, TraceState& traces) {
  const auto startedBefore = traces.traceStarted;
  traces.traceStarted.fill(0);
  traces.shown.clear();
  canvas.clear();
  DrawProfileAxes(canvas, setup);
  LineBackwards line(session);
  if (!line.open()) return {};
  auto found = findSteps(setup, line);
  std::reverse(found.steps.begin(), found.steps.end());
  findOlderPoints(setup, openTraces(setup, found, startedBefore), line, traces);
  const int drawn = drawSteps(setup, found.steps, canvas, traces);
  return {.recordsRead = line.recordsRead, .readingsDrawn = drawn};
}

}  // namespace kalmira
