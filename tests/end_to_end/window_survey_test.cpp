// Whole surveys in the program's own windows, with instruments and a receiver on pseudo-terminals.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <QTimer>
#include <csignal>

#include "datafile/record_text.h"
#include "end_to_end/window_operator.h"

namespace kalmira {
namespace {

using namespace std::string_literals;
using testing::EndsWith;

constexpr std::string_view kGga = "$GPGGA,101308.00,5057.90,N,00659.10,E,1,08,1.1,50.0,M,46.0,M,,*5D\r\n";
constexpr std::string_view kGsa = "$GPGSA,A,3,10,07,05,02,29,04,08,13,,,,,1.72,1.03,1.38*0A\r\n";

// In Wheel mode every record is a reading; an interval of a minute keeps the watch over the link quiet.
Settings quietWheel() {
  Settings settings;
  settings.audio = 0;
  settings.surveyMode = kModeWheel;
  settings.readingsInterval = 60;
  return settings;
}

// Into Stand By, with a data file.
void createFile(Operator& person, const Operator::Fields& name = {}) {
  person.fills("Create Data File", person.commands(Qt::Key_C, "&Create File"), name, "Save");
  person.sees(PanelField::state, "Stand By");
}

void go(Operator& person) {
  person.command(Qt::Key_G, "&Go");
  person.sees(PanelField::state, "Logging");
}

void pause(Operator& person) {
  person.command(Qt::Key_Space, "TAP ME or press any key to Pause");
  person.sees(PanelField::state, "Stand By");
}

void enterLineCommentAndStation(Operator& person) {
  person.fills("New Line", person.commands(Qt::Key_L, "&Line"),
               {{"newLine", "7/a"}, {"startStation", "100"}, {"stationIncrement", "-2,5"}, {"direction", "E"}});
  EXPECT_EQ(person.text(PanelField::line), "7/a");
  person.fills("Enter Comment", person.commands(Qt::Key_C, "&Cmnt"), {{"comment", "Fence by the road"}});
  person.fills("New Station", person.commands(Qt::Key_N, "&NStn"), {{"newStation", "42.5"}});
  person.sees(PanelField::station, "42.50");
}

// The survey's file.
std::filesystem::path leave(Operator& person) {
  const auto path = person.file();
  person.answers("Confirm Exit", person.commands(Qt::Key_X, "E&xit"), "Yes");
  EXPECT_FALSE(person.logging().isVisible());
  person.command(Qt::Key_X, "E&xit");
  return path;
}

// By taps, on a lying screen.
TEST(WindowSurvey, OfAnOrlaWithItsReceiverGivesItsFileByteForByte) {
  const Device instrument, receiver;
  auto settings = quietWheel();
  settings.gpsInput = 1;
  Machine machine(Kind::orla, settings);
  machine.options.portrait = false;
  machine.options.com[0] = instrument.name;
  machine.options.com[1] = receiver.name;
  const auto later = "Td-0412+0796\r";
  std::filesystem::path path;
  const auto work = [&](Operator& person) {
    person.command(Qt::Key_L, "Monitor/&Log");
    person.sees(PanelField::state, "Monitor");
    person.sends(instrument, kOrlaRecord, "C:-10.00", PanelField::value1, true);
    person.sends(instrument, later, "C:10.30");
    person.sends(receiver, kGsa, "1.7", PanelField::pdop, true);
    createFile(person, {{"fileNameEdit", "E2E"}});
    go(person);
    person.sends(instrument, kOrlaRecord, "C:-10.00");
    person.sends(receiver, kGga, " 8", PanelField::satellites);
    person.sends(instrument, later, "C:10.30");
    pause(person);
    enterLineCommentAndStation(person);
    person.fills("Enter Scale", person.chooses(Qt::Key_S), {{"firstMinimum", "3"}, {"firstMaximum", "8"}});
    go(person);
    person.sends(instrument, kOrlaRecord, "C:-10.00");
    pause(person);
    path = leave(person);
  };
  EXPECT_EQ(machine.run(work, true), 0);
  EXPECT_EQ(wiped(readFile(path), 24),
            bytesOf({.header = "ORLA2   W230GPS0010   2",
                     .firstPiece = {withTick(24, "T$+0400-0800"), "@$GPGGA,101308.00,5057.", "#90,N,00659.10,E,1,08,1",
                                    "#.1,50.0,M,46.0,M,,*5D", withTick(24, "!"), withTick(24, "Td-0412+0796")},
                     .lastReading = "T$+0400-0800"}));
  const auto saved = machine.savedSettings();
  EXPECT_EQ(saved.conductivityMinimum, 3.0F);
  EXPECT_EQ(saved.conductivityMaximum, 8.0F);
  EXPECT_EQ(saved.lineName, "7/a");
}

// Words of 32768 + 1024 k are 40 k mS/m; the fifth calibration factor adds 20 to the first conductivity.
const auto kTesk2First = "T\x06\0\0\x84\0\xff\xff\x84\0\n\n\0\0\xff\xff"s;
const auto kTesk2Second = "t\x02\x84\0\x84\0\x88\0\x84\0\0\n\n\0\xff\xff"s;

std::string factors(double fifth, double replaced) {
  std::string bytes;
  for (int n = 1; n <= 6; ++n) {
    bytes += records(26, {fmt::format("O{}{:10.3f} {:10.3f}", n, n == 5 ? fifth : 0, n == 5 ? replaced : 0)});
  }
  return bytes;
}

// By keys, on a standing screen.
TEST(WindowSurvey, OfATesk2WithMarkAndCalibrationGivesItsFileByteForByte) {
  const Device instrument;
  auto settings = quietWheel();
  settings.softMarker = 1;
  settings.tesk2Variant = 2;
  settings.calibrationFactors[4] = 20;
  Machine machine(Kind::tesk2, settings);
  machine.options.portrait = true;
  machine.options.com[0] = instrument.name;
  std::filesystem::path path;
  const auto work = [&](Operator& person) {
    person.command(Qt::Key_L, "Monitor/&Log");
    person.sends(instrument, kTesk2First, "C:1299.96", PanelField::value1, true);
    person.sends(instrument, kTesk2Second, "C:100.00");
    person.answers(
        "CALIBRATION", [&] { person.press(Qt::Key_A); }, "No");
    createFile(person, {{"fileNameEdit", "E2E"}});
    go(person);
    person.sends(instrument, kTesk2First, "C:1299.96");
    person.hold(Qt::Key_5);
    person.sends(instrument, kTesk2Second, "C:100.00");
    person.release(Qt::Key_5);
    pause(person);
    enterLineCommentAndStation(person);
    person.answers("Delete Calibration", person.chooses(Qt::Key_E), "Yes");
    go(person);
    person.sends(instrument, kTesk2First, "C:1279.96");
    pause(person);
    path = leave(person);
  };
  EXPECT_EQ(machine.run(work), 0);
  const auto text = kTesk2First.substr(0, 14);
  // The marker is 8 in the mode byte.
  EXPECT_EQ(wiped(readFile(path), 26),
            bytesOf({.header = "TESK2   W230GRD00102    3",
                     .firstPiece = {withTick(26, text), withTick(26, "t\x0a" + kTesk2Second.substr(2, 12))},
                     .lastReading = text,
                     .length = 26,
                     .calibration = factors(20, 0),
                     .deletion = factors(0, 20)}));
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
  auto settings = quietWheel();
  settings.readingsInterval = 2;  // five periods are ten seconds
  Machine machine(Kind::orla, settings);
  const auto link = machine.folder.path() / "port";
  machine.options.com[0] = link;
  Cable cable(link);
  cable.plugIn(kOrlaRecord);
  std::filesystem::path path;
  const int status = machine.run([&](Operator& person) {
    const auto closeFrame = [&person] { person.window().close(); };
    person.press(Qt::Key_L);
    person.sees(PanelField::value1, "C:-10.00");
    createFile(person);
    path = person.file();
    person.answers(
        "New Line", [&person] { person.press(Qt::Key_L); },
        [&](QDialog& dialog) {
          cable.pull();
          person.sees(PanelField::message, "Please Wait...");
          cable.plugIn("T$-0400-0800\r");
          person.sees(PanelField::value1, "C:10.00");
          EXPECT_EQ(QApplication::activeModalWidget(), &dialog);
          dialog.accept();
        });
    person.press(Qt::Key_G);
    person.answers("Confirm Exit", closeFrame, "No");
    EXPECT_EQ(person.text(PanelField::state), "Logging");
    EXPECT_TRUE(comes([&person] { return person.logging().session()->counts.readings >= 2; }));
    person.answers("Confirm Exit", closeFrame, "Yes");
  });
  EXPECT_EQ(status, 0);
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
  for (const int number : {SIGTERM, SIGINT}) {
    Program first(KALMIRA, options);
    // The settings file is made while the window is.
    ASSERT_TRUE(comes([&] { return std::filesystem::exists(folder.path() / "Storage/KALINI/ORLA.INI"); }));
    if (number == SIGTERM) {
      const auto second = run(KALMIRA, options);
      EXPECT_EQ(second.status, 0);
      EXPECT_THAT(second.errors, EndsWith("kalmira: already running on this root\n"));
    }
    first.signal(number);
    EXPECT_EQ(first.end(), 0) << first.errors();
    std::filesystem::remove_all(folder.path() / "Storage");
  }
  qunsetenv("DBUS_SESSION_BUS_ADDRESS");
  qunsetenv("XDG_CONFIG_HOME");
}

}  // namespace
}  // namespace kalmira
