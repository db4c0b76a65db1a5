#include "ui/session/logging_window.h"

#include <gmock/gmock.h>

#include <QLineEdit>

#include "logging/keys.h"
#include "logging/watchdog.h"
#include "sim/encode.h"
#include "ui/session/curve_window.h"
#include "ui/session/window_fixture.h"

namespace kalmira {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

// Conductivity 12.5 mS/m, inphase 1.0 ppt.
std::string orlaRecord(double conductivity = 12.5) {
  return sim::terminated(Framing::ascii, sim::encodeOrla({.vertical = true}, conductivity, 1.0));
}

// The tags of a data file's records behind its opening ones, readings that follow each other as one letter.
std::string tagsOf(const std::string& content, std::size_t length = 24) {
  std::string tags;
  for (std::size_t at = 7 * length; at + length <= content.size(); at += length) {
    if (tags.empty() || content[at] != 'T' || tags.back() != 'T') tags += content[at];
  }
  return tags;
}

TEST(LoggingWindow, ASurveyByKeys) {
  TestWindow test(Kind::orla);
  test.start();
  EXPECT_TRUE(test.window.isVisible());
  EXPECT_THAT(test.buttons(), ElementsAre("&Create File", "E&xit"));
  EXPECT_EQ(test.text(PanelField::state), "Monitor");
  test.create();
  EXPECT_THAT(test.buttons(), ElementsAre("&Go", "&Line", "&NStn", "&Cmnt", "&Menu", "E&xit"));
  EXPECT_EQ(test.text(PanelField::state), "Stand By");
  test.settings.readingsInterval = 0.091F;

  test.press(Qt::Key_G);
  EXPECT_THAT(test.buttons(), ElementsAre("TAP ME or press any key to Pause"));
  EXPECT_EQ(test.text(PanelField::state), "Logging");
  test.log(orlaRecord(), 3);
  test.press(Qt::Key_B);
  EXPECT_EQ(test.text(PanelField::state), "Stand By");

  const WhenOpen line("New Line", [](QDialog& dialog) {
    dialog.findChild<QLineEdit*>("newLine")->setText("7");
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  test.press(Qt::Key_L);
  EXPECT_EQ(test.text(PanelField::line), "7");
  const WhenOpen station("New Station", [](QDialog& dialog) {
    QTest::keyClicks(dialog.findChild<QLineEdit*>("newStation"), "42,5");
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  test.press(Qt::Key_N);
  EXPECT_EQ(test.text(PanelField::station), "42.50      ");
  const WhenOpen comment("Enter Comment", [](QDialog& dialog) {
    QTest::keyClicks(dialog.findChild<QLineEdit*>("comment"), "fence");
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  test.press(Qt::Key_C);
  const WhenOpen scale("Enter Scale", [](QDialog& dialog) {
    dialog.findChild<QLineEdit*>("firstMinimum")->setText("50");
    dialog.findChild<QLineEdit*>("firstMaximum")->setText("20");
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  const WhenOpen exit("Confirm Exit", [](QDialog& box) { answer(box, QMessageBox::Yes); });
  test.window.runCode(101);
  EXPECT_EQ(test.settings.conductivityMaximum, 150.0F);

  const auto content = test.content();
  EXPECT_EQ(tagsOf(content), "XTXLBAZ*S*C");
  EXPECT_THAT(content, HasSubstr("fence"));
  test.press(Qt::Key_X);
  EXPECT_TRUE(exit.acted() && test.left);
  EXPECT_FALSE(test.window.isVisible() || test.window.sessionActive());
}

TEST(LoggingWindow, TheSameByTaps) {
  TestWindow test(Kind::orla, false, {640, 480});
  test.start();
  const WhenOpen create("Create Data File", [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); });
  test.tap("&Create File");
  test.tap("&Go");
  // The second tap of a double tap meets the pause button, and a third one would start again.
  test.tap("TAP ME or press any key to Pause");
  const WhenOpen comment("Enter Comment", [](QDialog& dialog) {
    QTest::keyClicks(dialog.findChild<QLineEdit*>("comment"), "no");
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  const WhenOpen warning("Comment Warning", [](QDialog& box) { answer(box, QMessageBox::Ok); });
  test.tap("&Cmnt");
  EXPECT_TRUE(comment.acted() && warning.acted());
  const WhenOpen exit("Confirm Exit", [](QDialog& box) { answer(box, QMessageBox::No); });
  test.tap("E&xit");
  EXPECT_TRUE(exit.acted());
  EXPECT_TRUE(test.window.sessionActive());
  EXPECT_EQ(tagsOf(test.content()), "XX");
}

TEST(LoggingWindow, ReadingsGoOnBehindADialog) {
  TestWindow test(Kind::orla);
  test.start();
  test.create();
  const WhenOpen dialog("New Line", [&test](QDialog& box) {
    test.wires["instrument"].feed(orlaRecord(33.3));
    EXPECT_TRUE(waitFor([&] { return test.text(PanelField::value1).starts_with("C:33.3"); }));
    // Keys and taps on what lies behind it do nothing.
    test.press(Qt::Key_G);
    test.window.runCode(4);
    EXPECT_EQ(test.session().loggingState, kStandBy);
    box.reject();
  });
  test.press(Qt::Key_L);
  EXPECT_TRUE(dialog.acted());
  EXPECT_EQ(tagsOf(test.content()), "");
}

// What can be open when the instrument falls silent for good, and the code that opens it.
struct OpenThing {
  QString title;
  int code;
  bool withFile;
};

TEST(LoggingWindow, ALinkThatDiesClosesWhateverIsOpen) {
  const std::vector<OpenThing> things{{"Create Data File", 0, false},
                                      {"New Line", 1, true},
                                      {"New Station", 2, true},
                                      {"Enter Comment", 3, true},
                                      {"Enter Scale", 101, true},
                                      {"Confirm Exit", 5, true},
                                      {"", 4, true}};
  for (const auto& thing : things) {
    SCOPED_TRACE(thing.title.toStdString());
    TestWindow test(Kind::orla);
    test.start();
    if (thing.withFile) test.create();
    const auto path = thing.withFile ? test.session().file.path() : std::filesystem::path();
    const WhenOpen lost("No Connection/Instrument OFF", [&thing](QDialog& box) {
      EXPECT_TRUE(thing.title.isEmpty() || openDialog(thing.title) != nullptr);
      answer(box, QMessageBox::No);
    });
    QTimer silence;  // one watch period after the other
    QObject::connect(&silence, &QTimer::timeout, [&test] {
      if (!test.session().timer.running) return;
      test.clock.advance(1001);
      onTimer(test.session());
    });
    silence.start(20);
    test.window.runCode(thing.code);
    EXPECT_TRUE(waitFor([&] { return test.left; }));
    EXPECT_TRUE(lost.acted());
    EXPECT_EQ(openDialog(thing.title), nullptr);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_FALSE(test.window.isVisible());
    if (!thing.withFile) continue;
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    EXPECT_THAT(content.str(), HasSubstr("$CONN END  "));
    // And it can be begun anew.
    silence.stop();
    test.start();
    EXPECT_THAT(test.buttons(), ElementsAre("&Create File", "E&xit"));
  }
}

TEST(LoggingWindow, ClosingTheFrameWhileLoggingAsks) {
  TestWindow test(Kind::orla);
  test.start();
  test.create();
  test.press(Qt::Key_G);
  const auto path = test.session().file.path();
  {
    const WhenOpen no("Confirm Exit", [](QDialog& box) { answer(box, QMessageBox::No); });
    EXPECT_FALSE(test.window.mayClose());
    EXPECT_TRUE(no.acted());
  }
  EXPECT_EQ(test.session().loggingState, kLogging);
  test.log(orlaRecord(), 1);
  const WhenOpen yes("Confirm Exit", [](QDialog& box) { answer(box, QMessageBox::Yes); });
  EXPECT_TRUE(test.window.mayClose());
  EXPECT_TRUE(test.left);
  std::ifstream in(path, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  EXPECT_EQ(tagsOf(content.str()), "XTX");
}

TEST(LoggingWindow, TurningInTheMiddleLosesNothing) {
  TestWindow test(Kind::orla);
  test.settings.readingsInterval = 0.091F;
  test.start();
  test.create();
  test.press(Qt::Key_G);
  test.log(orlaRecord(3), 20);
  test.window.resize(640, 480);
  test.log(orlaRecord(7), 40);
  EXPECT_TRUE(test.text(PanelField::value1).starts_with("C:7.0"));
  EXPECT_EQ(test.text(PanelField::value1).find("mS/m"), std::string::npos);
  auto* chart = dynamic_cast<CurveWnd*>(test.window.findChild<QWidget*>("chart"));
  const auto live = chart->picture();
  chart->redraw();
  EXPECT_EQ(chart->picture(), live);
  test.window.resize(720, 960);
  test.log(orlaRecord(7), 60);
  EXPECT_NE(test.text(PanelField::value1).find("mS/m"), std::string::npos);
  EXPECT_EQ(test.content().size() % 24, 0U);
  EXPECT_EQ(test.session().counts.readings, 60U);
}

TEST(LoggingWindow, MenuIsReachedByKeysAndByTouch) {
  TestWindow test(Kind::tesk2);
  test.wires["instrument"];
  test.start();
  EXPECT_THAT(test.buttons(), ElementsAre("&Create File", "C&alibrate", "D&el Calibr.", "E&xit"));
  test.create();
  QTimer::singleShot(50, [&test] {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    QStringList texts;
    for (const auto* action : menu->actions()) texts << action->text();
    EXPECT_EQ(texts.join('|').toStdString(),
              "&Scale|&Display Options||C&alibrate TESK-2|D&elete Calibration||&Hide Menu");
    QTest::keyClick(menu, Qt::Key_E);
  });
  const WhenOpen question("Delete Calibration", [](QDialog& box) { answer(box, QMessageBox::No); });
  test.press(Qt::Key_M);
  EXPECT_TRUE(question.acted());
}

TEST(LoggingWindow, APortThatCannotBeOpenedIsToldAndLeavesTheMenu) {
  TestWindow test(Kind::vardo);
  test.wires.erase("instrument");
  const WhenOpen told("Serial Port", [](QDialog& box) {
    EXPECT_TRUE(qobject_cast<QMessageBox*>(&box)->text().startsWith("Cannot open VARDO port"));
    answer(box, QMessageBox::Ok);
  });
  EXPECT_EQ(test.window.startLogging(), StartOutcome::refused);
  EXPECT_TRUE(told.acted());
  EXPECT_FALSE(test.window.isVisible() || test.window.sessionActive());
}

}  // namespace
}  // namespace kalmira
