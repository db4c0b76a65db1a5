#include "ui/shell/program_actions.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>

#include "settings/settings_file.h"
#include "support/dialog_actor.h"
#include "ui/screen/template_dialog.h"
#include "ui/session/window_fixture.h"

namespace kalmira {
namespace {

// The main window with its set-up commands, on a folder and wires of the test's own: "A" is COM1, "B" COM2.
class SetupActionsTest : public testing::Test {
 protected:
  void open(Kind kind, bool ice = false) {
    instrument = {.kind = kind, .ice = ice};
    place = {.kind = kind, .iceOption = ice, .root = folder.path()};
    ASSERT_EQ(loadSettings(place, settings).problem, "");
    settings.audio = 0;
    actions.emplace(ActionsHost{.clock = clock,
                                .instrument = [this] { return instrument; },
                                .settings = [this]() -> Settings& { return settings; },
                                .saveSettings = [this](const Settings& now) { saveSettings(place, now); },
                                .theme = []() -> const Theme& { return dayTheme(); },
                                .assigned = assigned,
                                .presentDevices = [this] { return present; },
                                .lookAtDevice = [](const std::string&) { return std::nullopt; },
                                .rememberDevices = [this](const ComAssignments& now) { remembered = now; },
                                .portFactory = [this] { return std::make_unique<WirePort>(wires); },
                                .cover = [this](QWidget* covering) { window->cover(covering); }});
    window.emplace(MainWindowHost{.clock = clock,
                                  .instrument = instrument,
                                  .open = [this](RememberedKind) { return loggingHost(); },
                                  .sessionBegins = {},
                                  .rememberInstrument = {},
                                  .rememberNight = {},
                                  .endProgram = [] {},
                                  .actions = actions->actions()});
    window->resize(480, 640);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&*window));
  }
  LoggingHost loggingHost() {
    return {.setup = {.kind = instrument.kind, .iceChosen = instrument.ice, .root = folder.path()},
            .settings = settings,
            .clock = clock,
            .disk = disk,
            .deviceOf =
                [this](int com) {
                  return resolveComDevices(assigned, present)[static_cast<std::size_t>(com - 1)];
                },
            .portFactory = [this] { return std::make_unique<WirePort>(wires); },
            .saveSettings = [this](const Settings& now) { return saveSettings(place, now); },
            .takeSettingsProblem = {},
            .onLeft = {},
            .endProgram = {},
            .displayOptions =
                [this](QWidget* parent, const Settings& current) {
                  return actions->runSessionDisplayOptions(parent, current);
                }};
  }
  void key(Qt::Key qtKey) { QTest::keyClick(&*window, qtKey); }
  // A command of the menu, and what is done in its dialog.
  void command(Qt::Key letter, const char* title, const std::function<void(QDialog&)>& act) {
    const DialogActor actor(*window, title, act);
    key(letter);
  }
  static void choose(QDialog& dialog, const char* list, Qt::Key qtKey) {
    QTest::keyClick(&part<QComboBox>(dialog, list), qtKey);
  }
  static void tap(QDialog& dialog, const char* button) {
    QTest::mouseClick(&part<QPushButton>(dialog, button), Qt::LeftButton);
  }
  Settings saved() {
    Settings read;
    loadSettings(place, read);
    return read;
  }
  QWidget* monitor() { return window->findChild<QWidget*>("MonitorGPSWnd"); }
  // The header of a data file that is created now.
  std::string header() {
    key(Qt::Key_L);
    auto& logging = window->logging();
    if (!logging.sessionActive()) return "no session";
    const WhenOpen dialog("Create Data File", [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); });
    QTest::keyClick(&logging, Qt::Key_C);
    std::ifstream in(logging.session()->file.path(), std::ios::binary);
    std::string line;
    std::getline(in, line);
    logging.leaveAtOnce();
    return line;
  }

  TempFolder folder;
  FakeClock clock;
  LocalDisk disk;
  RememberedKind instrument;
  SettingsPlace place;
  Settings settings;
  ComAssignments assigned;
  std::vector<SerialDevice> present{{.path = "A", .stablePath = {}, .description = {}},
                                    {.path = "B", .stablePath = {}, .description = {}}};
  std::optional<ComAssignments> remembered;
  std::map<std::string, Wire> wires;
  std::optional<ProgramActions> actions;
  std::optional<MainWindow> window;
};

TEST_F(SetupActionsTest, WhatIsSetUpStandsInTheFilesOfEveryFamily) {
  const struct {
    Kind kind;
    const char* header;  // upright screen, feet, GPS at COM1, instrument at COM2
    std::vector<const char*> lists;
  } cases[] = {{Kind::orla, "ORLAS   W230GPS1000   3", {"instrumentLength"}},
               {Kind::glaco, "GLACO   W210GPS1000   3", {}},
               {Kind::tesk2, "TESK2   W230GPS10002    3", {"tesk2Variant", "pauseKey"}}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.header);
    wires.clear();
    wires["A"];
    wires["B"];
    settings = {};
    open(each.kind);
    command(Qt::Key_O, "Logger Setup", [&](QDialog& dialog) {
      choose(dialog, "instrumentPort", Qt::Key_Down);
      choose(dialog, "lengthUnits", Qt::Key_End);
      for (const char* list : each.lists) choose(dialog, list, Qt::Key_End);
      tap(dialog, "ok");
    });
    command(Qt::Key_G, "Set GPS Port", [](QDialog& dialog) {
      choose(dialog, "gpsInput", Qt::Key_End);
      choose(dialog, "gpsPort", Qt::Key_Home);
      tap(dialog, "ok");
    });
    EXPECT_EQ(header(), each.header);
    EXPECT_EQ(formatSettings(saved(), each.kind, false), formatSettings(settings, each.kind, false));
    EXPECT_EQ(saved().instrumentPortIndex, 1);
  }
}

TEST_F(SetupActionsTest, EveryCommandSavesByOkAndOnlyByOk) {
  wires["B"];
  const struct {
    Qt::Key letter;
    const char* title;
  } commands[] = {{Qt::Key_S, "Survey Setup"},
                  {Qt::Key_O, "Logger Setup"},
                  {Qt::Key_G, "Set GPS Port"},
                  {Qt::Key_D, "Display Options"}};
  open(Kind::orla, true);
  const auto file = settingsFileOf(place);
  for (const auto& each : commands) {
    SCOPED_TRACE(each.title);
    std::filesystem::remove(file);
    command(each.letter, each.title, [](QDialog& dialog) { tap(dialog, "cancel"); });
    EXPECT_FALSE(std::filesystem::exists(file));
    command(each.letter, each.title, [](QDialog& dialog) { tap(dialog, "ok"); });
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(window->focusWidget(), &*window);
  }
}

TEST_F(SetupActionsTest, TheMonitorTriesWhatIsNotSaved) {
  wires["B"];
  open(Kind::vardo);
  command(Qt::Key_G, "Set GPS Port", [](QDialog& dialog) {
    choose(dialog, "gpsBaud", Qt::Key_End);
    tap(dialog, "monitor");
  });
  EXPECT_EQ(monitor(), nullptr) << "GPS input is disabled";
  EXPECT_EQ(settings.gpsBaudIndex, 7);
  EXPECT_EQ(saved().gpsBaudIndex, 0);

  command(Qt::Key_G, "Set GPS Port", [](QDialog& dialog) {
    choose(dialog, "gpsInput", Qt::Key_End);
    tap(dialog, "monitor");
  });
  ASSERT_NE(monitor(), nullptr);
  EXPECT_TRUE(monitor()->isVisible());
  EXPECT_EQ(window->focusWidget(), monitor());
  EXPECT_EQ(monitor()->size(), window->size());
  EXPECT_FALSE(window->findChild<QPushButton*>("420")->isVisible());
  key(Qt::Key_M);  // a key of the menu, which is not there now
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  QTest::keyClick(monitor(), Qt::Key_X);
  EXPECT_TRUE(window->findChild<QPushButton*>("420")->isVisible());
  EXPECT_EQ(window->focusWidget(), &*window);
  EXPECT_TRUE(QTest::qWaitFor([this] { return monitor() == nullptr; }, 2000));
  EXPECT_EQ(saved().gpsInput, 0);
}

TEST_F(SetupActionsTest, DevicesAreAssignedFromWithinTheDialogs) {
  open(Kind::mirka);
  command(Qt::Key_O, "Logger Setup", [this](QDialog& dialog) {
    auto& line = part<QLabel>(dialog, "instrumentDevice");
    EXPECT_EQ(line.text(), "A");
    const DialogActor devices(*window, "Devices", [](QDialog& open) {
      choose(open, "device", Qt::Key_End);
      tap(open, "ok");
    });
    tap(dialog, "devices");
    EXPECT_EQ(line.text(), "B");
    dialog.reject();
  });
  ASSERT_TRUE(remembered) << "the logger setup's Cancel does not take it back";
  EXPECT_EQ((*remembered)[0], "B");
  EXPECT_EQ(assigned[0], "B");
}

TEST_F(SetupActionsTest, DisplayOptionsOfASessionChangeNothingElse) {
  wires["A"];
  open(Kind::tesk2);
  key(Qt::Key_L);
  auto& logging = window->logging();
  const WhenOpen create("Create Data File", [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); });
  QTest::keyClick(&logging, Qt::Key_C);
  {
    const WhenOpen dialog("Display Options", [this](QDialog& box) {
      settings.calibrationFactors[2] = 0.125F;  // a calibration has come to its end behind the dialog
      QTest::mouseClick(&part<QCheckBox>(box, "traceShown0"), Qt::LeftButton);
      tap(box, "ok");
    });
    logging.runCode(102);
    ASSERT_TRUE(dialog.acted());
  }
  EXPECT_EQ(saved().traceShown[0], 0);
  EXPECT_EQ(saved().calibrationFactors[2], 0.125F);
  logging.leaveAtOnce();
}

}  // namespace
}  // namespace kalmira
