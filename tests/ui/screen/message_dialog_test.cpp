#include "ui/screen/message_dialog.h"

#include <gtest/gtest.h>

#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include "support/dialog_actor.h"
#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

const Message kLinkLost{"No Connection/Instrument OFF",
                        "Fix the problem and\r\npress YES to try.\r\nPress NO to exit Logging Mode.\r\n",
                        Icon::exclamation};

QMessageBox& boxOf(QDialog& dialog) {
  return dynamic_cast<QMessageBox&>(dialog);
}

void tap(QDialog& dialog, QMessageBox::StandardButton which) {
  QTest::mouseClick(boxOf(dialog).button(which), Qt::LeftButton);
}

class MessageDialog : public ::testing::Test {
 protected:
  MessageDialog() {
    window.resize(480, 640);
    window.show();
  }
  bool ask(const std::function<void(QDialog&)>& act, EnterMeans enter = EnterMeans::yes) {
    const DialogActor actor(window, "No Connection/Instrument OFF", act);
    return askMessage(&window, kLinkLost, enter);
  }
  bool askByKey(Qt::Key key, EnterMeans enter = EnterMeans::yes) {
    return ask([key](QDialog& box) { QTest::keyClick(&box, key); }, enter);
  }
  QWidget window;
};

TEST_F(MessageDialog, QuestionsAreAnsweredByKey) {
  EXPECT_TRUE(askByKey(Qt::Key_Y));
  EXPECT_FALSE(askByKey(Qt::Key_N));
  EXPECT_FALSE(askByKey(Qt::Key_Escape));
  EXPECT_TRUE(askByKey(Qt::Key_Return));
  EXPECT_FALSE(askByKey(Qt::Key_Return, EnterMeans::no));
  EXPECT_TRUE(askByKey(Qt::Key_Y, EnterMeans::no));
}

TEST_F(MessageDialog, QuestionsAreAnsweredByFinger) {
  EXPECT_TRUE(ask([](QDialog& box) { tap(box, QMessageBox::Yes); }));
  EXPECT_FALSE(ask([](QDialog& box) { tap(box, QMessageBox::No); }));
}

TEST_F(MessageDialog, ClosedFromOutsideIsNo) {
  EXPECT_FALSE(ask([](QDialog& box) { box.reject(); }));
  EXPECT_FALSE(ask([](QDialog& box) { box.close(); }));
}

TEST_F(MessageDialog, EnterNeverEndsASessionOrDeletes) {
  EXPECT_EQ(enterAnswer(Question::exitLogging), EnterMeans::no);
  EXPECT_EQ(enterAnswer(Question::deleteCalibration), EnterMeans::no);
  EXPECT_EQ(enterAnswer(Question::linkLost), EnterMeans::yes);
  EXPECT_EQ(enterAnswer(Question::startCalibration), EnterMeans::yes);
}

TEST_F(MessageDialog, ShowsTextIconAndButtonsForFingers) {
  ask([](QDialog& dialog) {
    auto& box = boxOf(dialog);
    EXPECT_EQ(box.text(), "Fix the problem and\npress YES to try.\nPress NO to exit Logging Mode.");
    EXPECT_EQ(box.icon(), QMessageBox::Warning);
    for (auto* button : box.buttons()) EXPECT_GE(button->height(), touchHeight(nullptr));
    EXPECT_EQ(box.button(QMessageBox::Yes)->text().toStdString() +
                  box.button(QMessageBox::No)->text().toStdString(),
              "&Yes&No");
    box.reject();
  });
}

TEST_F(MessageDialog, TellsUntilItIsReadAndStaysWithinASmallWindow) {
  window.resize(240, 320);
  for (const auto key : {Qt::Key_Return, Qt::Key_Escape}) {
    const DialogActor actor(window, "CRITICAL WARNING", [key](QDialog& dialog) {
      EXPECT_EQ(boxOf(dialog).icon(), QMessageBox::Critical);
      EXPECT_LE(dialog.width(), 240);
      EXPECT_EQ(boxOf(dialog).text().simplified(),
                "<b>File not created.</b> Potential disk problem. Try different folder.");
      QTest::keyClick(&dialog, key);
    });
    tellMessage(&window,
                {"CRITICAL WARNING", "<b>File not created.</b> Potential disk problem. Try different folder.",
                 Icon::stop});
  }
}

}  // namespace
}  // namespace kalmira
