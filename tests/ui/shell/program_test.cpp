#include "ui/shell/program.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <csignal>
#include <fstream>

#include "support/temp_folder.h"
#include "ui/shell/main_window.h"
#include "ui/shell/remembered.h"

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
  EXPECT_FALSE(lastInstrument(QSettings("kalmira", "kalmira")));
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

TEST_F(ProgramTest, AFileIsShownByTheLoggerOfItsInstrument) {
  options.file = folder.path() / "survey.IOR";
  std::ofstream(options.file) << "GLACO   W210GPS0000   3\nH survey     1.000     \n";
  std::string title;
  EXPECT_EQ(run({[&title] {
                   const auto* window = QApplication::activeWindow();
                   if (window != nullptr && window->windowTitle().startsWith("survey"))
                     title = window->windowTitle().toStdString();
                   return !title.empty();
                 },
                 [] {
                   QTest::keyClick(QApplication::focusWidget(), Qt::Key_X);
                   return true;
                 },
                 [] { return press(Qt::Key_X); }}),
            0);
  EXPECT_EQ(title, "survey.IOR  GLACO");
  EXPECT_FALSE(lastInstrument(QSettings("kalmira", "kalmira")));
}

// The settings can be changed all the same; that they cannot be kept is told once.
TEST_F(ProgramTest, ASettingsFolderThatCannotBeWrittenIsToldOnce) {
  options.kind = Kind::glaco;
  std::filesystem::create_directories(options.root);
  std::ofstream(options.root / "Storage") << "a file where a folder is to be";
  const auto opened = [](const char* title) {
    auto* modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal->windowTitle() != title) return false;
    QTest::keyClick(modal, Qt::Key_Return);
    return true;
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
  EXPECT_EQ(run({[&] { return opened("WARNING"); }, logger, [&] { return opened("Logger Setup"); }, quiet,
                 [] { return std::raise(SIGTERM) == 0; }}),
            0);
  EXPECT_FALSE(toldAgain);
}

}  // namespace
}  // namespace kalmira
