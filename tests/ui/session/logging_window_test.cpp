#include "ui/session/logging_window.h"

#include <gmock/gmock.h>

#include "logging/keys.h"
#include "logging/session_link.h"
#include "sim/encode.h"
#include "ui/session/curve_window.h"
#include "ui/window_fixture.h"

namespace kalmira {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// Inphase 1.0 ppt.
std::string orlaRecord(double conductivity) {
  return sim::terminated(Framing::ascii, sim::encodeOrla({.vertical = true}, conductivity, 1.0));
}

TEST(LoggingWindow, RowsFollowTheStateADoubleTapIsOneALoneShiftNoneAndACancelledCommentIsNotWritten) {
  TestWindow test(Kind::orla, {640, 480});
  test.start();
  EXPECT_THAT(buttonsOf(test.window), ElementsAre("&Create File", "E&xit"));
  EXPECT_EQ(test.text(PanelField::state), "Monitor");
  test.create();
  EXPECT_THAT(buttonsOf(test.window), ElementsAre("&Go", "&Line", "&NStn", "&Cmnt", "&Menu", "E&xit"));
  test.tap("&Go");
  test.press(Qt::Key_Shift);  // no key of its own, not even where any key pauses
  EXPECT_THAT(buttonsOf(test.window), ElementsAre("TAP ME or press any key to Pause"));
  // The second tap of a double tap meets the pause button, and a third one would start again.
  test.tap("TAP ME or press any key to Pause");
  EXPECT_EQ(test.text(PanelField::state), "Stand By");
  {
    const DialogActor comment("Enter Comment", [](QDialog& dialog) {
      type(dialog, "comment", "no");
      press(dialog, Qt::Key_Escape);
    });
    const DialogActor warning("Comment Warning", answered("OK"));
    test.tap("&Cmnt");
  }
  const DialogActor exit("Confirm Exit", answered("No"));
  test.tap("E&xit");
  EXPECT_TRUE(test.window.sessionActive());
  EXPECT_EQ(test.tags(), "XX");
}

TEST(LoggingWindow, TheHighlightGoesRoundAndEnterPressesItButDeletesNoCalibration) {
  TestWindow test(Kind::tesk2);
  test.settings.softMarker = 1;
  test.settings.calibrationFactors[2] = 5;
  test.start();
  EXPECT_THAT(buttonsOf(test.window), ElementsAre("&Create File", "C&alibrate", "D&el Calibr.", "E&xit"));
  test.create();
  std::vector<std::string> round;
  for (int i = 0; i < 9; ++i, test.press(Qt::Key_Tab)) round.push_back(markedOf(test.window));
  EXPECT_THAT(round, ElementsAre("&Go", "&Go", "&Line", "&NStn", "&Cmnt", "&Menu", "E&xit", "&Go", "&Line"));
  {
    const DialogActor station("New Station", Qt::Key_Escape);
    test.press(Qt::Key_Return);
  }
  QStringList texts;
  pressInMenu(Qt::Key_E, &texts);
  const DialogActor question("Delete Calibration", [](QDialog& box) {
    QTest::qWait(600);  // deaf at first
    QTest::keyClick(&box, Qt::Key_Return);
  });
  test.press(Qt::Key_M);
  EXPECT_EQ(texts.join('|'), "&Scale|&Display Options||C&alibrate TESK-2|D&elete Calibration||&Hide Menu");
  EXPECT_EQ(test.settings.calibrationFactors[2], 5) << "Enter deletes nothing";
}

TEST(LoggingWindow, WhatLiesBehindADialogGetsReadingsButNoKeys) {
  TestWindow test(Kind::orla);
  test.start();
  test.create();
  const DialogActor dialog("New Line", [&test](QDialog& box) {
    test.device.send(orlaRecord(33.3));
    EXPECT_TRUE(waitFor([&] { return test.text(PanelField::value1).starts_with("C:33.3"); }));
    test.press(Qt::Key_G);
    test.window.runCode(4);
    EXPECT_EQ(test.session().loggingState, kStandBy);
    box.reject();
  });
  test.press(Qt::Key_L);
  EXPECT_EQ(test.tags(), "");
}

TEST(LoggingWindow, ALinkThatDiesClosesWhateverIsOpen) {
  for (const auto& [title, code] : {std::pair{"Create Data File", 0},
                                    {"New Line", 1},
                                    {"New Station", 2},
                                    {"Enter Comment", 3},
                                    {"Enter Scale", 101},
                                    {"Confirm Exit", 5},
                                    {"", 4}}) {
    SCOPED_TRACE(title);
    TestWindow test(Kind::orla);
    test.start();
    if (code != 0) test.create();
    const DialogActor lost("No Connection/Instrument OFF", [title = title](QDialog& box) {
      EXPECT_TRUE(*title == '\0' || openDialog(title) != nullptr);
      answered("No")(box);
    });
    QTimer silence;  // one watch period after the other
    QObject::connect(&silence, &QTimer::timeout, [&test] {
      if (!test.session().timer.running) return;
      test.clock.advance(1001);
      onTimer(test.session());
    });
    silence.start(20);
    test.window.runCode(code);
    EXPECT_TRUE(waitFor([&] { return test.left; }));
    EXPECT_EQ(openDialog(title), nullptr);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_FALSE(test.window.isVisible());
    if (code == 0) continue;
    EXPECT_THAT(readFile(test.path), HasSubstr("$CONN END  "));
    // And it can be begun anew.
    silence.stop();
    test.start();
    EXPECT_THAT(buttonsOf(test.window), ElementsAre("&Create File", "E&xit"));
  }
}

TEST(LoggingWindow, TurningInTheMiddleLosesNothing) {
  TestWindow test(Kind::orla);
  test.settings.readingsInterval = 0.091F;
  test.start();
  test.create();
  test.press(Qt::Key_G);
  test.log(orlaRecord(3), 20);
  auto& chart = *test.window.findChild<QWidget*>("chart");
  const auto upright = chart.geometry();
  test.window.resize(640, 480);
  test.log(orlaRecord(7), 40);
  EXPECT_NE(chart.geometry(), upright);
  EXPECT_THAT(test.text(PanelField::value1), testing::StartsWith("C:7.0"));
  EXPECT_EQ(readFile(test.path).size() % 24, 0U);
  EXPECT_EQ(test.session().counts.readings, 40U);
}

PanelView& panelOf(const LoggingWnd& window) { return dynamic_cast<PanelView&>(*window.findChild<QWidget*>("panel")); }

// How much of the band is black: its stripes.
int blackOfBand(const LoggingWnd& window) {
  const auto band = panelOf(window).grab().toImage().copy(0, 0, 36, 40);
  int black = 0;
  for (int y = 0; y < band.height(); ++y) {
    for (int x = 0; x < band.width(); ++x) black += band.pixelColor(x, y) == QColor(dayTheme().staleText) ? 1 : 0;
  }
  return black * 100 / (band.width() * band.height());
}

TEST(LoggingWindow, OldDataAreSeenAlsoBehindAQuestionUntilTheNextRecord) {
  TestWindow test(Kind::orla);
  test.start();
  test.create();
  test.device.send(orlaRecord(3));
  ASSERT_TRUE(waitFor([&] { return test.text(PanelField::value1).starts_with("C:3.0"); }));
  const auto says = [&test](const std::string& words) {
    return waitFor([&] { return panelOf(test.window).signs().instrument == words; });
  };
  const auto whole = panelOf(test.window).grab().toImage();
  test.clock.advance(4100);
  EXPECT_TRUE(says("NO DATA 4 s"));
  EXPECT_GT(blackOfBand(test.window), 35);
  const auto* cell = &panelOf(test.window).layoutOfPanel().cells.front();
  for (const auto& each : panelOf(test.window).layoutOfPanel().cells) {
    if (each.field == PanelField::value1) cell = &each;
  }
  const QRect value(cell->left, cell->top, cell->width, cell->height);
  EXPECT_NE(panelOf(test.window).grab().toImage().copy(value), whole.copy(value)) << "values are grey";
  const DialogActor lost("No Connection/Instrument OFF", [&](QDialog& box) {
    test.clock.advance(1000);
    const auto before = panelOf(test.window).signs().instrument;
    EXPECT_TRUE(waitFor([&] { return panelOf(test.window).signs().instrument != before; })) << "it goes on counting";
    EXPECT_EQ(test.text(PanelField::message), "Please Wait...");
    EXPECT_EQ(test.text(PanelField::state), "Stand By");
    answered("Yes")(box);
  });
  for (int i = 0; i < 6; ++i) {
    test.clock.advance(1001);
    onTimer(test.session());
  }
  test.device.send(orlaRecord(4));
  EXPECT_TRUE(says(""));
  EXPECT_LT(blackOfBand(test.window), 35);
}

TEST(LoggingWindow, OffTheScaleFitsByOneTapAByAKeyAndNothingIsLost) {
  TestWindow test(Kind::orla, {1280, 800});
  test.settings.readingsInterval = 0.091F;
  test.settings.pauseKey = 2;  // Enter
  test.start();
  test.create();
  test.press(Qt::Key_G);
  auto& chart = dynamic_cast<CurveWnd&>(*test.window.findChild<QWidget*>("chart"));
  test.device.send(orlaRecord(3));
  ASSERT_TRUE(waitFor([&test] { return test.session().counts.readings == 1; }));
  const auto first = chart.grab().toImage();
  chart.redraw();
  EXPECT_EQ(first, chart.grab().toImage()) << "no words are left that say there is nothing";
  test.log(orlaRecord(3), 5);
  auto& fit = *test.window.findChild<QPushButton*>("fit");
  EXPECT_FALSE(fit.isVisible());
  test.log(orlaRecord(33), 10);
  EXPECT_TRUE(fit.isVisible()) << "the scale ends at 10";
  QTest::mouseClick(&fit, Qt::LeftButton);
  EXPECT_FALSE(fit.isVisible());
  EXPECT_EQ(test.settings.conductivityMaximum, 40);
  test.log(orlaRecord(93), 15);
  test.press(Qt::Key_F);
  EXPECT_EQ(test.settings.conductivityMaximum, 100);
  EXPECT_EQ(test.session().loggingState, kLogging);
  // More room than the layouts have: the chart takes half of it, and values have their units.
  EXPECT_GE(chart.height(), 400);
  EXPECT_THAT(test.text(PanelField::value1), HasSubstr("mS/m"));
}
}  // namespace
}  // namespace kalmira
