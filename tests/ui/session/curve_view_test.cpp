#include "ui/session/curve_window.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QTest>

#include "sim/encode.h"
#include "support/session_fixture.h"

namespace kalmira {
namespace {

// A session with a CurveWnd that is shown its points as they come.
struct CurveTest : testing::Test {
  explicit CurveTest(Kind kind = Kind::orla) : test(kind) {
    test.settings.conductivityMinimum = -20;
    test.settings.conductivityMaximum = 80;
    test.begin();
    chart.resize(360, 200);
    chart.setLayoutOf(true, 1.5);
    chart.setSession(&test.session);
    chart.show();
  }

  void readings(int count) {
    for (int i = 0; i < count; ++i) {
      test.record(sim::encodeOrla({.vertical = i % 3 != 0}, (i * 37) % 100 - 20, (i * 13) % 19 - 9));
      for (const auto& point : std::exchange(test.view.points, {})) chart.addPoint(point);
    }
    writeFile(test.session.file.path(), test.disk.content());
  }
  QImage shown() { return chart.grab().toImage().convertToFormat(QImage::Format_RGB32); }

  TestSession test;
  CurveWnd chart{dayTheme(), nullptr};
};

TEST_F(CurveTest, RedrawnResizedAndLiveAreOnePicture) {
  startRecording(test.session);
  readings(300);
  const auto live = chart.picture();
  EXPECT_EQ(live.size(), QSize(360, 200));
  chart.redraw();
  EXPECT_EQ(chart.picture(), live);
  chart.resize(500, 310);
  EXPECT_EQ(chart.picture().size(), QSize(500, 310));
  EXPECT_NE(chart.picture(), live);
  chart.resize(360, 200);
  EXPECT_EQ(chart.picture(), live);
  readings(10);
  const auto later = chart.picture();
  chart.redraw();
  EXPECT_EQ(chart.picture(), later);
  chart.setTheme(nightTheme());
  EXPECT_EQ(chart.picture().pixel(0, 0) & 0xFFFFFFU, nightTheme().chart);
}

TEST_F(CurveTest, ShowsItsPictureWithTheLimitsRightOfTheNewestPoint) {
  startRecording(test.session);
  readings(250);
  const int free = 300 + 2;  // right of what the traces may touch
  const auto before = shown();
  const auto picture = chart.picture();
  EXPECT_EQ(before.copy(0, 0, free, 200), picture.copy(0, 0, free, 200));
  const auto labelled = [&](const QRect& area) { return before.copy(area) != picture.copy(area); };
  EXPECT_TRUE(labelled({free, 0, 360 - free, 30}));
  EXPECT_TRUE(labelled({free, 170, 360 - free, 30}));
  EXPECT_FALSE(labelled({free, 30, 360 - free, 140}));
  EXPECT_FALSE(labelled({359, 0, 1, 200})) << "not cut at the edge";
  readings(7);
  EXPECT_EQ(shown().copy(free, 0, 360 - free, 200), before.copy(free, 0, 360 - free, 200)) << "no smear";
  EXPECT_EQ(shown().copy(0, 0, free, 200), chart.picture().copy(0, 0, free, 200));
}

TEST_F(CurveTest, LongLimitsAreMadeToFit) {
  test.settings.conductivityMinimum = -9000;
  test.settings.conductivityMaximum = 9000;
  chart.setLayoutOf(true, 1.5);
  chart.resize(345, 200);
  const auto picture = chart.picture();
  const auto screen = shown();
  EXPECT_NE(screen, picture);
  EXPECT_EQ(screen.copy(0, 0, 302, 200), picture.copy(0, 0, 302, 200));
}

TEST_F(CurveTest, ALostLinkIsRedrawnWhenPaintedAndNothingIsShownWithoutASession) {
  startRecording(test.session);
  readings(20);
  const auto live = chart.picture();
  chart.clearChart();
  EXPECT_NE(chart.picture(), live);
  test.session.linkLost = true;
  shown();
  EXPECT_FALSE(test.session.linkLost);
  EXPECT_EQ(chart.picture(), live);
  chart.setSession(nullptr);
  chart.addPoint({});
  const auto picture = chart.picture();
  for (int x = 1; x < picture.width(); ++x) ASSERT_EQ(picture.pixel(x, 90), picture.pixel(0, 90));
  chart.resize(1, 1);
  chart.resize(0, 0);
  shown();
}

}  // namespace
}  // namespace kalmira
