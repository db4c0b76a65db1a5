#include "ui/session/curve_window.h"

#include <gtest/gtest.h>

#include "sim/encode.h"
#include "support/session_fixture.h"

namespace kalmira {
namespace {

// A session with a CurveWnd that is shown its points as they come.
struct CurveTest : testing::Test {
  CurveTest() {
    test.settings.conductivityMinimum = -20;
    test.settings.conductivityMaximum = 80;
    test.go();
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
  // What is on the screen differs from the picture.
  bool labelled(const QRect& area) {
    const auto shown = chart.grab().toImage().convertToFormat(QImage::Format_RGB32);
    return shown.copy(area) != chart.picture().copy(area);
  }

  TestSession test{Kind::orla};
  CurveWnd chart{dayTheme(), nullptr};
};

TEST_F(CurveTest, RedrawnResizedAndLiveAreOnePicture) {
  readings(300);
  const auto live = chart.picture();
  EXPECT_EQ(live.size(), QSize(360, 200));
  chart.redraw();
  EXPECT_EQ(chart.picture(), live);
  chart.resize(500, 310);
  EXPECT_EQ(chart.picture().size(), QSize(500, 310));
  chart.resize(360, 200);
  EXPECT_EQ(chart.picture(), live);
  readings(10);
  const auto later = chart.picture();
  EXPECT_NE(later, live);
  chart.redraw();
  EXPECT_EQ(chart.picture(), later);
  chart.setTheme(nightTheme());
  EXPECT_EQ(chart.picture().pixel(0, 0) & 0xFFFFFFU, nightTheme().chart);
}

TEST_F(CurveTest, TheLimitsStandRightOfTheNewestPointHoweverLongTheyAre) {
  readings(250);
  constexpr int kFree = 300 + 2;  // right of what the traces may touch
  for (const int more : {0, 7}) {
    readings(more);
    EXPECT_FALSE(labelled({0, 0, kFree, 200})) << "no smear";
    EXPECT_TRUE(labelled({kFree, 0, 360 - kFree, 30}));
    EXPECT_TRUE(labelled({kFree, 170, 360 - kFree, 30}));
    EXPECT_FALSE(labelled({kFree, 30, 360 - kFree, 140}));
    EXPECT_FALSE(labelled({359, 0, 1, 200})) << "not cut at the edge";
  }
  test.settings.conductivityMinimum = -9000;
  test.settings.conductivityMaximum = 9000;
  chart.setLayoutOf(true, 1.5);
  chart.resize(345, 200);
  EXPECT_TRUE(labelled({0, 0, 345, 200}));
  EXPECT_FALSE(labelled({0, 0, kFree, 200}));
}

TEST_F(CurveTest, ALostLinkIsRedrawnWhenPaintedAndNothingIsShownWithoutASession) {
  readings(20);
  const auto live = chart.picture();
  chart.clearChart();
  EXPECT_NE(chart.picture(), live);
  test.session.linkLost = true;
  chart.grab();
  EXPECT_FALSE(test.session.linkLost);
  EXPECT_EQ(chart.picture(), live);
  chart.setSession(nullptr);
  chart.addPoint({});
  const auto picture = chart.picture();
  for (int x = 1; x < picture.width(); ++x) ASSERT_EQ(picture.pixel(x, 90), picture.pixel(0, 90));
  chart.resize(0, 0);
  chart.grab();
}

}  // namespace
}  // namespace kalmira
