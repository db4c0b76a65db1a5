#include "ui/gps/monitor_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDialog>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <condition_variable>
#include <mutex>

#include "link/qt_serial_port.h"
#include "support/dialog_actor.h"
#include "support/fake_clock.h"
#include "support/pty.h"
#include "ui/gps/sentence_list.h"

namespace kalmira {
namespace {

using testing::ElementsAre;
using testing::EndsWith;

// A receiver on a cable that can be pulled.
struct Receiver {
  std::mutex mutex;
  std::condition_variable changed;
  std::string bytes;
  std::vector<std::string> heard;  // what was written to it, and "purge"
  LineSettings line;
  bool plugged = true;

  void send(std::string_view text) {
    const std::scoped_lock lock(mutex);
    bytes += text;
    changed.notify_all();
  }
  void plug(bool in) {
    const std::scoped_lock lock(mutex);
    plugged = in;
    changed.notify_all();
  }
  std::vector<std::string> takeHeard() {
    const std::scoped_lock lock(mutex);
    return std::exchange(heard, {});
  }
  void hear(std::string what) {
    const std::scoped_lock lock(mutex);
    heard.push_back(std::move(what));
  }
};

class ReceiverPort final : public Port {
 public:
  explicit ReceiverPort(Receiver& receiver) : receiver_(receiver) {}
  std::optional<PortError> open(const std::string& device, const LineSettings& line) override {
    const std::scoped_lock lock(receiver_.mutex);
    receiver_.line = line;
    if (receiver_.plugged) return std::nullopt;
    return PortError{.kind = PortErrorKind::missing, .text = device + " is not there"};
  }
  ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) override {
    std::unique_lock lock(receiver_.mutex);
    receiver_.changed.wait_for(lock, std::chrono::milliseconds(std::min(timeoutMs, 20)),
                               [this] { return !receiver_.bytes.empty() || !receiver_.plugged; });
    if (!receiver_.plugged) return {.count = 0, .gone = true};
    const auto count = std::min(buffer.size(), receiver_.bytes.size());
    std::copy_n(receiver_.bytes.begin(), count, buffer.begin());
    receiver_.bytes.erase(0, count);
    return {.count = count, .gone = false};
  }
  void purge() override { receiver_.hear("purge"); }
  unsigned modemStatus() override { return 0; }
  bool write(std::span<const std::uint8_t> bytes, int) override {
    receiver_.hear({bytes.begin(), bytes.end()});
    return true;
  }
  void close() override {}

 private:
  Receiver& receiver_;
};

struct MonitorWindowTest : testing::Test {
  FakeClock clock;
  Settings settings;
  Receiver receiver;
  std::string device = "gps";
  PortFactory factory = [this] { return std::make_unique<ReceiverPort>(receiver); };
  int left = 0;
  QWidget main;
  MonitorGPSWnd window{{.settings = settings,
                        .clock = clock,
                        .deviceOf = [this](int com) { return com == 2 ? device : std::string(); },
                        .portFactory = [this] { return factory(); },
                        .onLeft = [this] { ++left; }},
                       dayTheme(),
                       &main};

  MonitorWindowTest() {
    settings.gpsInput = 1;
    main.resize(240, 320);
    main.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&main));
  }

  SentenceList& list() { return dynamic_cast<SentenceList&>(*window.findChild<QAbstractScrollArea*>()); }
  QLineEdit& edit() { return *window.findChild<QLineEdit*>(); }
  std::vector<std::string> lines() { return {list().lines().begin(), list().lines().end()}; }
  bool waitFor(const std::function<bool()>& happened) { return QTest::qWaitFor(happened, 10000); }
  bool waitForLast(std::string_view line) {
    return waitFor([&] { return !list().lines().empty() && list().lines().back() == line; });
  }
  // What the receiver hears until it has heard `last`.
  std::vector<std::string> heardUntil(std::string_view last) {
    std::vector<std::string> all;
    EXPECT_TRUE(waitFor([&] {
      for (auto& each : receiver.takeHeard()) all.push_back(std::move(each));
      return !all.empty() && all.back() == last;
    }));
    return all;
  }
  void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
  QPushButton* button(const QString& text) {
    for (auto* each : window.findChildren<QPushButton*>()) {
      if (each->text() == text) return each;
    }
    return nullptr;
  }
  void tap(const QString& text) { QTest::mouseClick(button(text), Qt::LeftButton); }
  std::string defaultButton() {
    for (auto* each : window.findChildren<QPushButton*>()) {
      if (each->isDefault() && each->isVisible()) return each->text().toStdString();
    }
    return {};
  }
  // Waits until the reader has seen what was asked before.
  void letReaderLook() { QTest::qWait(3 * kReadSliceMs); }
};

TEST_F(MonitorWindowTest, ShowsWhatComesAllOverItsParent) {
  settings.gpsBaudIndex = 4;
  ASSERT_TRUE(window.open());
  EXPECT_EQ(window.geometry(), main.rect());
  main.resize(640, 480);
  EXPECT_EQ(window.size(), QSize(640, 480));
  EXPECT_EQ(receiver.line.baud, 57600);
  EXPECT_TRUE(receiver.line.xonXoff);
  receiver.send("$GPGGA,1*00\r\n$GPGSA,2\r\n");
  EXPECT_TRUE(waitForLast("$GPGSA,2"));
  letReaderLook();  // its silence begins once a line has been shown
  clock.advance(7001);
  EXPECT_TRUE(waitForLast("NO DATA"));
  EXPECT_THAT(lines(), ElementsAre("$GPGGA,1*00", "$GPGSA,2", "NO DATA"));
}

TEST_F(MonitorWindowTest, KeysAndTapsDoTheSame) {
  ASSERT_TRUE(window.open());
  EXPECT_EQ(defaultButton(), "&Pause");
  for (const bool byKey : {true, false}) {
    byKey ? press(Qt::Key_P) : tap("&Pause");
    EXPECT_THAT(heardUntil("purge"), ElementsAre("purge"));
    EXPECT_EQ(window.state().monitorPaused, 1);
    EXPECT_FALSE(button("&Pause")->isVisible());
    EXPECT_EQ(defaultButton(), "&Go");
    receiver.send("$WHILE,PAUSED\r\n");
    letReaderLook();
    EXPECT_TRUE(lines().empty() || lines().back() == "$AFTER");
    receiver.bytes.clear();  // the reader is not at it
    byKey ? press(Qt::Key_G) : tap("&Go");
    EXPECT_THAT(heardUntil("purge"), ElementsAre("purge"));
    EXPECT_FALSE(button("&Go")->isEnabled());
    receiver.send("$AFTER\r\n");
    EXPECT_TRUE(waitForLast("$AFTER"));
  }
  for (const auto* expected : {"&Send", "E&xit", "&Pause"}) {
    press(Qt::Key_Tab);
    EXPECT_EQ(defaultButton(), expected);
  }
  press(Qt::Key_Tab);
  press(Qt::Key_Tab);
  press(Qt::Key_Return);  // "E&xit"
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(left, 1);
}

TEST_F(MonitorWindowTest, SendsWhatIsConfirmedAndReadsOnFromThePause) {
  ASSERT_TRUE(window.open());
  press(Qt::Key_P);
  heardUntil("purge");
  {
    const DialogActor actor(window, "GPS Message", [](QDialog& dialog) {
      auto* field = dialog.findChild<QLineEdit*>("message");
      EXPECT_EQ(field->text(), "$PASHS,NME,SAT,A,ON");
      field->setText(QString::fromUtf8("$GR\xC3\x9C,"));
      QTest::keyClicks(field, "pgsx");
      QTest::keyClick(field, Qt::Key_Return);
    });
    press(Qt::Key_S);
  }
  EXPECT_THAT(heardUntil("$GR?,pgsx\r\n"), ElementsAre("purge", "purge", "$GR?,pgsx\r\n"));
  EXPECT_EQ(edit().text().toStdString(), "$GR\xC3\x9C,pgsx");
  EXPECT_EQ(window.state().monitorPaused, 0);
  EXPECT_TRUE(button("&Pause")->isVisible());
  receiver.send("$ANSWER\r\n");
  EXPECT_TRUE(waitForLast("$ANSWER"));
}

TEST_F(MonitorWindowTest, CancelledItSendsNothingAndStaysPaused) {
  ASSERT_TRUE(window.open());
  tap("&Pause");
  heardUntil("purge");
  {
    const DialogActor actor(window, "GPS Message", [](QDialog& dialog) {
      dialog.findChild<QLineEdit*>("message")->setText("$NO");
      QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    tap("&Send");
  }
  letReaderLook();
  EXPECT_THAT(receiver.takeHeard(), ElementsAre());
  EXPECT_EQ(edit().text(), "$PASHS,NME,SAT,A,ON");
  EXPECT_EQ(window.state().monitorPaused, 1);
}

TEST_F(MonitorWindowTest, TheTappedEditLineHasTheLettersUntilItIsLeft) {
  ASSERT_TRUE(window.open());
  EXPECT_TRUE(window.hasFocus());
  for (const auto key : {Qt::Key_Escape, Qt::Key_Tab}) {
    QTest::mouseClick(&edit(), Qt::LeftButton);
    ASSERT_TRUE(edit().hasFocus());
    edit().clear();
    QTest::keyClicks(&edit(), "$PX,GS");
    EXPECT_EQ(edit().text(), "$PX,GS");
    press(key);
    EXPECT_TRUE(window.hasFocus());
    EXPECT_EQ(window.state().monitorDefaultButton, 1);
  }
  QTest::mouseClick(&edit(), Qt::LeftButton);
  {
    const DialogActor actor(window, "GPS Message", [](QDialog& dialog) {
      QTest::mouseClick(dialog.findChild<QPushButton*>("ok"), Qt::LeftButton);
    });
    press(Qt::Key_Return);
  }
  EXPECT_THAT(heardUntil("$PX,GS\r\n"), ElementsAre("purge", "purge", "$PX,GS\r\n"));
  EXPECT_TRUE(window.isVisible());
}

TEST_F(MonitorWindowTest, APulledReceiverIsToldAndComesBack) {
  ASSERT_TRUE(window.open());
  receiver.plug(false);
  EXPECT_TRUE(waitForLast("Receiver unplugged: trying again every second"));
  {
    const DialogActor actor(window, "GPS Message",
                            [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); });
    press(Qt::Key_S);
  }
  EXPECT_EQ(lines().back(), "Message not sent: receiver unplugged");
  receiver.plug(true);
  receiver.send("$AGAIN\r\n");
  EXPECT_TRUE(waitForLast("$AGAIN"));
  EXPECT_EQ(lines()[2], "Receiver is back");
  for (const auto& heard : receiver.takeHeard()) EXPECT_EQ(heard, "purge");
}

TEST_F(MonitorWindowTest, EndsAtOnceInEveryState) {
  const std::vector<std::function<void()>> states{
      [] {},
      [this] {
        press(Qt::Key_P);
        letReaderLook();
      },
      [this] {
        receiver.plug(false);
        letReaderLook();
      },
      [this] {  // lines wait to be shown
        receiver.plug(true);
        receiver.send("$A\r\n$B\r\n");
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
      }};
  for (const auto& enter : states) {
    receiver.plug(true);
    ASSERT_TRUE(window.open());
    EXPECT_TRUE(list().lines().empty());
    EXPECT_EQ(defaultButton(), "&Pause");
    enter();
    QElapsedTimer timer;
    timer.start();
    window.leave();
    EXPECT_LT(timer.elapsed(), 400);  // 200 and what a busy machine takes
    EXPECT_FALSE(window.isVisible());
  }
  window.leave();
  EXPECT_EQ(left, 4);
}

TEST_F(MonitorWindowTest, LeavingTakesTheOpenDialogAlong) {
  ASSERT_TRUE(window.open());
  {
    const DialogActor actor(window, "GPS Message", [this](QDialog&) { window.leave(); });
    press(Qt::Key_S);
  }
  EXPECT_FALSE(window.isVisible());
  EXPECT_THAT(receiver.takeHeard(), ElementsAre());
}

TEST_F(MonitorWindowTest, APortThatDoesNotOpenIsToldWithTheReason) {
  settings.gpsInput = 0;
  EXPECT_FALSE(window.open());
  settings.gpsInput = 1;
  struct Row {
    int portIndex;
    const char* why;
  };
  receiver.plug(false);
  for (const auto& [portIndex, why] :
       {Row{1, "gps is not there"}, Row{4, "No device stands for COM5: plug one in or name one"}}) {
    settings.gpsPortIndex = portIndex;
    main.resize(1200, 1600);  // so that the reason stays on one line
    const DialogActor actor(main, "Serial Port", [why = why](QDialog& dialog) {
      EXPECT_EQ(dynamic_cast<QMessageBox&>(dialog).text().toStdString(),
                std::string("Cannot open GPS port\n") + why);
      dialog.accept();
    });
    EXPECT_FALSE(window.open());
  }
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(left, 0);
}

TEST_F(MonitorWindowTest, KeepsTheNewestLinesAndTheLastInView) {
  ASSERT_TRUE(window.open());
  for (std::size_t i = 0; i < kMostMonitorLines + 5; ++i) {
    list().addLine("$GPGGA,101307,5230.1234,N,01322.9876,E,1,08,0.9,34.0,M,39.4,M,,*" + std::to_string(i));
  }
  EXPECT_EQ(list().lines().size(), kMostMonitorLines);
  EXPECT_THAT(list().lines().front(), EndsWith("*5"));
  auto* bar = list().verticalScrollBar();
  EXPECT_EQ(bar->value(), bar->maximum());
  // Two rows each at this width.
  EXPECT_EQ(bar->maximum() + bar->pageStep(), static_cast<int>(2 * kMostMonitorLines));
  press(Qt::Key_PageUp);
  EXPECT_EQ(bar->value(), bar->maximum() - bar->pageStep() + 1);
  receiver.send("$NEW\r\n");
  EXPECT_TRUE(waitForLast("$NEW"));
  EXPECT_EQ(bar->value(), bar->maximum());
}

TEST_F(MonitorWindowTest, NothingIsCutAtTheEdge) {
  ASSERT_TRUE(window.open());
  for (const auto& size : {QSize(240, 320), QSize(320, 240), QSize(480, 640), QSize(700, 500)}) {
    main.resize(size);
    list().addLine(std::string(180, 'M'));
    const QImage image = list().viewport()->grab().toImage();
    int dark = 0;
    for (int y = 0; y < image.height(); ++y) {
      dark += qGray(image.pixel(image.width() - 1, y)) < 200 ? 1 : 0;
      dark += qGray(image.pixel(0, y)) < 200 ? 1 : 0;
    }
    EXPECT_EQ(dark, 0) << size.width();
  }
}

TEST_F(MonitorWindowTest, TalksToARealPort) {
  const Pty pty;
  device = pty.name;
  factory = makeQtSerialPort;
  ASSERT_TRUE(window.open());
  ASSERT_TRUE(pty.send("$GPGGA,1*00\r\n"));
  EXPECT_TRUE(waitForLast("$GPGGA,1*00"));
  {
    const DialogActor actor(window, "GPS Message",
                            [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); });
    press(Qt::Key_S);
  }
  EXPECT_EQ(pty.receive(), "$PASHS,NME,SAT,A,ON\r\n");
  window.leave();
}

}  // namespace
}  // namespace kalmira
