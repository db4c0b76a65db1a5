#include "ui/shell/program.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QSettings>
#include <csignal>

#include "support/command_line_case.h"
#include "support/dialogs.h"
#include "support/temp_folder.h"
#include "ui/shell/main_window.h"
#include "ui/shell/remembered.h"
#include "ui/shell/single_instance.h"

namespace kalmira {
namespace {

struct ProgramTest : testing::Test {
  using Step = std::function<bool()>;
  ProgramTest() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QString::fromStdString(folder.path() / "config"));
    options.root = folder.path() / "Kalmira";
  }
  // Runs the program and does `work` in it, one step after another, each again until it says that it is done.
  int run(std::vector<Step> work) {
    steps = std::move(work);
    next = 0;
    nextStep();
    return runProgram(options);
  }
  // A timer a step: one that waits in a dialog must not keep the next from coming.
  void nextStep() {
    QTimer::singleShot(20, &context, [this] {
      nextStep();
      if (next == steps.size()) return;
      const auto step = next++;
      if (!steps[step]()) next = step;
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
  // What the next run of the program has.
  static QSettings store() { return QSettings("kalmira", "kalmira"); }

  TempFolder folder;
  ProgramOptions options;
  QObject context;
  std::vector<Step> steps;
  std::size_t next = 0;
};

TEST_F(ProgramTest, TheFirstStartAsksAndTheNextRemembers) {
  EXPECT_EQ(run({press(Qt::Key_Escape)}), 0);
  EXPECT_FALSE(lastInstrument(store()));
  EXPECT_FALSE(std::filesystem::exists(options.root / "Storage"));
  EXPECT_EQ(run({press(Qt::Key_6), press(Qt::Key_N), press(Qt::Key_X)}), 0);
  EXPECT_TRUE(hasSettings("GLACO.INI"));
  EXPECT_EQ(run({titled("GLACO"), press(Qt::Key_E)}), 0);
  EXPECT_TRUE(rememberedNight(store()));
  ComAssignments devices;
  devices[0] = "/dev/serial/by-id/usb, with a comma";
  for (const char* sixth : {"/dev/ttyS5", ""}) {
    auto settings = store();
    devices[5] = sixth;
    rememberComDevices(settings, devices);
  }
  EXPECT_EQ(rememberedComDevices(store()), devices);
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
  const auto leaveViewer = [] { return QTest::keyClick(QApplication::focusWidget(), Qt::Key_X), true; };
  EXPECT_EQ(run({titled("survey.IOR  GLACO"), leaveViewer, press(Qt::Key_X)}), 0);
  EXPECT_FALSE(lastInstrument(store()));
}

TEST_F(ProgramTest, AFileThatCannotBeOpenedIsToldAndTheProgramGoesOnAsWithoutIt) {
  options.file = folder.path() / "none.ROR";
  const auto confirm = [] {
    auto* modal = openDialog("View Files");
    if (modal != nullptr) QTest::keyClick(modal, Qt::Key_Return);
    return modal != nullptr;
  };
  EXPECT_EQ(run({confirm, press(Qt::Key_6), titled("GLACO"), press(Qt::Key_X)}), 0);
}

TEST_F(ProgramTest, ASettingsFolderThatCannotBeWrittenIsTold) {
  options.kind = Kind::glaco;
  writeFile(options.root / "Storage", "a file where a folder is to be");
  const auto confirm = [] {
    auto* modal = openDialog("WARNING");
    if (modal != nullptr) QTest::keyClick(modal, Qt::Key_Return);
    return modal != nullptr;
  };
  EXPECT_EQ(run({confirm, terminate}), 0);
}

TEST(ProgramOptions, AreTakenAndWhatIsWrongIsSaid) {
  const auto table = programCommandLine;
  const auto all = optionsOf(table,
                             "--kind vardo --root=/data/x --com 1=/dev/pts/3 --com=12=/dev/a=b --screen landscape "
                             "--scale 1.5 --theme night --tick-base program --storage-class 3");
  EXPECT_EQ(all.com[0], "/dev/pts/3");
  EXPECT_EQ(all.com[11], "/dev/a=b");
  EXPECT_TRUE(all.kind == Kind::vardo && all.root == "/data/x" && all.portrait == false && all.scale == 1.5);
  EXPECT_TRUE(all.night == true && all.tickBase == TickBase::program && all.storageClass == 3);
  EXPECT_FALSE(all.ice || all.teskTimes10);
  EXPECT_TRUE(optionsOf(table, "--kind 3 --tesk-x10").teskTimes10);
  EXPECT_EQ(optionsOf(table, "--ice").kind, Kind::orla) << "ice work is the ORLA's";
  EXPECT_EQ(optionsOf(table, "-- -survey.ROR").file, "-survey.ROR");
  for (const auto& [arguments, said] : {std::pair{"--kind 8", "there is no instrument \"8\""},
                                        {"--ice --kind GLACO", "--ice is for the ORLA"},
                                        {"--tesk-x10 --kind TESK2", "--tesk-x10 is for the TESK"},
                                        {"--com 13=/dev/x", "--com takes a number from 1 to 12"},
                                        {"--com 3=", "--com 3= lacks the device"},
                                        {"--scale 8.1", "--scale is a number from 0.5 to 8"},
                                        {"--storage-class 4", "--storage-class is 0 to 3"},
                                        {"survey.ROR b.ROR", "\"b.ROR\" is one file too many"}})
    optionsOf(table, arguments, said);
}

TEST(SingleInstance, TheSecondOnARootRaisesTheFirstAndOneThatCannotBeWrittenIsUsedAlone) {
  const TempFolder folder;
  // A folder below a file can be made by nobody, root included.
  writeFile(folder.path() / "file", "");
  for (const auto& root : {folder.path() / "a" / "Kalmira", folder.path() / "file" / "Kalmira"}) {
    int raised = 0;
    std::string said;
    {
      const SingleInstance first(root, "", [&](const std::string& word) { ++raised, said = word; });
      EXPECT_TRUE(first.isFirst());
      const SingleInstance elsewhere(folder.path(), "", [](const std::string&) { FAIL(); });
      EXPECT_TRUE(elsewhere.isFirst());
      const SingleInstance second(std::filesystem::exists(root) ? root / ".." / "Kalmira" : root, "/a/b c",
                                  [](const std::string&) { FAIL(); });
      EXPECT_FALSE(second.isFirst());
      EXPECT_TRUE(QTest::qWaitFor([&raised] { return raised == 1; }, 2000));
      EXPECT_EQ(said, "/a/b c");
    }
    EXPECT_TRUE(SingleInstance(root, "", {}).isFirst());
  }
  EXPECT_TRUE(std::filesystem::exists(folder.path() / "a" / "Kalmira")) << "a root that is not there is made";
}

TEST(SingleInstance, WhatACrashedOneLeftIsPutAway) {
  const TempFolder root;
  std::array<int, 2> ready{};
  ASSERT_EQ(::pipe(ready.data()), 0);
  const auto child = ::fork();
  if (child == 0) {
    const SingleInstance instance(root.path(), "", {});
    (void)!::write(ready[1], "1", 1);
    for (;;) ::pause();
  }
  char answer = 0;
  ASSERT_EQ(::read(ready[0], &answer, 1), 1);
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  ASSERT_TRUE(std::filesystem::exists(root.path() / ".kalmira.lock"));
  EXPECT_TRUE(SingleInstance(root.path(), "", {}).isFirst());
}

}  // namespace
}  // namespace kalmira
