#include "ui/screen/message_dialog.h"

#include <gtest/gtest.h>

#include "support/dialogs.h"

namespace kalmira {
namespace {

const Message kLinkLost{"No Connection/Instrument OFF",
                        "Fix the problem and\r\npress YES to try.\r\nPress NO to exit Logging Mode.\r\n",
                        Icon::exclamation};

QMessageBox& boxOf(QDialog& dialog) { return dynamic_cast<QMessageBox&>(dialog); }

struct MessageDialog : DialogTest {
  MessageDialog() : DialogTest({480, 640}) {}
  bool ask(const DialogActor::Act& act, EnterMeans enter = EnterMeans::yes, int deafMs = 0) {
    const DialogActor actor("No Connection/Instrument OFF", act);
    return askMessage(&window, kLinkLost, enter, deafMs);
  }
};

TEST_F(MessageDialog, QuestionsAreAnsweredByKeyByFingerAndFromOutside) {
  const auto key = [](Qt::Key pressed) { return [pressed](QDialog& box) { QTest::keyClick(&box, pressed); }; };
  const struct {
    DialogActor::Act act;
    EnterMeans enter;
    bool yes;
  } cases[]{{key(Qt::Key_Y), EnterMeans::yes, true},
            {key(Qt::Key_Y), EnterMeans::no, true},
            {key(Qt::Key_N), EnterMeans::yes, false},
            {key(Qt::Key_Escape), EnterMeans::yes, false},
            {key(Qt::Key_Return), EnterMeans::yes, true},
            {key(Qt::Key_Return), EnterMeans::no, false},
            {answered(QMessageBox::Yes), EnterMeans::no, true},
            {answered(QMessageBox::No), EnterMeans::yes, false},
            {[](QDialog& box) { box.reject(); }, EnterMeans::yes, false},
            {[](QDialog& box) { box.close(); }, EnterMeans::yes, false}};
  for (const auto& each : cases) EXPECT_EQ(ask(each.act, each.enter), each.yes) << &each - cases;
}

TEST_F(MessageDialog, AQuestionThatComesByItselfIsDeafAtFirst) {
  EXPECT_TRUE(ask(
      [](QDialog& box) {
        QTest::keyClick(&box, Qt::Key_N);
        QTest::mouseClick(boxOf(box).button(QMessageBox::No), Qt::LeftButton);
        QTest::qWait(400);
        QTest::keyClick(&box, Qt::Key_Y);
      },
      EnterMeans::yes, 300));
}

TEST_F(MessageDialog, EnterNeverEndsASessionOrDeletes) {
  for (const auto question : {Question::exitLogging, Question::deleteCalibration})
    EXPECT_EQ(enterAnswer(question), EnterMeans::no);
  for (const auto question : {Question::linkLost, Question::startCalibration})
    EXPECT_EQ(enterAnswer(question), EnterMeans::yes);
}

TEST_F(MessageDialog, TextsAndButtonsFitTheWindowAndFingers) {
  ask([](QDialog& dialog) {
    auto& box = boxOf(dialog);
    EXPECT_EQ(box.text(), "Fix the problem and\npress YES to try.\nPress NO to exit Logging Mode.");
    EXPECT_EQ(box.icon(), QMessageBox::Warning);
    for (auto* button : box.buttons()) EXPECT_GE(button->height(), touchHeight(nullptr));
    box.reject();
  });
  window.resize(240, 320);
  for (const auto key : {Qt::Key_Return, Qt::Key_Escape}) {
    const Message message{"CRITICAL WARNING", "<b>File not created.</b> Potential disk problem. Try different folder.",
                          Icon::stop};
    const DialogActor actor("CRITICAL WARNING", [&](QDialog& dialog) {
      EXPECT_EQ(boxOf(dialog).icon(), QMessageBox::Critical);
      EXPECT_LE(dialog.width(), 240);
      EXPECT_EQ(boxOf(dialog).text().simplified(), message.text.c_str()) << "no markup";
      QTest::keyClick(&dialog, key);
    });
    tellMessage(&window, message);
  }
}

}  // namespace
}  // namespace kalmira
