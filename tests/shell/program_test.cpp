#include "shell/program.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <csignal>

#include "shell/main_window.h"
#include "shell/remembered.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

class ProgramTest : public testing::Test {
 protected:
  ProgramTest() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       QString::fromStdString((folder.path() / "config").string()));
    options.root = folder.path() / "Kalmira";
  }
  // Runs the program and does `steps` in it, one after another, each again until it says that it is done.
  int run(std::vector<std::function<bool()>> steps) {
    steps_ = std::move(steps);
    next_ = 0;
    nextStep();
    return runProgram(options);
  }
  // A timer a step: one that waits in a dialog must not keep the next from coming.
  void nextStep() {
    QTimer::singleShot(20, &context_, [this] {
      nextStep();
      if (next_ == steps_.size()) return;
      const auto step = next_++;
      if (!steps_[step]()) next_ = step;
    });
  }
  // False while there is no window yet.
  static bool press(Qt::Key key) {
    auto* window = QApplication::activeWindow();
    if (window != nullptr) QTest::keyClick(window, key);
    return window != nullptr;
  }

  TempFolder folder;
  ProgramOptions options;

 private:
  QObject context_;
  std::vector<std::function<bool()>> steps_;
  std::size_t next_ = 0;
};

TEST_F(ProgramTest, TheFirstStartAsksAndTheNextRemembers) {
  EXPECT_EQ(run({[] { return press(Qt::Key_6); }, [] { return press(Qt::Key_N); },
                 [] { return press(Qt::Key_X); }}),
            0);
  EXPECT_TRUE(std::filesystem::exists(options.root / "Storage/KALINI/GLACO.INI"));
  std::string title;
  EXPECT_EQ(run({[&title] {
                   if (const auto* window = QApplication::activeWindow())
                     title = window->windowTitle().toStdString();
                   return !title.empty();
                 },
                 [] { return press(Qt::Key_E); }}),
            0);
  EXPECT_EQ(title, "GLACO");
  EXPECT_TRUE(rememberedNight(QSettings("kalmira", "kalmira")));
}

TEST_F(ProgramTest, AFirstStartWithoutAChoiceEnds) {
  EXPECT_EQ(run({[] { return press(Qt::Key_Escape); }}), 0);
  EXPECT_FALSE(rememberedKind(QSettings("kalmira", "kalmira")));
  EXPECT_FALSE(std::filesystem::exists(options.root / "Storage"));
}

TEST_F(ProgramTest, APortThatIsNotThereIsToldAndTheMachineMayEndIt) {
  options.kind = Kind::orla;
  options.ice = true;
  options.com[0] = "/dev/kalmira-nowhere";
  std::string told;
  const auto note = [&told] {
    if (const auto* modal = QApplication::activeModalWidget()) told = modal->windowTitle().toStdString();
    return !told.empty();
  };
  // The message stands open when the machine asks.
  EXPECT_EQ(run({[] { return press(Qt::Key_L); }, note, [] { return std::raise(SIGTERM) == 0; }}), 0);
  EXPECT_EQ(told, "Serial Port");
  EXPECT_TRUE(std::filesystem::exists(options.root / "Storage/KALINI/ORLICE.INI"));
  EXPECT_FALSE(std::filesystem::exists(options.root / "Storage/KALINI/ORLA.INI"));
}

}  // namespace
}  // namespace kalmira
