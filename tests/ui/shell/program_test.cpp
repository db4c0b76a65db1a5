#include "ui/shell/program.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <csignal>

#include "support/temp_folder.h"
#include "ui/shell/main_window.h"
#include "ui/shell/remembered.h"

namespace kalmira {
namespace {

class ProgramTest : public testing::Test {
 protected:
  using Step = std::function<bool()>;
  ProgramTest() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       QString::fromStdString((folder.path() / "config").string()));
    options.root = folder.path() / "Kalmira";
  }
  // Runs the program and does `steps` in it, one after another, each again until it says that it is done.
  int run(std::vector<Step> steps) {
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
  // Each false while there is no window yet, or none of that title.
  static Step press(Qt::Key key) {
    return [key] {
      auto* window = QApplication::activeWindow();
      if (window != nullptr) QTest::keyClick(window, key);
      return window != nullptr;
    };
  }
  static Step titled(const char* title) {
    return [title] {
      const auto* window = QApplication::activeWindow();
      return window != nullptr && window->windowTitle() == title;
    };
  }
  static bool terminate() { return std::raise(SIGTERM) == 0; }
  bool hasSettings(const char* name) const { return std::filesystem::exists(options.root / "Storage/KALINI" / name); }

  TempFolder folder;
  ProgramOptions options;

 private:
  QObject context_;
  std::vector<Step> steps_;
  std::size_t next_ = 0;
};

TEST_F(ProgramTest, TheFirstStartAsksAndTheNextRemembers) {
  EXPECT_EQ(run({press(Qt::Key_Escape)}), 0);
  EXPECT_FALSE(lastInstrument(QSettings("kalmira", "kalmira")));
  EXPECT_FALSE(std::filesystem::exists(options.root / "Storage"));
  EXPECT_EQ(run({press(Qt::Key_6), press(Qt::Key_N), press(Qt::Key_X)}), 0);
  EXPECT_TRUE(hasSettings("GLACO.INI"));
  EXPECT_EQ(run({titled("GLACO"), press(Qt::Key_E)}), 0);
  EXPECT_TRUE(rememberedNight(QSettings("kalmira", "kalmira")));
}

// The message stands open when the machine asks.
TEST_F(ProgramTest, APortThatIsNotThereIsToldAndTheMachineMayEndIt) {
  options.kind = Kind::orla;
  options.ice = true;
  options.com[0] = "/dev/kalmira-nowhere";
  EXPECT_EQ(run({press(Qt::Key_L), titled("Serial Port"), terminate}), 0);
  EXPECT_TRUE(hasSettings("ORLICE.INI"));
  EXPECT_FALSE(hasSettings("ORLA.INI"));
}

TEST_F(ProgramTest, AFileIsShownByTheLoggerOfItsInstrument) {
  options.file = folder.path() / "survey.IOR";
  writeFile(options.file, "GLACO   W210GPS0000   3\nH survey     1.000     \n");
  const auto leaveViewer = [] {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_X);
    return true;
  };
  EXPECT_EQ(run({titled("survey.IOR  GLACO"), leaveViewer, press(Qt::Key_X)}), 0);
  EXPECT_FALSE(lastInstrument(QSettings("kalmira", "kalmira")));
}

// The settings can be changed all the same; that they cannot be kept is told once.
TEST_F(ProgramTest, ASettingsFolderThatCannotBeWrittenIsToldOnce) {
  options.kind = Kind::glaco;
  writeFile(options.root / "Storage", "a file where a folder is to be");
  const auto confirm = [](const char* title) {
    return [title] {
      auto* modal = QApplication::activeModalWidget();
      if (modal == nullptr || modal->windowTitle() != title) return false;
      QTest::keyClick(modal, Qt::Key_Return);
      return true;
    };
  };
  bool toldAgain = false;
  QElapsedTimer sinceSaved;
  const auto quiet = [&] {
    if (!sinceSaved.isValid()) sinceSaved.start();
    toldAgain = toldAgain || QApplication::activeModalWidget() != nullptr;
    return toldAgain || sinceSaved.elapsed() > 1500;
  };
  // Without a desktop no window becomes the active one when a dialog is closed.
  const auto logger = [] {
    for (auto* window : QApplication::topLevelWidgets()) {
      if (window->objectName() == "PELLO") QTest::keyClick(window, Qt::Key_O);
    }
    return true;
  };
  EXPECT_EQ(run({confirm("WARNING"), logger, confirm("Logger Setup"), quiet, terminate}), 0);
  EXPECT_FALSE(toldAgain);
}

}  // namespace
}  // namespace kalmira
