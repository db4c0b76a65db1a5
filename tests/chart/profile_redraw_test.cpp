#include <gmock/gmock.h>

#include <optional>

#include "chart/chart_picture.h"
#include "chart/profile_redraw.h"
#include "datafile/record_format.h"
#include "logging/calibration.h"
#include "logging/session_link.h"
#include "sim/encode.h"
#include "sim/survey.h"
#include "support/session_fixture.h"

// The profile drawn anew from the file is the one that was drawn reading by reading, to the pixel.
namespace kalmira {
namespace {

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
  void comment() { addComment(test_.session, "a stone"); }
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
  survey.comment();
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
