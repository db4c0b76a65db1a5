#include "ui/shell/main_window.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "logging/session_start.h"
#include "support/fake_clock.h"
#include "support/fake_disk.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

// A port that no device answers on: a session of most instruments starts and hears nothing.
class SilentPort final : public Port {
 public:
  std::optional<PortError> open(const std::string& device, const LineSettings&) override {
    if (device != "silent") return PortError{.kind = PortErrorKind::missing, .text = "not there"};
    return std::nullopt;
  }
  ReadResult read(std::span<std::uint8_t>, int) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return {};
  }
  void purge() override {}
  unsigned modemStatus() override { return 0; }
  bool write(std::span<const std::uint8_t>, int) override { return true; }
  void close() override {}
};

class MainWindowTest : public testing::Test {
 protected:
  void open(MenuActions actions = {}) {
    window.emplace(MainWindowHost{.clock = clock,
                                  .instrument = {.kind = Kind::vardo, .ice = false},
                                  .night = false,
                                  .open = [this](RememberedKind kind) { return hostOf(kind); },
                                  .sessionBegins = [this] { ++sessionsBegun; },
                                  .rememberInstrument = [this](RememberedKind kind) { remembered = kind; },
                                  .rememberNight = [this](bool chosen) { night = chosen; },
                                  .endProgram = [this] { ++ended; },
                                  .actions = std::move(actions)});
    window->resize(480, 640);
    window->show();
    QTest::qWait(20);
  }
  LoggingHost hostOf(RememberedKind kind) {
    ++opened;
    SessionSetup setup;
    setup.kind = kind.kind;
    setup.iceChosen = kind.ice;
    setup.root = folder.path();
    return {.setup = setup,
            .settings = settings,
            .clock = clock,
            .disk = disk,
            .deviceOf = [this](int) { return device; },
            .portFactory = [] { return std::make_unique<SilentPort>(); },
            .saveSettings = [](const Settings&) { return std::string(); },
            .takeSettingsProblem = [this] { return std::exchange(problem, {}); },
            .onLeft = {},
            .endProgram = {},
            .displayOptions = {}};
  }
  // Notes the title of the next message and answers it by Enter.
  void answerMessages() {
    QObject::connect(&answering, &QTimer::timeout, [this] {
      auto* message = QApplication::activeModalWidget();
      if (message == nullptr) return;
      told.push_back(message->windowTitle().toStdString());
      QTest::keyClick(message, Qt::Key_Return);
    });
    answering.start(10);
  }
  QPushButton& button(const char* name) { return *window->findChild<QPushButton*>(name); }
  int marked() {
    int found = -1;
    for (int i = 0; i < kMenuCommands; ++i) {
      if (!button(std::to_string(kFirstMenuIdentifier + i).c_str()).isDefault()) continue;
      EXPECT_EQ(found, -1) << "two buttons are marked";
      found = i;
    }
    return found;
  }
  void key(int qtKey, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(&*window, static_cast<Qt::Key>(qtKey), modifiers);
  }

  TempFolder folder;
  FakeClock clock;
  FakeDisk disk;
  Settings settings;
  std::string device;  // of every COM number
  std::string problem;
  std::vector<std::string> told;
  std::optional<RememberedKind> remembered;
  std::optional<bool> night;
  int opened = 0, ended = 0, sessionsBegun = 0;
  QTimer answering;
  std::optional<MainWindow> window;
};

TEST_F(MainWindowTest, KeysAndTapsReachTheActions) {
  std::vector<int> done;
  MenuActions actions;
  for (int i = 1; i <= 5; ++i) {
    actions[static_cast<std::size_t>(i)] = [&done, i](QWidget*) { done.push_back(i); };
  }
  open(actions);
  EXPECT_EQ(window->windowTitle(), "VARDO");
  for (const int letter : {Qt::Key_S, Qt::Key_O, Qt::Key_G, Qt::Key_D, Qt::Key_V}) key(letter);
  key(Qt::Key_S, Qt::ShiftModifier);
  EXPECT_THAT(done, testing::ElementsAre(1, 2, 3, 4, 5, 1));
  done.clear();
  // The highlight goes by the arrows and Tab, and Enter acts on it.
  key(Qt::Key_Down);
  key(Qt::Key_Right);
  key(Qt::Key_Tab);
  EXPECT_EQ(marked(), 4);
  key(Qt::Key_Return);
  key(Qt::Key_Up);
  key(Qt::Key_Left);
  key(Qt::Key_Enter);
  EXPECT_EQ(marked(), 2);
  for (const int other : {Qt::Key_A, Qt::Key_Space, Qt::Key_1, Qt::Key_Backtab, Qt::Key_Escape}) key(other);
  key(Qt::Key_V, Qt::ControlModifier);
  QTest::mouseClick(&button("425"), Qt::LeftButton);
  EXPECT_THAT(done, testing::ElementsAre(4, 2, 5));
  EXPECT_EQ(marked(), 5);
  EXPECT_EQ(ended, 0);
}

TEST_F(MainWindowTest, ACommandWithoutAnActionIsGreyed) {
  open();
  for (const auto* name : {"421", "422", "423", "424", "425"}) EXPECT_FALSE(button(name).isEnabled());
  for (const int letter : {Qt::Key_S, Qt::Key_O, Qt::Key_G, Qt::Key_D, Qt::Key_V}) key(letter);
  EXPECT_EQ(marked(), 0);
  key(Qt::Key_Tab);
  EXPECT_EQ(marked(), 6);
  key(Qt::Key_Return);
  EXPECT_EQ(ended, 1);
}

TEST_F(MainWindowTest, ExitByEveryWay) {
  for (const int letter : {Qt::Key_X, Qt::Key_E}) {
    open();
    ended = 0;
    key(letter);
    EXPECT_EQ(ended, 1);
    EXPECT_FALSE(window->isVisible());
  }
}

TEST_F(MainWindowTest, ARefusedSessionLeavesTheMenu) {
  open();
  answerMessages();
  key(Qt::Key_L);
  EXPECT_THAT(told, testing::ElementsAre("Serial Port"));
  EXPECT_EQ(sessionsBegun, 1);
  EXPECT_FALSE(window->logging().sessionActive());
  EXPECT_TRUE(button("420").isVisible());
  EXPECT_EQ(ended, 0);
}

TEST_F(MainWindowTest, ASessionCoversTheMenuUntilItIsLeft) {
  device = "silent";
  open();
  QTest::mouseClick(&button("420"), Qt::LeftButton);
  ASSERT_TRUE(window->logging().sessionActive());
  EXPECT_TRUE(window->logging().isVisible());
  EXPECT_EQ(window->logging().size(), window->size());
  EXPECT_FALSE(button("420").isVisible());
  window->resize(640, 480);
  EXPECT_EQ(window->logging().size(), QSize(640, 480));
  // Keys of the menu are the session's now.
  key(Qt::Key_M);
  EXPECT_EQ(opened, 1);
  window->logging().leaveAtOnce();
  EXPECT_TRUE(button("420").isVisible());
  EXPECT_FALSE(window->logging().isVisible());
  EXPECT_TRUE(window->hasFocus());
  EXPECT_EQ(ended, 0);
}

TEST_F(MainWindowTest, TheMachineEndsASessionAndTheProgram) {
  device = "silent";
  open();
  key(Qt::Key_L);
  ASSERT_TRUE(window->logging().sessionActive());
  window->endAtOnce();
  EXPECT_FALSE(window->logging().sessionActive());
  EXPECT_EQ(ended, 1);
}

TEST_F(MainWindowTest, UptimeStopsTheProgramAtItsStartAndAtLog) {
  clock.set(kLongestUptimeMs + 1);
  answerMessages();
  open();
  EXPECT_TRUE(QTest::qWaitFor([this] { return ended == 1; }, 2000));
  EXPECT_THAT(told, testing::ElementsAre("PROGRAM STOP"));

  clock.set(kLongestUptimeMs);
  open();
  QTest::qWait(50);
  EXPECT_EQ(ended, 1);
  clock.advance(1);
  key(Qt::Key_N);  // no other command looks at it
  EXPECT_EQ(ended, 1);
  key(Qt::Key_L);
  EXPECT_EQ(ended, 2);
  EXPECT_EQ(told.size(), 2U);
}

TEST_F(MainWindowTest, ASettingsProblemIsToldOnce) {
  problem = "Cannot write ORLA.INI";
  answerMessages();
  open();
  EXPECT_TRUE(QTest::qWaitFor([this] { return !told.empty(); }, 2000));
  QTest::qWait(50);
  EXPECT_THAT(told, testing::ElementsAre("WARNING"));
}

TEST_F(MainWindowTest, InstrumentAndThemeAreChangedAndRemembered) {
  open();
  QTest::mouseClick(&button("theme"), Qt::LeftButton);
  EXPECT_EQ(night, true);
  EXPECT_EQ(button("theme").text(), "Day");
  key(Qt::Key_N);
  EXPECT_EQ(night, false);

  QTimer::singleShot(20, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_6); });
  key(Qt::Key_M);
  ASSERT_TRUE(remembered);
  EXPECT_EQ(remembered->kind, Kind::glaco);
  EXPECT_EQ(window->windowTitle(), "GLACO");
  EXPECT_EQ(opened, 2);
  // The same again loads nothing anew.
  QTimer::singleShot(20, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return); });
  key(Qt::Key_M);
  EXPECT_EQ(opened, 2);
}

}  // namespace
}  // namespace kalmira
