// Whole surveys in the program's own windows, with instruments and a receiver on pseudo-terminals.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <csignal>

#include "datafile/record_text.h"
#include "end_to_end/programs.h"
#include "settings/settings_file.h"
#include "support/dialogs.h"
#include "ui/session/panel_view.h"
#include "ui/shell/main_window.h"
#include "ui/shell/program.h"

namespace kalmira {
namespace {

using testing::EndsWith;

constexpr std::string_view kGga = "$GPGGA,101308.00,5057.90,N,00659.10,E,1,08,1.1,50.0,M,46.0,M,,*5D\r\n";
constexpr std::string_view kGsa = "$GPGSA,A,3,10,07,05,02,29,04,08,13,,,,,1.72,1.03,1.38*0A\r\n";
// In Wheel mode every record is a reading; an interval of a minute keeps the watch over the link quiet.
const std::string kQuietWheel = "audio=0|surveyMode=1|readingsInterval=60";
constexpr int kLookMs = 10;

// Waits, with the windows alive; what comes after a failure is not waited for.
bool comes(const std::function<bool()>& happened) {
  return testing::Test::HasFailure() ? happened() : QTest::qWaitFor(happened, kPatienceMs);
}

// Somebody who works with the program's windows, by keys or by taps: sees what the panel shows, and answers.
struct Operator {
  MainWindow& window;
  bool byTouch;

  LoggingWnd& logging() const { return window.logging(); }
  std::string text(PanelField field) const {
    return dynamic_cast<PanelView*>(window.findChild<QWidget*>("panel"))->text(field);
  }
  // Waits until a panel text begins so.
  void sees(PanelField field, std::string_view start) const {
    EXPECT_TRUE(comes([&] { return text(field).starts_with(start); }))
        << panelFieldName(field) << " shows \"" << text(field) << "\", not \"" << start << '"';
  }
  // Waits for what is shown of `record`. While an instrument is `waking` what it sends may be lost: a second try.
  void sends(const Device& device, std::string_view record, std::string_view start,
             PanelField field = PanelField::value1, bool waking = false) const {
    const auto shown = [&] { return text(field).starts_with(start); };
    ASSERT_TRUE(waking || !shown()) << "a new reading could not be told from the last";
    ASSERT_TRUE(device.send(record));
    if (waking && !QTest::qWaitFor(shown, 5000)) (void)device.send(record);
    sees(field, start);
  }
  // Who gets the keys. A desktop would make the window the active one when a dialog has closed.
  QWidget* keyboard() const {
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    auto* focus = QApplication::focusWidget();
    return focus != nullptr ? focus : &window;
  }
  // A command of the present row: its key, to the window that has the keyboard now, or its button.
  void command(Qt::Key key, const QString& button = {}) const {
    if (!byTouch || button.isEmpty()) return QTest::keyClick(keyboard(), key);
    // Taps in a row, at one place, are not meant as double taps.
    QTest::qWait(QApplication::doubleClickInterval() + kLookMs);
    tapButton(window, button);
  }
  // Gives the command, does `act` in the dialog that opens from it, and fails where that stays open.
  static void answers(const char* title, const std::function<void()>& open, const DialogActor::Act& act) {
    {
      const DialogActor actor(title, act);
      open();
    }
    EXPECT_EQ(openDialog(title), nullptr);
  }
  // Fills the fields in and confirms by the button or by Enter.
  void fills(const char* title, const std::function<void()>& open, const std::string& fields,
             const QString& button = "OK") const {
    answers(title, open, [&](QDialog& dialog) {
      fill(dialog, fields);
      byTouch ? tapButton(dialog, button) : press(dialog, Qt::Key_Return);
    });
  }

  // Into Stand By, with a data file: its path.
  std::filesystem::path createFile() const {
    const auto create = [this] { command(Qt::Key_C, "&Create File"); };
    fills("Create Data File", create, "fileNameEdit=E2E", "Save");
    sees(PanelField::state, "Stand By");
    return logging().session()->file.path();
  }
  void go() const {
    command(Qt::Key_G, "&Go");
    sees(PanelField::state, "Logging");
  }
  void pause() const {
    command(Qt::Key_Space, "TAP ME or press any key to Pause");
    sees(PanelField::state, "Stand By");
  }
  void enterLineCommentAndStation() const {
    const auto line = [this] { command(Qt::Key_L, "&Line"); };
    fills("New Line", line, "newLine=7/a|startStation=100|stationIncrement=-2,5|direction=E");
    EXPECT_EQ(text(PanelField::line), "7/a");
    const auto comment = [this] { command(Qt::Key_C, "&Cmnt"); };
    fills("Enter Comment", comment, "comment=Fence by the road");
    const auto station = [this] { command(Qt::Key_N, "&NStn"); };
    fills("New Station", station, "newStation=42.5");
    sees(PanelField::station, "42.50");
  }
  void leave() const {
    const auto exit = [this] { command(Qt::Key_X, "E&xit"); };
    answers("Confirm Exit", exit, answered("Yes"));
    EXPECT_FALSE(logging().isVisible());
    exit();
  }
};

MainWindow* mainWindow() {
  for (auto* widget : QApplication::topLevelWidgets()) {
    auto* window = dynamic_cast<MainWindow*>(widget);
    if (window != nullptr && window->isVisible()) return window;
  }
  return nullptr;
}

// A machine with the program on it: a storage root, and settings of its own.
struct Machine {
  Machine(Kind kind, const std::string& settings) {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QString::fromStdString(folder.path() / "config"));
    options.kind = kind;
    options.root = folder.path() / "Kalmira";
    options.tickBase = TickBase::program;
    EXPECT_EQ(saveSettings({.kind = kind, .root = options.root}, settingsOf(settings)), "");
  }
  // The program's exit status, which the operator has to end.
  int run(const std::function<void(const Operator&)>& work, bool byTouch) const {
    QApplication::setDoubleClickInterval(kLookMs);
    QTimer::singleShot(0, [&work, byTouch] {
      EXPECT_TRUE(comes([] { return mainWindow() != nullptr && mainWindow()->isActiveWindow(); }));
      auto* window = mainWindow();
      if (window == nullptr) return QCoreApplication::exit(-1);
      work(Operator{*window, byTouch});
      if (mainWindow() == nullptr) return;
      ADD_FAILURE() << "the program goes on";
      window->endAtOnce();
    });
    return runProgram(options);
  }

  TempFolder folder;
  ProgramOptions options;
};

// By taps, on a lying screen.
TEST(WindowSurvey, OfAnOrlaWithItsReceiverGivesItsFileByteForByte) {
  const Device instrument, receiver;
  Machine machine(Kind::orla, kQuietWheel + "|gpsInput=1");
  machine.options.portrait = false;
  machine.options.com[0] = instrument.name;
  machine.options.com[1] = receiver.name;
  const auto later = "Td-0412+0796\r";
  std::filesystem::path path;
  const auto work = [&](const Operator& person) {
    person.command(Qt::Key_L, "Monitor/&Log");
    person.sees(PanelField::state, "Monitor");
    person.sends(instrument, kOrlaRecord, "C:-10.00", PanelField::value1, true);
    person.sends(instrument, later, "C:10.30");
    person.sends(receiver, kGsa, "1.7", PanelField::pdop, true);
    path = person.createFile();
    person.go();
    person.sends(instrument, kOrlaRecord, "C:-10.00");
    person.sends(receiver, kGga, " 8", PanelField::satellites);
    person.sends(instrument, later, "C:10.30");
    person.pause();
    person.enterLineCommentAndStation();
    person.fills(
        "Enter Scale",
        [&] {
          pressInMenu(Qt::Key_S);
          person.command(Qt::Key_M, "&Menu");
        },
        "firstMinimum=3|firstMaximum=8");
    person.go();
    person.sends(instrument, kOrlaRecord, "C:-10.00");
    person.pause();
    person.leave();
  };
  EXPECT_EQ(machine.run(work, true), 0);
  const auto screen = QGuiApplication::primaryScreen()->size();
  const bool upright = screen.height() > screen.width() && !QGuiApplication::platformName().startsWith("offscreen");
  EXPECT_EQ(wiped(readFile(path), 24),
            bytesOf({.header = upright ? "ORLA2   W230GPS0010   3" : "ORLA2   W230GPS0010   2",
                     .firstPiece = {withTick(24, "T$+0400-0800"), "@$GPGGA,101308.00,5057.", "#90,N,00659.10,E,1,08,1",
                                    "#.1,50.0,M,46.0,M,,*5D", withTick(24, "!"), withTick(24, "Td-0412+0796")},
                     .lastReading = "T$+0400-0800"}));
  Settings saved;
  EXPECT_EQ(loadSettings({.kind = Kind::orla, .root = machine.options.root}, saved).how, SettingsLoad::loaded);
  expectSettings(saved, "conductivityMinimum=3.000000|conductivityMaximum=8.000000|lineName=7/a");
}

TEST(WindowSurvey, GoesOnWithAllItsReadingsWhenItsFileIsTakenAway) {
  const Device instrument;
  Machine machine(Kind::orla, kQuietWheel);
  machine.options.com[0] = instrument.name;
  std::filesystem::path path, moved;
  const auto work = [&](const Operator& person) {
    person.command(Qt::Key_L);
    person.sends(instrument, kOrlaRecord, "C:-10.00", PanelField::value1, true);
    path = person.createFile();
    person.go();
    person.sends(instrument, "Td-0412+0796\r", "C:10.30");
    const auto takeAway = [&] {
      std::filesystem::remove_all(path.parent_path());
      person.sends(instrument, kOrlaRecord, "C:-10.00");
      EXPECT_TRUE(comes([&] { return std::filesystem::exists(path); }));
    };
    person.answers("CRITICAL WARNING", takeAway, answered("OK"));
    EXPECT_EQ(person.text(PanelField::state), "Logging");
    person.sends(instrument, "Td-0412+0796\r", "C:10.30");
    person.pause();
    moved = person.logging().session()->file.path();
    person.leave();
  };
  EXPECT_EQ(machine.run(work, false), 0);
  EXPECT_EQ(moved.parent_path(), path.parent_path()) << "the folder could be made again";
  EXPECT_THAT(wiped(readFile(moved), 24),
              EndsWith(records24({withTick(24, "X$STARTED"), withTick(24, "Td-0412+0796"), withTick(24, "T$+0400-0800"),
                                  withTick(24, "Td-0412+0796"), withTick(24, "X$PAUSED")})));
}

// An instrument that sends all the time, behind a link that outlives its cable.
class Cable {
 public:
  explicit Cable(std::filesystem::path link) : link_(std::move(link)) {
    QObject::connect(&timer_, &QTimer::timeout, [this] {
      if (device_) (void)device_->send(record_);
    });
    timer_.start(100);
  }
  void plugIn(std::string_view record) {
    device_ = std::make_unique<Device>();
    record_ = record;
    std::filesystem::create_symlink(device_->name, link_);
  }
  void pull() {
    std::filesystem::remove(link_);
    device_.reset();
  }

 private:
  std::filesystem::path link_;
  std::unique_ptr<Device> device_;
  std::string record_;
  QTimer timer_;
};

TEST(WindowCable, PulledBehindADialogAndPluggedInAgainResumesAndTheFrameEndsTheProgram) {
  Machine machine(Kind::orla, kQuietWheel + "|readingsInterval=2");  // five periods are ten seconds
  const auto link = machine.folder.path() / "port";
  machine.options.com[0] = link;
  Cable cable(link);
  cable.plugIn(kOrlaRecord);
  std::filesystem::path path;
  const auto work = [&](const Operator& person) {
    const auto closeFrame = [&person] { person.window.close(); };
    person.command(Qt::Key_L);
    person.sees(PanelField::value1, "C:-10.00");
    path = person.createFile();
    person.answers(
        "New Line", [&] { person.command(Qt::Key_L); },
        [&](QDialog& dialog) {
          cable.pull();
          person.sees(PanelField::message, "Please Wait...");
          cable.plugIn("T$-0400-0800\r");
          person.sees(PanelField::value1, "C:10.00");
          EXPECT_EQ(QApplication::activeModalWidget(), &dialog);
          dialog.accept();
        });
    person.command(Qt::Key_G);
    person.answers("Confirm Exit", closeFrame, answered("No"));
    EXPECT_EQ(person.text(PanelField::state), "Logging");
    EXPECT_TRUE(comes([&person] { return person.logging().session()->counts.readings >= 2; }));
    person.answers("Confirm Exit", closeFrame, answered("Yes"));
  };
  EXPECT_EQ(machine.run(work, false), 0);
  // One break, then the line and its readings.
  const auto content = wiped(readFile(path), 24);
  EXPECT_EQ(content.substr(std::size_t{7} * 24, std::size_t{6} * 24),
            records24({withTick(24, "X$CONN BREAK"), "L2.00", "B       0.00", "AS           -1.000",
                       "Z00000000 00:00:00", withTick(24, "*00:00:00.000")}));
  const auto reading = records24({withTick(24, "T$-0400-0800")});
  EXPECT_THAT(content, testing::HasSubstr(records24({withTick(24, "X$STARTED")}) + reading + reading));
  EXPECT_THAT(content, EndsWith(reading + records24({withTick(24, "X$PAUSED")})));
}

// The program as the desktop starts it, where there is no session bus.
TEST(Started, ASecondStartOnTheSameRootEndsAndTheFirstWhenTheMachineAsks) {
  const TempFolder folder;
  const Device device;
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(folder.path().string()));
  const auto options = fmt::format("--kind ORLA --root {} --com 1={}", folder.path().string(), device.name);
  Program first(KALMIRA, options);
  // The settings file is made while the window is.
  ASSERT_TRUE(comes([&] { return std::filesystem::exists(folder.path() / "Storage/KALINI/ORLA.INI"); }));
  const auto second = run(KALMIRA, options);
  EXPECT_EQ(second.status, 0);
  EXPECT_THAT(second.errors, EndsWith("kalmira: already running on this root\n"));
  first.signal(SIGTERM);
  EXPECT_EQ(first.end(), 0) << first.errors();
  qunsetenv("DBUS_SESSION_BUS_ADDRESS");
  qunsetenv("XDG_CONFIG_HOME");
}

}  // namespace
}  // namespace kalmira
