#include <fmt/format.h>
#include <gmock/gmock.h>

#include <limits>
#include <optional>

#include "chart/chart_picture.h"
#include "chart/profile_chart.h"
#include "chart/profile_redraw.h"
#include "chart/scale_fit.h"
#include "datafile/record_format.h"
#include "instruments/profile_map.h"
#include "logging/calibration.h"
#include "logging/session_link.h"
#include "sim/encode.h"
#include "sim/survey.h"
#include "support/session_fixture.h"

namespace kalmira {
namespace {

using testing::ElementsAre;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();

std::vector<int> linesOf(const ProfileGrid& grid) {
  return {grid.gridY.begin() + 1, grid.gridY.begin() + 1 + grid.gridCount};
}

// 4 pixels a unit, sides of 4 to 1; 1.4 to 1, which counts as equal; 15 to 1: fifths of the longer side.
TEST(ProfileGrid, LinesByScale) {
  using Case = std::tuple<int, float, float, std::vector<int>>;
  for (const auto& [height, minimum, maximum, lines] :
       {Case{200, 0, 100, {159, 119, 79, 39}}, Case{200, -10, 40, {160, 120, 80, 40}},
        Case{240, -10, 14, {140, 115, 90, 65, 40, 15, 165, 190, 215}}, Case{160, -10, 150, {150, 120, 90, 60, 30}}}) {
    const auto grid = gridOf(height, minimum, maximum, static_cast<float>(height) / (maximum - minimum));
    EXPECT_EQ(linesOf(grid), lines) << minimum << " to " << maximum;
  }
  for (const float pixelsPerUnit : {0.0F, -1.0F, kInfinity, kNoNumber})
    EXPECT_EQ(linesOf(gridOf(100, -1, 1, pixelsPerUnit)), (std::vector{79, 59, 39, 19}));
}

TEST(ProfileSetup, AxesFollowTheSettings) {
  Settings settings;
  settings.conductivityMinimum = -10;
  settings.conductivityMaximum = 40;
  settings.inphaseMinimum = 5;
  settings.inphaseMaximum = 5;  // a bad file's
  settings.iceMinimum = kNoNumber;
  settings.traceWidth[1] = 9;
  settings.profileGrid = 2;
  const auto setup = profileSetupOf(Kind::orla, false, settings, true, 1.5, 360, 200);
  EXPECT_EQ(setup.axes.conductivity.scale, 4.0F);
  EXPECT_EQ(setup.axes.inphase.scale, 200.0F);
  EXPECT_EQ(setup.axes.ice.top, 1.0F);
  EXPECT_EQ(setup.axisMinimum, 5.0F) << "the grid is the inphase's";
  EXPECT_EQ(setup.traceWidth[1], 1);
  EXPECT_EQ(profileSetupOf(Kind::vardo, false, settings, false, 1.5, 480, 200).axisMinimum, -10.0F) << "one scale";
  EXPECT_EQ(profileSetupOf(Kind::orla, true, settings, false, 1.5, 480, 200).axisMinimum, 0.0F) << "ice";
  EXPECT_EQ(profileSetupOf(Kind::orla, false, settings, true, 4.0, 0, 0).height, 1);
}

// Conductivity: 100 - v; inphase: (5 - v) x 20; ice: (3 - v) x 100.
TEST(ProfileSetup, EachKindDrawsItsOwnTracesOnTheirAxes) {
  struct Case {
    Kind kind;
    bool ice;
    int listA;
    std::string drawn;  // trace and y
  };
  Settings settings;
  settings.conductivityMaximum = 100;
  settings.inphaseMinimum = 0;
  settings.inphaseMaximum = 5;
  settings.iceMinimum = 2;
  settings.iceMaximum = 3;
  ProfilePoint all;
  all.channels.present.fill(1);
  all.channels.value = {0, 1, 2, 3, 0.5F, 5, 6, 7};
  all.extra1 = 9;
  all.extra2 = 8;
  for (const auto& [kind, ice, listA, drawn] :
       {Case{Kind::orla, false, 1, "0:100 1:99 2:60 3:40 "}, Case{Kind::orla, true, 0, "4:250 "},
        Case{Kind::teskb, false, 0, "0:100 1:99 2:60 3:40 "}, Case{Kind::teskdd, false, 0, "0:100 1:99 2:60 3:40 "},
        Case{Kind::tesk, true, 0, "0:100 1:99 2:60 3:40 "},
        Case{Kind::vardo, false, 0, "0:100 1:99 2:98 3:97 4:99 5:95 "}, Case{Kind::mirka, false, 0, "0:100 2:98 "},
        Case{Kind::glaco, false, 0, "0:100 2:60 "},
        Case{Kind::tesk2, false, 0, "0:100 1:99 2:60 3:40 4:99 5:95 6:-20 7:-40 "},
        Case{Kind::tesk2, false, 1, "0:100 1:99 2:60 3:40 4:99 5:95 6:-20 7:-40 8:91 9:92 "}}) {
    settings.surveyListA = listA;
    const auto points = tracePointsOf(profileSetupOf(kind, ice, settings, true, 1, 240, 100), all);
    std::string text;
    for (std::size_t i = 0; i < kProfilePoints; ++i) {
      if (points.drawn[i]) text += std::to_string(i) + ':' + std::to_string(points.y[i]) + ' ';
    }
    EXPECT_EQ(text, drawn) << instrumentOf(kind).name;
  }
}

TEST(ProfileMapping, TruncatesAndKeepsWithinInt) {
  std::array<int, kProfilePoints> points{};
  MapProfilePoints(instrumentOf(Kind::vardo), false, false, {.conductivity = {10, 2}, .inphase = {5, 4}, .ice = {3, 1}},
                   {9.3F, 10.7F, kNoNumber, -1e30F, kInfinity, -kInfinity, 0, 0}, 9, 8, points);
  constexpr int kMost = std::numeric_limits<int>::max();
  EXPECT_THAT(std::vector(points.begin(), points.begin() + 6), ElementsAre(1, -1, 0, kMost, -kMost - 1, kMost));
}

// Writes down what is drawn.
class ListingCanvas final : public ChartCanvas {
 public:
  void clear() override { add("clear"); }
  void scrollLeft(int x) override { add("scroll", x); }
  void eraseColumns(int left, int right) override { add("erase", left, right); }
  void gridPiece(int left, int right, int y, int pixels) override { add("grid", left, right, y, pixels); }
  void line(int x1, int y1, int x2, int y2, int, int width) override { add("line", x1, y1, x2, y2, width); }
  void point(int x, int y, int, int width) override { add("point", x, y, width); }
  std::vector<std::string> take() { return std::exchange(calls_, {}); }

 private:
  template <class... Numbers>
  void add(std::string text, Numbers... numbers) {
    ((text += " " + std::to_string(numbers)), ...);
    calls_.push_back(text);
  }
  std::vector<std::string> calls_;
};

ProfilePoint reading(float conductivity, bool newStation) {
  ProfilePoint point;
  point.newStation = newStation;
  point.channels.value[0] = conductivity;
  point.channels.present[0] = 1;
  return point;
}

TEST(DrawProfilePoint, AStationScrollsOnceAndItsReadingsShareAColumn) {
  Settings settings;
  settings.conductivityMinimum = -10;
  settings.conductivityMaximum = 40;
  settings.traceWidth[0] = 3;
  const auto setup = profileSetupOf(Kind::orla, false, settings, true, 1, 240, 200);
  std::array<int, kProfilePoints> started{};
  TraceState traces{.traceStarted = started};
  ListingCanvas canvas;
  DrawProfileAxes(canvas, setup);
  EXPECT_THAT(canvas.take(), ElementsAre("grid 0 239 160 2", "grid 0 239 120 1", "grid 0 239 80 1", "grid 0 239 40 1"));
  DrawProfilePoint(canvas, setup, traces, reading(30, false));
  EXPECT_THAT(canvas.take(), ElementsAre("point 200 40 3"));
  DrawProfilePoint(canvas, setup, traces, reading(20, true));
  EXPECT_THAT(canvas.take(), ElementsAre("scroll 200", "erase 199 201", "grid 199 201 160 2", "grid 199 201 120 1",
                                         "grid 199 201 80 1", "grid 199 201 40 1", "line 198 40 200 80 3"));
  DrawProfilePoint(canvas, setup, traces, reading(10, false));
  DrawProfilePoint(canvas, setup, traces, reading(0, false));
  EXPECT_THAT(canvas.take(), ElementsAre("line 198 80 200 120 3", "line 198 120 200 160 3"));
  started.fill(0);  // a break of the link
  DrawProfilePoint(canvas, setup, traces, reading(-10, false));
  EXPECT_THAT(canvas.take(), ElementsAre("point 200 200 3"));
  settings.traceShown[0] = settings.profileGrid = 0;
  DrawProfilePoint(canvas, profileSetupOf(Kind::orla, false, settings, true, 1, 240, 200), traces, reading(5, true));
  EXPECT_THAT(canvas.take(), ElementsAre("scroll 200", "erase 199 201")) << "neither trace nor grid";
}

// Ends of a scale for values from `least` to `largest`.
TEST(FittedScale, IsRoundHoldsEverythingAndTouchesNothing) {
  for (const auto& [least, largest, step, minimum, maximum] : {std::tuple{12.0F, 48.0F, 1.0, 10.0F, 50.0F},
                                                               {0.2F, 48.0F, 1.0, 0.0F, 50.0F},
                                                               {0.0F, 48.0F, 1.0, -10.0F, 50.0F},
                                                               {7.0F, 7.0F, 1.0, 6.0F, 8.0F},
                                                               {-0.3F, 0.4F, 1.0, -1.0F, 1.0F},
                                                               {-40.0F, -3.0F, 1.0, -50.0F, 0.0F},
                                                               {2.31F, 2.52F, 0.1, 2.3F, 2.6F},
                                                               {50.0F, 50.0F, 1.0, 49.0F, 51.0F},
                                                               {-8000.0F, 8500.0F, 1.0, -10000.0F, 10000.0F}}) {
    const auto ends = fittedEnds({.least = least, .largest = largest, .any = true}, step);
    EXPECT_FLOAT_EQ(ends.minimum, minimum) << least << ' ' << largest;
    EXPECT_FLOAT_EQ(ends.maximum, maximum) << least << ' ' << largest;
  }
}

// A scale of 0 to 10 on 100 pixels: what leaves it is known by column until it has left the chart as well.
TEST(ShownColumns, TellArrowsAndFittedScales) {
  Settings settings;
  const auto setup = profileSetupOf(Kind::orla, false, settings, true, 1, 240, 100);
  std::array<int, kProfilePoints> started{};
  TraceState traces{.traceStarted = started};
  ListingCanvas canvas;
  EXPECT_FALSE(fittedScales(Kind::orla, settings, traces.shown));
  DrawProfilePoint(canvas, setup, traces, reading(70, false));
  auto both = reading(-30, true);
  both.channels.value[2] = 3;
  both.channels.present[2] = 1;
  DrawProfilePoint(canvas, setup, traces, both);
  DrawProfilePoint(canvas, setup, traces, reading(20, false));
  for (int i = 0; i < 3; ++i) DrawProfilePoint(canvas, setup, traces, reading(i == 2 ? 0 : kNoNumber, true));
  std::string arrows;
  for (const auto& arrow : edgeArrows(traces.shown, 3)) {
    arrows += fmt::format("{}{}{}.{} ", arrow.trace, arrow.above ? '^' : 'v', arrow.columns, arrow.rank);
  }
  EXPECT_EQ(arrows, "0^3.0 0v3.0 ");
  canvas.take();
  drawEdgeArrow(canvas, setup, {.trace = 0, .above = false}, 50, 2);
  EXPECT_THAT(canvas.take(), ElementsAre("line 50 99 50 99 1", "line 49 98 51 98 1"));
  const auto fitted = fittedScales(Kind::orla, settings, traces.shown);
  ASSERT_TRUE(fitted);
  EXPECT_EQ(std::pair(fitted->conductivityMinimum, fitted->conductivityMaximum), std::pair(-40.0F, 80.0F));
  EXPECT_EQ(std::pair(fitted->inphaseMinimum, fitted->inphaseMaximum), std::pair(2.0F, 4.0F));
  EXPECT_EQ(fitted->iceMinimum, settings.iceMinimum);
  EXPECT_TRUE(anyOffScale(traces.shown));
  for (int i = 0; i < 100; ++i) DrawProfilePoint(canvas, setup, traces, reading(5, true));
  EXPECT_FALSE(anyOffScale(traces.shown)) << "out of sight";
}

std::vector<std::string> rowsOf(const ChartPicture& picture) {
  std::vector<std::string> rows;
  for (int y = 0; y < picture.height(); ++y) {
    rows.emplace_back();
    for (int x = 0; x < picture.width(); ++x) {
      const auto colour = picture.at(x, y) & 0xFFFFFFU;
      rows.back() += colour == 0xFFFFFF ? '.' : colour == 0xC0C0C0 ? '-' : '#';
    }
  }
  return rows;
}

TEST(ChartPicture, FarAwayEndsLeaveTheVisiblePartInItsPlace) {
  constexpr int kFar = std::numeric_limits<int>::max();
  ChartPicture picture({}, 8, 6);
  picture.line(2, -kFar - 1, 4, kFar, 0, 1);  // passes the chart in its middle column
  picture.line(6, kFar, 6, kFar, 0, 4);
  EXPECT_THAT(rowsOf(picture), testing::Each("...#...."));
}

constexpr int kHeight = 120;

struct Case {
  std::string name;
  Kind kind = Kind::orla;
  bool ice = false;
  int surveyMode = kModeAuto;
  int listA = 0;
  int listB = 0;
  int readingsCount = 1;
  int width = 240;  // of the chart
  bool fineScale = false;
  double recordPeriod_s = 1.3;  // in every 20 s the instrument lies on its side from the 12th to the 16th
};

void PrintTo(const Case& item, std::ostream* out) { *out << item.name; }

// A survey whose profile is drawn as a window would, and redrawn at will.
class Survey {
 public:
  explicit Survey(const Case& item)
      : test_(item.kind, item.ice),
        case_(item),
        plan_{.kind = item.kind, .recordLength = 12, .recordPeriod_s = item.recordPeriod_s} {
    if (item.surveyMode == kModeManual) plan_.triggerEvery_s = 2 * plan_.recordPeriod_s;

    auto& settings = test_.settings;
    settings.conductivityMinimum = item.kind == Kind::glaco ? 0.0F : -20.0F;
    settings.conductivityMaximum = item.kind == Kind::glaco ? 8.0F : item.fineScale ? -19.9F : 95.0F;
    settings.traceWidth = {1, 2, 3, 4, 3, 2, 1, 4};
    settings.surveyMode = item.surveyMode;
    settings.surveyListA = item.listA;
    settings.surveyListB = item.listB;
    settings.readingsCount = item.readingsCount;
    settings.iceDisplay = 1;
    settings.iceQuantity = 1;
    settings.iceMinimum = 0;
    settings.calibrationFactors = {0.1F, 0.2F, -0.3F, 0.4F, 3.3333F, -4.4444F};
    test_.begin();
    // As wide a layout as the chart, so that the newest point stands near its right edge.
    setup_ =
        profileSetupOf(item.kind, test_.session.iceOption, settings, true, item.width / 240.0, item.width, kHeight);
    live_.emplace(ChartColours{}, item.width, kHeight);
    traces_.emplace(TraceState{.traceStarted = test_.session.traceStarted});
    DrawProfileAxes(*live_, setup_);
  }

  void readings(int count) {
    for (int i = 0; i < count; ++i) {
      test_.clock.advance(91);
      // In Manual mode every other record is pressed, and another sample, or the trigger let go, follows it.
      for (int n = case_.surveyMode == kModeManual ? 2 : 1; n > 0; --n) {
        test_.record(next());
        for (const auto& point : std::exchange(test_.view.points, {}))
          DrawProfilePoint(*live_, setup_, *traces_, point);
      }
      if (i % 7 == 3) {
        WriteGpsSentence(test_.session.writer(), "$GPGGA,101307,4400.0,N,07900.0,W,1,05,1.5,100,M,,,,*42", 5, '@', '#');
      }
    }
  }
  void start() { startRecording(test_.session); }
  void pause() { pauseRecording(test_.session); }
  void breakLink() {
    test_.clock.advance(5000);
    onTimer(test_.session);
  }
  void station(double station) { newStation(test_.session, station); }
  void line() {
    newLine(test_.session, proposeLine(test_.settings, 0));
    live_->clear();
    DrawProfileAxes(*live_, setup_);
  }
  void deleteFactors() { ASSERT_TRUE(deleteCalibration(test_.session)); }
  // The pixels that differ between what was drawn live and anew; that is drawn on from here when `goOnWithIt`.
  int difference(bool goOnWithIt = false) {
    ChartPicture redrawn({}, setup_.width, kHeight);
    const auto startedNow = test_.session.traceStarted;
    const auto tracesNow = traces_->previousY;
    redraw(redrawn);
    EXPECT_EQ(std::exchange(test_.session.traceStarted, startedNow), startedNow);
    int differing = 0;
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < setup_.width; ++x) differing += redrawn.at(x, y) != live_->at(x, y) ? 1 : 0;
    }
    traces_->previousY = tracesNow;
    if (goOnWithIt) redraw(*live_);
    return differing;
  }

  RedrawCost redraw(ChartPicture& picture) {
    writeFile(test_.session.file.path(), test_.disk.content());
    return RedrawProfileFromFile(test_.session, setup_, picture, *traces_);
  }

  TestSession& test() { return test_; }
  const ProfileSetup& setup() const { return setup_; }

 private:
  // Dipoles, components and coils change as the instrument is carried along.
  std::string next() {
    const auto number = number_++;
    if (case_.fineScale) {
      const double value = -23.4 + 0.001 * static_cast<double>(number * 61 % 200);
      return sim::encodeTesk2({.vertical = number % 3 == 0}, {.conductivity1 = value, .conductivity2 = value});
    }
    auto text = sim::recordAt(plan_, number);
    text.resize(text.size() - sim::terminated(instrumentOf(case_.kind).framing, "").size());
    return text;
  }

  TestSession test_;
  Case case_;
  ProfileSetup setup_;
  std::optional<ChartPicture> live_;
  std::optional<TraceState> traces_;
  sim::SurveyPlan plan_;
  std::uint64_t number_ = 0;
};

class RedrawEveryKind : public testing::TestWithParam<Case> {};

TEST_P(RedrawEveryKind, EqualsWhatWasDrawnLive) {
  Survey survey(GetParam());
  EXPECT_EQ(survey.difference(), 0) << "an empty line";
  survey.start();
  survey.readings(9);
  EXPECT_EQ(survey.difference(), 0) << "few readings";
  survey.pause();
  survey.start();
  survey.readings(4);
  survey.breakLink();
  survey.readings(5);
  EXPECT_EQ(survey.difference(true), 0) << "pause and break";
  survey.readings(4);
  survey.pause();
  survey.station(100);
  EXPECT_EQ(survey.difference(), 0) << "new station";
  survey.start();
  survey.readings(10);
  EXPECT_EQ(survey.difference(true), 0) << "drawn on after a redraw";
  if (GetParam().kind == Kind::tesk2) {
    survey.pause();
    survey.deleteFactors();
    survey.start();
    survey.readings(6);
    EXPECT_EQ(survey.difference(), 0) << "calibration deleted";
  }
  // More than fit, several times what the picture can scroll before it is moved.
  survey.readings(700);
  EXPECT_EQ(survey.difference(true), 0) << "a full chart";
  survey.readings(30);
  EXPECT_EQ(survey.difference(), 0);
  survey.pause();
  survey.line();
  EXPECT_EQ(survey.difference(), 0) << "a new line";
  survey.start();
  survey.readings(7);
  EXPECT_EQ(survey.difference(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, RedrawEveryKind,
    testing::Values(Case{.name = "orla"}, Case{.name = "orlaInphaseOnly", .listA = 1, .width = 311},
                    Case{.name = "orlaIceAverages", .ice = true, .surveyMode = kModeManual, .readingsCount = 2},
                    Case{.name = "teskbTwoAStation", .kind = Kind::teskb, .surveyMode = kModeManual, .listB = 2},
                    Case{.name = "teskdd", .kind = Kind::teskdd},
                    Case{.name = "teskFourAStation", .kind = Kind::tesk, .surveyMode = kModeManual, .listB = 2},
                    Case{.name = "vardoSixAStation", .kind = Kind::vardo, .surveyMode = kModeManual, .listB = 5},
                    Case{.name = "mirka", .kind = Kind::mirka}, Case{.name = "glaco", .kind = Kind::glaco},
                    // 1200 pixels a unit: the third decimal of a factor shows.
                    Case{.name = "tesk2FineScale", .kind = Kind::tesk2, .fineScale = true},
                    Case{.name = "tesk2Averages", .kind = Kind::tesk2, .surveyMode = kModeManual, .readingsCount = 2},
                    Case{.name = "narrow", .width = 3}),
    [](const auto& item) { return item.param.name; });

// 40 horizontal readings, 160 vertical ones, of which the chart shows 100, and horizontal ones again.
TEST(Redraw, JoinsATraceToItsLastPointFromBeforeTheChart) {
  Survey survey({.name = "orla", .recordPeriod_s = 0.1});
  survey.start();
  survey.readings(310);
  EXPECT_EQ(survey.difference(true), 0);
  for (const int more : {11, 5}) {
    survey.readings(more);
    EXPECT_EQ(survey.difference(), 0);
  }
  survey.breakLink();
  survey.readings(30);
  EXPECT_EQ(survey.difference(), 0);
}

TEST(Redraw, EndsOnAFileOfOneEndlessStation) {
  Survey survey({.name = "orla"});
  std::string records;
  const auto record = formatReading(24, "2 -0100-0400", 1);
  for (int i = 0; i < 300000; ++i) records += record;
  survey.test().session.file.append(records);
  ChartPicture picture({}, survey.setup().width, kHeight);
  EXPECT_NEAR(survey.redraw(picture).recordsRead, 200000, 4096);
}

}  // namespace
}  // namespace kalmira
