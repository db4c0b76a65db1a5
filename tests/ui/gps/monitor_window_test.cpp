#include "ui/gps/monitor_window.h"

#include <thread>

#include <gmock/gmock.h>

#include <QElapsedTimer>
#include <QScrollBar>

#include "ui/gps/sentence_list.h"
#include "ui/window_fixture.h"

namespace kalmira {
namespace {

using testing::ElementsAre;

struct MonitorWindowTest : testing::Test, SessionGround {
  QWidget main;
  MonitorGPSWnd window{{.settings = settings,
                        .clock = clock,
                        .deviceOf = [this](int com) { return deviceOf(com); },
                        .portFactory = [this] { return ports(); },
                        .onLeft = [this] { ++timesLeft; }},
                       dayTheme(),
                       &main};
  int timesLeft = 0;
  SentenceList& list = dynamic_cast<SentenceList&>(*window.findChild<QAbstractScrollArea*>());
  QLineEdit& edit = *window.findChild<QLineEdit*>();

  MonitorWindowTest() {
    settings.gpsInput = 1;
    main.resize(240, 320);
    main.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&main));
  }
  bool waitForLast(std::string_view line) {
    return waitFor([&] { return !list.lines().empty() && list.lines().back() == line; });
  }
  std::vector<std::string> takeHeard() {
    const std::scoped_lock lock(receiver.mutex);
    return std::exchange(receiver.trace, {});
  }
  // What the receiver hears until it has heard `last`.
  std::vector<std::string> heardUntil(std::string_view last) {
    std::vector<std::string> all;
    EXPECT_TRUE(waitFor([&] {
      for (auto& each : takeHeard()) all.push_back(std::move(each));
      return !all.empty() && all.back() == last;
    }));
    return all;
  }
  static void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
  // The key, and what is done with the message then.
  static void sendBy(const DialogActor::Act& act, Qt::Key key = Qt::Key_S) {
    DialogTest::in("GPS Message", act, [key] { press(key); });
  }
  static void confirm(QDialog& dialog) { kalmira::press(dialog, Qt::Key_Return); }
  static void letReaderLook() { QTest::qWait(3 * kReadSliceMs); }
};

TEST_F(MonitorWindowTest, ShowsWhatComesAllOverItsParentTheNewestInView) {
  settings.gpsBaudIndex = 4;
  ASSERT_TRUE(window.open());
  main.resize(640, 480);
  EXPECT_EQ(window.size(), QSize(640, 480));
  main.resize(240, 320);
  EXPECT_EQ(receiver.locked(&FakeDevice::line).baud, 57600);
  EXPECT_TRUE(receiver.locked(&FakeDevice::line).xonXoff);
  receiver.send("$GPGGA,1*00\r\n$GPGSA,2\r\n");
  EXPECT_TRUE(waitForLast("$GPGSA,2"));
  letReaderLook();  // its silence begins once a line has been shown
  clock.advance(7001);
  EXPECT_TRUE(waitForLast("NO DATA"));
  EXPECT_THAT(list.lines(), ElementsAre("$GPGGA,1*00", "$GPGSA,2", "NO DATA"));
  for (std::size_t i = 0; i < kMostMonitorLines + 5; ++i) {
    list.addLine("$GPGGA,101307,5230.1234,N,01322.9876,E,1,08,0.9,34.0,M,39.4,M,,*" + std::to_string(i));
  }
  EXPECT_EQ(list.lines().size(), kMostMonitorLines);
  EXPECT_THAT(list.lines().front(), testing::EndsWith("*5"));
  auto* bar = list.verticalScrollBar();
  EXPECT_EQ(bar->value(), bar->maximum());
}

TEST_F(MonitorWindowTest, KeysAndTapsDoTheSame) {
  ASSERT_TRUE(window.open());
  EXPECT_EQ(markedOf(window), "&Pause");
  for (const bool byKey : {true, false}) {
    byKey ? press(Qt::Key_P) : tapButton(window, "&Pause");
    EXPECT_THAT(heardUntil("purge"), ElementsAre("purge"));
    EXPECT_EQ(window.state().monitorPaused, 1);
    EXPECT_FALSE(buttonOf(window, "&Pause").isVisible());
    EXPECT_EQ(markedOf(window), "&Go");
    receiver.send("$WHILE,PAUSED\r\n");
    letReaderLook();
    EXPECT_TRUE(list.lines().empty() || list.lines().back() == "$AFTER");
    receiver.steps.clear();  // the reader is not at it
    byKey ? press(Qt::Key_G) : tapButton(window, "&Go");
    EXPECT_THAT(heardUntil("purge"), ElementsAre("purge"));
    EXPECT_FALSE(buttonOf(window, "&Go").isEnabled());
    receiver.send("$AFTER\r\n");
    EXPECT_TRUE(waitForLast("$AFTER"));
  }
  for (const auto* expected : {"&Send", "E&xit", "&Pause", "&Send", "E&xit"}) {
    press(Qt::Key_Tab);
    EXPECT_EQ(markedOf(window), expected);
  }
  press(Qt::Key_Return);
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(timesLeft, 1);
}

TEST_F(MonitorWindowTest, SendsWhatIsConfirmedButNothingAfterCancelAndReadsOnFromThePause) {
  ASSERT_TRUE(window.open());
  press(Qt::Key_P);
  heardUntil("purge");
  sendBy([](QDialog& dialog) {
    type(dialog, "message", "$NO");
    tapCancel(dialog);
  });
  letReaderLook();
  EXPECT_THAT(takeHeard(), ElementsAre());
  EXPECT_EQ(window.state().monitorPaused, 1);
  sendBy([](QDialog& dialog) {
    EXPECT_EQ(textOf(dialog, "message"), "$PASHS,NME,SAT,A,ON");
    type(dialog, "message", "$GR\xC3\x9C,pgsx");
    confirm(dialog);
  });
  EXPECT_THAT(heardUntil("write $GR?,pgsx\r\n"), ElementsAre("purge", "purge", "write $GR?,pgsx\r\n"));
  EXPECT_TRUE(buttonOf(window, "&Pause").isVisible());
  receiver.send("$ANSWER\r\n");
  EXPECT_TRUE(waitForLast("$ANSWER"));
  // The tapped edit line has the letters until it is left.
  for (const auto key : {Qt::Key_Escape, Qt::Key_Tab}) {
    QTest::mouseClick(&edit, Qt::LeftButton);
    edit.clear();
    QTest::keyClicks(&edit, "$PX,GS");
    EXPECT_EQ(edit.text(), "$PX,GS");
    press(key);
    EXPECT_TRUE(window.hasFocus());
  }
  QTest::mouseClick(&edit, Qt::LeftButton);
  sendBy(tapOk, Qt::Key_Return);
  EXPECT_THAT(heardUntil("write $PX,GS\r\n"), ElementsAre("purge", "purge", "write $PX,GS\r\n"));
  EXPECT_TRUE(window.isVisible());
}

TEST_F(MonitorWindowTest, APulledReceiverIsToldAndComesBack) {
  ASSERT_TRUE(window.open());
  receiver.plug(false);
  EXPECT_TRUE(waitForLast("Receiver unplugged: trying again every second"));
  sendBy(confirm);
  EXPECT_EQ(list.lines().back(), "Message not sent: receiver unplugged");
  receiver.plug(true);
  receiver.send("$AGAIN\r\n");
  EXPECT_TRUE(waitForLast("$AGAIN"));
  EXPECT_EQ(list.lines()[2], "Receiver is back");
  EXPECT_THAT(takeHeard(), testing::Each("purge"));
}

TEST_F(MonitorWindowTest, EndsAtOnceInEveryState) {
  for (const char* state : {"reading", "unplugged", "lines wait to be shown"}) {
    SCOPED_TRACE(state);
    receiver.plug(true);
    ASSERT_TRUE(window.open());
    EXPECT_TRUE(list.lines().empty());
    if (*state == 'u') receiver.plug(false);
    if (*state == 'u') letReaderLook();
    if (*state == 'l') {
      receiver.send("$A\r\n$B\r\n");
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    QElapsedTimer timer;
    timer.start();
    window.leave();
    EXPECT_LT(timer.elapsed(), 400);  // 200 and what a busy machine takes
    EXPECT_FALSE(window.isVisible());
  }
  EXPECT_EQ(timesLeft, 3);
  ASSERT_TRUE(window.open());
  sendBy([this](QDialog&) { window.leave(); });  // takes the open dialog along
  EXPECT_FALSE(window.isVisible());
  EXPECT_THAT(takeHeard(), testing::Each("purge"));
}

TEST_F(MonitorWindowTest, APortThatDoesNotOpenIsToldWithTheReason) {
  receiver.plug(false);
  main.resize(1200, 1600);  // so that the reason stays on one line
  for (const auto& [portIndex, why] :
       {std::pair{1, "not plugged"}, {4, "No device stands for COM5: plug one in or name one"}}) {
    settings.gpsPortIndex = portIndex;
    std::string told;
    const DialogActor actor("Serial Port", noted(told));
    EXPECT_FALSE(window.open());
    EXPECT_EQ(told, std::string("Cannot open GPS port\n") + why);
  }
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(timesLeft, 0);
}

}  // namespace
}  // namespace kalmira
