#include "link/device_claim.h"
#include "ui/shell/program_actions.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QListWidget>

#include "ui/setup/setup_dialogs.h"
#include "ui/window_fixture.h"

namespace kalmira {
namespace {

// The main window with its set-up commands. No device is assigned: COM1 is "gps", COM2 "instrument".
struct SetupActionsTest : testing::Test, SessionGround {
  void open(Kind kind, bool ice = false) {
    instrument = {.kind = kind, .ice = ice};
    place = {.kind = kind, .iceOption = ice, .root = folder.path()};
    settings = {};
    ASSERT_EQ(loadSettings(place, settings).problem, "");
    settings.audio = 0;
    deviceOf = [this](int com) { return resolveComDevices(assigned, present)[static_cast<std::size_t>(com - 1)]; };
    actions.emplace(ActionsHost{.clock = clock,
                                .instrument = [this] { return instrument; },
                                .settings = [this]() -> Settings& { return settings; },
                                .saveSettings = [this](const Settings& now) { saveSettings(place, now); },
                                .theme = []() -> const Theme& { return dayTheme(); },
                                .assigned = assigned,
                                .mirror = mirror,
                                .presentDevices = [this] { return present; },
                                .lookAtDevice = [](const std::string&) { return std::nullopt; },
                                .rememberDevices = [this](const DeviceSetup& now) { remembered = now; },
                                .portFactory = ports,
                                .cover = [this](QWidget* covering) { window->cover(covering); },
                                .root = folder.path(),
                                .loggedFile = [this] { return window->logging().session()->file.path(); }});
    auto logging = host(kind, ice);
    logging.saveSettings = [this](const Settings& now) { return saveSettings(place, now); };
    logging.displayOptions = [this](QWidget* parent, const Settings& current) {
      return actions->runSessionDisplayOptions(parent, current);
    };
    logging.viewFile = [this](const std::filesystem::path& file) { actions->showFile(&*window, file); };
    window.emplace(MainWindowHost{.clock = clock,
                                  .instrument = instrument,
                                  .open = [logging](RememberedKind) { return logging; },
                                  .sessionBegins = {},
                                  .rememberInstrument = {},
                                  .rememberNight = {},
                                  .endProgram = [] {},
                                  .actions = actions->actions()});
    window->resize(480, 640);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&*window));
  }
  void key(Qt::Key qtKey) { QTest::keyClick(&*window, qtKey); }
  // A command of the menu, and what is done in its dialog.
  void command(Qt::Key letter, const char* title, const DialogActor::Act& act) {
    const DialogActor actor(title, act);
    key(letter);
  }
  Settings saved() {
    Settings read;
    loadSettings(place, read);
    return read;
  }
  QWidget* monitor() { return window->findChild<QWidget*>("MonitorGPSWnd"); }
  // Into Stand By, with a data file: its header.
  std::string logging() {
    key(Qt::Key_L);
    if (!window->logging().sessionActive()) return "no session";
    const DialogActor dialog("Create Data File", Qt::Key_Return);
    QTest::keyClick(&window->logging(), Qt::Key_C);
    const auto content = readFile(window->logging().session()->file.path());
    return content.substr(0, content.find('\n'));
  }

  RememberedKind instrument;
  SettingsPlace place;
  ComAssignments assigned;
  std::vector<SerialDevice> present{{.path = "gps", .stablePath = {}, .description = {}},
                                    {.path = "instrument", .stablePath = {}, .description = {}}};
  std::optional<DeviceSetup> remembered;
  std::filesystem::path mirror;
  std::optional<ProgramActions> actions;
  std::optional<MainWindow> window;
};

TEST_F(SetupActionsTest, TheFileBeingLoggedIsShownOverTheSessionWhichGoesOn) {
  open(Kind::orla);
  settings.instrumentPortIndex = 1;
  ASSERT_NE(logging(), "no session");
  auto& log = window->logging();
  auto& session = *log.session();
  pressInMenu(Qt::Key_V);
  log.runCode(4);
  ViewFilesWnd* viewer = nullptr;
  ASSERT_TRUE(waitFor([&] { return (viewer = dynamic_cast<ViewFilesWnd*>(window->focusWidget())) != nullptr; }));
  EXPECT_TRUE(log.isVisible());
  startRecording(session);
  const auto logUntil = [&](int rows) {
    return waitFor([&] {
      clock.advance(91);
      device.send("T$-0400+0800\r");
      return viewer->navigation().totalRows >= rows;
    });
  };
  EXPECT_TRUE(logUntil(3)) << "readings come in";
  std::string text;
  {
    const DialogActor actor("Told", noted(text));
    session.view.tell({.title = "Told", .text = "of the session"});
  }
  EXPECT_EQ(text, "of the session");
  EXPECT_EQ(window->focusWidget(), viewer) << "not the session below";
  QTest::keyClick(viewer, Qt::Key_X);
  EXPECT_EQ(window->focusWidget(), &log);
  EXPECT_EQ(session.loggingState, kLogging);
  {
    const DialogActor actor("View Files", noted(text));
    actions->showFile(&*window, folder.path() / "nowhere.ROR");
  }
  EXPECT_EQ(window->focusWidget(), &log);
  actions->showFile(&*window, session.file.path());
  log.leaveAtOnce();
  auto* shown = dynamic_cast<ViewFilesWnd*>(window->focusWidget());
  ASSERT_NE(shown, nullptr);
  EXPECT_GE(shown->navigation().totalRows, 3);
  QTest::keyClick(shown, Qt::Key_X);
  EXPECT_EQ(window->focusWidget(), &*window);
}

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
    open(each.kind);
    command(Qt::Key_O, "Logger Setup", [&](QDialog& dialog) {
      choose(dialog, "instrumentPort", 1);
      choose(dialog, "lengthUnits", 1);
      for (const char* name : each.lists) QTest::keyClick(&list(dialog, name), Qt::Key_End);
      tapOk(dialog);
    });
    command(Qt::Key_G, "Set GPS Port", [](QDialog& dialog) {
      choose(dialog, "gpsInput", 1);
      choose(dialog, "gpsPort", 0);
      tapOk(dialog);
    });
    EXPECT_EQ(logging(), each.header);
    window->logging().leaveAtOnce();
    EXPECT_EQ(formatSettings(saved(), each.kind, false), formatSettings(settings, each.kind, false));
    EXPECT_EQ(saved().instrumentPortIndex, 1);
  }
}

TEST_F(SetupActionsTest, EveryCommandSavesByOkAndOnlyByOk) {
  open(Kind::orla, true);
  const auto file = settingsFileOf(place);
  for (const auto& [letter, title] : {std::pair{Qt::Key_S, "Survey Setup"},
                                      {Qt::Key_O, "Logger Setup"},
                                      {Qt::Key_G, "Set GPS Port"},
                                      {Qt::Key_D, "Display Options"}}) {
    SCOPED_TRACE(title);
    std::filesystem::remove(file);
    command(letter, title, tapCancel);
    EXPECT_FALSE(std::filesystem::exists(file));
    command(letter, title, tapOk);
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(window->focusWidget(), &*window);
  }
}

// The last notes are behind a button of the survey setup; a broken file of them and one that cannot be written are
// told.
TEST_F(SetupActionsTest, NotesAreKeptForTheNextSurvey) {
  open(Kind::orla);
  const auto path = lastNotesPath(place);
  std::string told;
  const auto notes = [&](const DialogActor::Act& act, bool warns = false) {
    told.clear();
    command(Qt::Key_S, "Survey Setup", [&](QDialog& setup) {
      std::optional<DialogActor> warning;
      if (warns) warning.emplace("WARNING", noted(told));
      {
        const DialogActor actor("Survey Notes", act);
        tap(setup, "notes");
      }
      EXPECT_TRUE(setup.isVisible());
      setup.reject();
    });
  };
  notes(tapCancel);
  EXPECT_FALSE(std::filesystem::exists(path));
  notes([](QDialog& dialog) {
    fill(dialog, "project=Moor|antennaUp=1,8");
    tapOk(dialog);
  });
  std::string problem;
  EXPECT_EQ(readNotes(path, problem), (SurveyNotes{.project = "Moor", .antennaUp = 1.8}));
  writeFile(path, R"({"project":"Moor","kind":"ORLA","gpsLag":77})");
  notes(
      [](QDialog& dialog) {
        shows(dialog, "project=Moor|gpsLag=");
        tapOk(dialog);
      },
      true);
  EXPECT_NE(told.find("gpsLag is not from -10 to 10"), std::string::npos) << told;
  EXPECT_EQ(readNotes(path, problem), SurveyNotes{.project = "Moor"});
  std::filesystem::remove_all(path.parent_path());
  writeFile(path.parent_path(), "in the way");
  notes(tapOk, true);
  EXPECT_NE(told.find("Cannot write"), std::string::npos) << told;
}

TEST_F(SetupActionsTest, TheMonitorTriesWhatIsNotSaved) {
  open(Kind::vardo);
  const auto* menuButton = &buttonOf(*window, "Monitor/&Log");
  for (const auto& [name, chosen] : {std::pair{"gpsBaud", 7}, {"gpsInput", 1}}) {
    EXPECT_EQ(monitor(), nullptr) << "GPS input is disabled";
    command(Qt::Key_G, "Set GPS Port", [name = name, chosen = chosen](QDialog& dialog) {
      choose(dialog, name, chosen);
      tap(dialog, "monitor");
    });
  }
  EXPECT_EQ(settings.gpsBaudIndex, 7);
  EXPECT_EQ(saved().gpsBaudIndex, 0);
  ASSERT_NE(monitor(), nullptr);
  EXPECT_FALSE(menuButton->isVisible());
  key(Qt::Key_M);  // a key of the menu, which is not there now
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  QTest::keyClick(monitor(), Qt::Key_X);
  EXPECT_TRUE(menuButton->isVisible());
  EXPECT_TRUE(waitFor([this] { return monitor() == nullptr; }));
  EXPECT_EQ(saved().gpsInput, 0);
}

TEST_F(SetupActionsTest, DevicesAreAssignedFromWithinTheDialogs) {
  open(Kind::mirka);
  command(Qt::Key_O, "Logger Setup", [](QDialog& dialog) {
    EXPECT_EQ(textOf(dialog, "instrumentDevice"), "gps");
    const DialogActor assigning("Devices", [](QDialog& open) {
      QTest::keyClick(&list(open, "device"), Qt::Key_End);
      tapOk(open);
    });
    tap(dialog, "devices");
    EXPECT_EQ(textOf(dialog, "instrumentDevice"), "instrument");
    dialog.reject();
  });
  ASSERT_TRUE(remembered) << "the logger setup's Cancel does not take it back";
  EXPECT_EQ(remembered->com[0], "instrument");
  EXPECT_EQ(assigned[0], "instrument");
}

TEST_F(SetupActionsTest, DisplayOptionsOfASessionChangeNothingElse) {
  open(Kind::tesk2);
  logging();
  {
    const DialogActor dialog("Display Options", [this](QDialog& box) {
      settings.calibrationFactors[2] = 0.125F;  // a calibration has come to its end behind the dialog
      tap(box, "traceShown0");
      tapOk(box);
    });
    window->logging().runCode(102);
  }
  EXPECT_EQ(saved().traceShown[0], 0);
  EXPECT_EQ(saved().calibrationFactors[2], 0.125F);
  window->logging().leaveAtOnce();
}

struct DevicesDialog : DialogTest {
  DevicesDialog() : DialogTest({480, 640}) {}
  std::optional<DeviceSetup> run(const DialogActor::Act& act) {
    const auto look = [](const std::string& path) -> std::optional<PortError> {
      if (path != "/dev/ttyS1") return std::nullopt;
      return PortError{PortErrorKind::denied, deniedText(path, "root", "dialout")};
    };
    return in("Devices", act, [&] {
      return runDevicesDialog(&window, {.com = assigned}, {.present = [this] { return present; }, .look = look});
    });
  }
  static std::string row(QDialog& dialog, int com) {
    return part<QListWidget>(dialog, "ports").item(com - 1)->text().toStdString();
  }

  ComAssignments assigned;
  std::vector<SerialDevice> present{{.path = "/dev/ttyS1", .stablePath = {}, .description = "chip"},
                                    {.path = "/dev/ttyUSB0", .stablePath = {}, .description = "adapter"}};
};

TEST_F(DevicesDialog, AssignsByKeysAndSaysWhatIsInTheWay) {
  const auto changed = run([](QDialog& dialog) {
    EXPECT_EQ(row(dialog, 1), "COM1:  ttyS1, chip (automatic)");
    EXPECT_EQ(row(dialog, 2), "COM2:  ttyUSB0, adapter (automatic)");
    EXPECT_EQ(entriesOf(dialog, "device"), "Automatic|ttyS1, chip|ttyUSB0, adapter=Automatic");
    auto& line = part<QLabel>(dialog, "deviceLine");
    EXPECT_TRUE(line.text().contains("sudo usermod -a -G dialout"));
    EXPECT_TRUE(line.font().bold());
    press(dialog, Qt::Key_End);  // COM12
    EXPECT_TRUE(line.text().startsWith("No device"));
    press(dialog, Qt::Key_Tab);
    press(dialog, Qt::Key_End);
    EXPECT_EQ(row(dialog, 12), "COM12:  ttyUSB0, adapter");
    EXPECT_EQ(row(dialog, 2), "COM2:  -") << "it is COM12 now";
    EXPECT_EQ(line.text(), "/dev/ttyUSB0, adapter");
    EXPECT_FALSE(line.font().bold());
    // An address is typed for another number; half of one is none.
    part<QListWidget>(dialog, "ports").setCurrentRow(4);
    auto& address = part<QLineEdit>(dialog, "address");
    QTest::keyClicks(&address, "tcp://cart:400");
    EXPECT_EQ(row(dialog, 5), "COM5:  cart:400");
    QTest::keyClicks(&address, "x");
    EXPECT_EQ(row(dialog, 5), "COM5:  -");
    EXPECT_TRUE(line.font().bold());
    QTest::keyClick(&address, Qt::Key_Backspace);
    part<QLineEdit>(dialog, "mirror").setText(" /media/card ");
    tapOk(dialog);
  });
  ASSERT_TRUE(changed);
  EXPECT_EQ(changed->com[11], "/dev/ttyUSB0");
  EXPECT_EQ(changed->com[1], "");
  EXPECT_EQ(changed->com[4], "tcp://cart:400");
  EXPECT_EQ(changed->mirror, "/media/card");
}

}  // namespace
}  // namespace kalmira
