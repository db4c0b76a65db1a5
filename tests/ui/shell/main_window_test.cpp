#include "ui/shell/main_window.h"

#include <gmock/gmock.h>

#include "logging/session_link.h"
#include "ui/window_fixture.h"

namespace kalmira {
namespace {

using testing::ElementsAre;

struct MainWindowTest : testing::Test, SessionGround {
  void open(MenuActions actions = {}) {
    window.emplace(MainWindowHost{.clock = clock,
                                  .instrument = {.kind = Kind::vardo, .ice = false},
                                  .night = false,
                                  .open = [this](RememberedKind kind) { return ++opened, host(kind.kind, kind.ice); },
                                  .sessionBegins = [this] { ++sessionsBegun; },
                                  .rememberInstrument = [this](RememberedKind kind) { remembered = kind; },
                                  .rememberNight = {},
                                  .endProgram = [this] { ++ended; },
                                  .actions = std::move(actions)});
    window->resize(480, 640);
    window->show();
    QTest::qWait(20);
  }
  // Notes the title of the next messages and answers them by Enter.
  void answerMessages() {
    QObject::connect(&answering, &QTimer::timeout, [this] {
      auto* message = QApplication::activeModalWidget();
      if (message == nullptr) return;
      told.push_back(message->windowTitle().toStdString());
      QTest::keyClick(message, Qt::Key_Return);
    });
    answering.start(10);
  }
  void key(Qt::Key pressed, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(&*window, pressed, modifiers);
  }

  std::vector<std::string> told;
  std::optional<RememberedKind> remembered;
  int opened = 0, ended = 0, sessionsBegun = 0;
  QTimer answering;
  std::optional<MainWindow> window;
};

// Keys one after another: which action each does, 0 for none, and which button is marked then.
TEST_F(MainWindowTest, KeysAndTapsReachTheActions) {
  std::size_t done = 0;
  MenuActions actions;
  for (std::size_t i = 1; i <= 5; ++i) actions.at(i) = [&done, i](QWidget*) { done = 10 * done + i; };
  open(actions);
  EXPECT_EQ(window->windowTitle(), "VARDO");
  // Drawn when the window has been seen.
  EXPECT_TRUE(QTest::qWaitFor([this] { return !window->windowIcon().isNull(); }));
  EXPECT_EQ(window->windowIcon().pixmap(16).toImage().pixelColor(3, 14), QColor(0x00, 0x44, 0xCC)) << "the ground";
  const struct {
    Qt::Key key;
    std::size_t action;
    const char* marked;
    Qt::KeyboardModifiers modifiers{};
  } steps[]{{Qt::Key_Up, 0, "E&xit"},
            {Qt::Key_Down, 0, "Monitor/&Log"},
            {Qt::Key_S, 1, "&Survey Setup"},
            {Qt::Key_O, 2, "L&ogger Setup"},
            {Qt::Key_G, 3, "Set &GPS Port"},
            {Qt::Key_D, 4, "&Display Options"},
            {Qt::Key_V, 5, "&View Files"},
            {Qt::Key_S, 1, "&Survey Setup", Qt::ShiftModifier},
            {Qt::Key_Tab, 0, "L&ogger Setup"},
            {Qt::Key_Return, 2, "L&ogger Setup"},
            {Qt::Key_V, 0, "L&ogger Setup", Qt::ControlModifier},
            {Qt::Key_Escape, 0, "L&ogger Setup"}};
  for (const auto& step : steps) {
    done = 0;
    key(step.key, step.modifiers);
    EXPECT_EQ(done, step.action) << &step - steps;
    EXPECT_EQ(markedOf(*window), step.marked) << &step - steps;
  }
  tapButton(*window, "&View Files");
  EXPECT_EQ(done, 5U);
  EXPECT_EQ(markedOf(*window), "&View Files");
  EXPECT_EQ(ended + sessionsBegun, 0);
}

TEST_F(MainWindowTest, ASessionCoversTheMenuUntilItIsLeft) {
  open();
  const auto* log = &buttonOf(*window, "Monitor/&Log");
  tapButton(*window, "Monitor/&Log");
  ASSERT_TRUE(window->logging().sessionActive());
  EXPECT_FALSE(log->isVisible());
  window->resize(640, 480);
  EXPECT_EQ(window->logging().geometry(), window->rect());
  key(Qt::Key_M);  // a key of the menu, which is not there now
  EXPECT_EQ(opened, 1);
  window->logging().leaveAtOnce();
  EXPECT_TRUE(log->isVisible());
  EXPECT_FALSE(window->logging().isVisible());
  EXPECT_TRUE(window->hasFocus());
  device.plug(false);  // a session that is refused leaves the menu
  answerMessages();
  key(Qt::Key_L);
  EXPECT_THAT(told, ElementsAre("Serial Port"));
  EXPECT_EQ(markedOf(*window), "Monitor/&Log");
  EXPECT_EQ(sessionsBegun, 2);
  EXPECT_EQ(ended, 0);
  device.plug(true);
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
  EXPECT_TRUE(waitFor([this] { return ended == 1; }));
  clock.set(kLongestUptimeMs);
  open();
  QTest::qWait(50);
  EXPECT_EQ(ended, 1);
  clock.advance(1);
  key(Qt::Key_N);  // no other command looks at it
  EXPECT_EQ(ended, 1);
  key(Qt::Key_L);
  EXPECT_EQ(ended, 2);
  EXPECT_THAT(told, ElementsAre("PROGRAM STOP", "PROGRAM STOP"));
}

TEST_F(MainWindowTest, AnotherInstrumentIsRememberedAndTheSameOneLoadsNothingAnew) {
  open();
  for (const auto pressed : {Qt::Key_6, Qt::Key_Return}) {
    QTimer::singleShot(20, [pressed] { QTest::keyClick(QApplication::activeModalWidget(), pressed); });
    key(Qt::Key_M);
    EXPECT_TRUE(remembered && remembered->kind == Kind::glaco);
    EXPECT_EQ(window->windowTitle(), "GLACO");
    EXPECT_EQ(opened, 2);
  }
}

}  // namespace
}  // namespace kalmira
