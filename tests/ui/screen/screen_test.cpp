#include <gtest/gtest.h>

#include <QAccessible>
#include <QElapsedTimer>
#include <algorithm>
#include <limits>

#include "support/dialogs.h"
#include "ui/screen/action_bar.h"
#include "ui/screen/calm_updates.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

// By the short side of the smallest window that shows all of a dialog at once; 0: it may have to be scrolled.
const std::pair<int, QString> kTemplates[]{
    {240,
     "GetComment GetGPSMessage GetNewLine GetNewStation GetNewStationwm6 GetNewProfileScaleICE "
     "upright:GetNewProfileScaleOrla lying:GetNewProfileScaleOrlaH GetNewProfileScaleVardo"},
    {480, "Devices GetGPSPortSetup GetLoggerSetupOrla GetLoggerSetupOrlaIce GetLoggerSetupTesk GetLoggerSetupTesk2"},
    {0,
     "GetOptions GetOptionsGlaco GetOptionsIceNew GetOptionsTesk2 GetOptionsVardo GetSurveySetupGlaco "
     "GetSurveySetupMirka lying:GetSurveySetupOrlaH lying:GetSurveySetupOrlaHWIDE GetSurveySetupOrlaV "
     "GetSurveySetupTesk GetSurveySetupTeskB GetSurveySetupTeskBV GetSurveySetupTeskD GetSurveySetupVardo "
     "GetTraceColour"}};

TEST(Templates, FitTheWindowAndFingersUprightAndLyingSmallAndLarge) {
  for (const QSize size : {QSize(240, 320), QSize(320, 240), QSize(480, 640), QSize(640, 480)}) {
    QWidget window;
    window.resize(size);
    window.show();
    const auto look = [&](const QString& name, bool whole) {
      SCOPED_TRACE(testing::Message() << name.toStdString() << " in " << size.width() << " x " << size.height());
      const auto dialog = makeDialog(name.section(':', -1).toStdString(), &window);
      ASSERT_NE(dialog, nullptr);
      const DialogActor actor(dialog->windowTitle(), [whole](QDialog& open) {
        expectFits(open, whole);
        for (auto* control : open.findChildren<QWidget*>()) {
          const bool typedOrChosen =
              control->inherits("QLineEdit") || control->inherits("QComboBox") || control->inherits("QListWidget");
          if (!typedOrChosen || !control->isVisible()) continue;
          EXPECT_NE(QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name), "")
              << control->objectName().toStdString() << " is nameless to a screen reader";
        }
        tapOk(open);
      });
      EXPECT_TRUE(runDialog(*dialog));
    };
    const char* otherShape = size.width() < size.height() ? "lying:" : "upright:";
    for (const auto& [wholeFrom, names] : kTemplates) {
      for (const auto& name : names.split(' ')) {
        if (!name.startsWith(otherShape))
          look(name, wholeFrom != 0 && size.width() >= wholeFrom && size.height() >= wholeFrom);
      }
    }
  }
  EXPECT_EQ(makeDialog("GetNothing", nullptr), nullptr);
}

const Message kLinkLost{"No Connection/Instrument OFF",
                        "Fix the problem and\r\npress YES to try.\r\nPress NO to exit Logging Mode.\r\n",
                        Icon::exclamation};

struct MessageDialog : DialogTest {
  bool ask(const DialogActor::Act& act, EnterMeans enter = EnterMeans::yes, int deafMs = 0) {
    const DialogActor actor("No Connection/Instrument OFF", act);
    return askMessage(&window, kLinkLost, enter, deafMs);
  }
};

TEST_F(MessageDialog, QuestionsAreAnsweredByKeyByFingerAndFromOutsideAndEnterNeverEndsASessionOrDeletes) {
  const auto key = [](Qt::Key pressed) { return [pressed](QDialog& box) { QTest::keyClick(&box, pressed); }; };
  const auto exit = enterAnswer(Question::exitLogging), deletion = enterAnswer(Question::deleteCalibration);
  const auto lost = enterAnswer(Question::linkLost), calibration = enterAnswer(Question::startCalibration);
  const struct {
    DialogActor::Act act;
    EnterMeans enter;
    bool yes;
  } cases[]{{key(Qt::Key_Y), lost, true},
            {key(Qt::Key_Y), exit, true},
            {key(Qt::Key_N), lost, false},
            {key(Qt::Key_Escape), lost, false},
            {key(Qt::Key_Return), lost, true},
            {key(Qt::Key_Return), calibration, true},
            {key(Qt::Key_Return), exit, false},
            {key(Qt::Key_Return), deletion, false},
            {answered("Yes"), exit, true},
            {answered("No"), lost, false},
            {[](QDialog& box) { box.reject(); }, lost, false},
            {[](QDialog& box) { box.close(); }, lost, false}};
  for (const auto& each : cases) EXPECT_EQ(ask(each.act, each.enter), each.yes) << &each - cases;
}

TEST_F(MessageDialog, AQuestionThatComesByItselfIsDeafAtFirst) {
  const auto hurry = [](QDialog& box) {
    QTest::keyClick(&box, Qt::Key_N);
    QTest::mouseClick(&buttonOf(box, "No"), Qt::LeftButton);
    QTest::qWait(400);
    QTest::keyClick(&box, Qt::Key_Y);
  };
  EXPECT_TRUE(ask(hurry, EnterMeans::yes, 300));
}

TEST_F(MessageDialog, TextsAndButtonsFitTheWindowAndFingers) {
  const Message message{"CRITICAL WARNING", "<b>File not created.</b> Potential disk problem. Try different folder.",
                        Icon::stop};
  keepInSight(window, 40);
  const DialogActor actor("CRITICAL WARNING", [&](QDialog& dialog) {
    EXPECT_GE(dialog.frameGeometry().top(), window.geometry().top() + 40);
    EXPECT_LE(dialog.width(), 240);
    EXPECT_EQ(messageOf(dialog), message.text) << "no markup";
    for (const auto* button : dialog.findChildren<QPushButton*>()) EXPECT_GE(button->height(), touchHeight(nullptr));
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  tellMessage(&window, message);
}

// Notes what is painted of it.
struct PaintedWidget final : QWidget {
  void paintEvent(QPaintEvent* event) override {
    ++times;
    painted += event->region();
  }
  int times = 0;
  QRegion painted;
};

TEST(CalmUpdates, PaintWhatFollowsTheFirstChangeTogetherAndNeverLeaveItOut) {
  PaintedWidget widget;
  CalmUpdates updates(widget);
  widget.resize(600, 100);
  widget.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
  QApplication::processEvents();
  widget.painted = {};
  const int shown = widget.times;
  QElapsedTimer taken;
  taken.start();
  for (int x = 0; x < 500; x += 10) {
    updates.add(QRect(x, 0, 5, 5));
    QApplication::processEvents();
    EXPECT_TRUE(widget.painted.contains(QRect(0, 0, 5, 5))) << "the first, at once";
  }
  EXPECT_TRUE(QTest::qWaitFor([&] { return widget.painted.contains(QRect(490, 0, 5, 5)); }, 2000)) << "the latest";
  EXPECT_LE(widget.times - shown, 2 + taken.elapsed() / 200);
}

TEST(TouchButton, IsNineMillimetresHighWhereTheScreenIsKnown) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  for (const auto& [dotsPerInch, pixels] :
       {std::pair{96.0, 35}, {254.0, 90}, {50.0, 18}, {800.0, 284}, {49.0, 35}, {801.0, 35}, {-1.0, 35}, {kNan, 35}})
    EXPECT_EQ(touchHeightAt(dotsPerInch), pixels) << dotsPerInch;
}

TEST(TouchButton, TakesADoubleTapAsOneAndKeepsOffTheKeyboard) {
  TouchButton button("&Go", dayTheme());
  int clicks = 0;
  QObject::connect(&button, &QPushButton::clicked, [&clicks] { ++clicks; });
  button.show();
  EXPECT_GE(button.minimumSizeHint().height(), touchHeight(button.screen()));
  QTest::mouseClick(&button, Qt::LeftButton, Qt::NoModifier, QPoint(3, 3));
  EXPECT_EQ(clicks, 1);
  QTest::mouseDClick(&button, Qt::LeftButton);
  QTest::mouseRelease(&button, Qt::LeftButton);
  EXPECT_EQ(clicks, 1) << "the second tap of a double tap is none";
  EXPECT_EQ(button.focusPolicy(), Qt::NoFocus);
}

// Taps at the given milliseconds, each where Qt takes none for a double one.
TEST(ActionBar, TakesQuickTapsAsOneAlsoWhereTheRowChangesButNeverOfWhatRepeats) {
  for (const auto& [repeats, changes, times, pressed] :
       std::vector<std::tuple<bool, bool, std::vector<int>, std::string>>{
           {false, false, {1000, 1200, 1390, 3000}, "0a 0a"},
           {false, true, {1000, 1200, 3000}, "0a 0b"},
           {true, false, {1000, 1100, 1200, 1300}, "0a 0a 0a 0a"}}) {
    QWidget window;
    std::string row = "a", log;
    std::optional<ActionBar> bar;
    const auto show = [&] {
      bar->setActions(std::array{Action{.text = row, .repeats = repeats}, Action{.text = "x"}});
    };
    bar.emplace(&window, dayTheme(), [&](int index) {
      log += (log.empty() ? "" : " ") + std::to_string(index) + row;
      if (changes) row = "b", show();
    });
    show();
    const auto tap = [&](int button, int time) {
      for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, QPointF(3, 3), QPointF(3, 3), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        event.setTimestamp(static_cast<quint64>(time));
        QApplication::sendEvent(bar->buttons()[static_cast<std::size_t>(button)], &event);
      }
    };
    for (const int time : times) tap(0, time);
    EXPECT_EQ(log, pressed);
    tap(1, times.back() + 100);
    EXPECT_EQ(log, pressed + (changes ? "" : " 1a")) << "another button, of the same row or not";
  }
}

}  // namespace
}  // namespace kalmira
