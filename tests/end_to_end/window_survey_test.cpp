// Whole surveys in the program's own windows, with instruments and a receiver on pseudo-terminals.
#include <gmock/gmock.h>

#include <QComboBox>
#include <QTest>
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

struct Ports {
  Device instrument;
  Device receiver;
};

// One kind's survey, by keys on a standing screen or by taps on a lying one.
struct SurveyCase {
  const char* test;
  Kind kind;
  bool byTouch;
  std::function<void(Settings&)> setUp;
  std::string first, second;            // as sent
  std::string firstShown, secondShown;  // on the panel
  std::string lastShown;                // the first again, at the end of the survey
  std::function<void(Operator&, const Ports&)> beforeFile, afterFirst, afterSecond, beforeLast;
  std::string header;
  std::string fileRecords;               // of the first piece of line, between start and pause
  std::string lastText;                  // the last reading's
  std::string calibration, noFactors{};  // at the end of a line's block, and after the scale dialog
  std::size_t length = 24;
};

void nothing(Operator&, const Ports&) {}

const std::string kOrlaRecords = records24({withTick(24, "T$+0400-0800"),                          //
                                            "@$GPGGA,101308.00,5057.", "#90,N,00659.10,E,1,08,1",  //
                                            "#.1,50.0,M,46.0,M,,*5D", withTick(24, "!"),           //
                                            withTick(24, "Td-0412+0796")});

SurveyCase orla() {
  return {
      .test = "OrlaWithGps",
      .kind = Kind::orla,
      .byTouch = false,
      .setUp = [](Settings& settings) { settings.gpsInput = 1; },
      .first = "T$+0400-0800\r",
      .second = "Td-0412+0796\r",
      .firstShown = "C:-10.00",
      .secondShown = "C:10.30",
      .lastShown = "C:-10.00",
      .beforeFile = [](Operator& person,
                       const Ports& ports) { wakeUp(person, ports.receiver, kGsa, PanelField::pdop, "1.7"); },
      .afterFirst =
          [](Operator& person, const Ports& ports) {
            sendOnce(person, ports.receiver, kGga, PanelField::satellites, " 8");
          },
      .afterSecond = nothing,
      .beforeLast = nothing,
      .header = "ORLA2   W230GPS0010   3",
      .fileRecords = kOrlaRecords,
      .lastText = "T$+0400-0800",
      .calibration = ""};
}

// Words of 32768 + 1024 k are 40 k mS/m; the fifth calibration factor adds 20 to the first conductivity.
const auto kTesk2First = "T\x06\0\0\x84\0\xff\xff\x84\0\n\n\0\0\xff\xff"s;
const auto kTesk2Second = "t\x02\x84\0\x84\0\x88\0\x84\0\0\n\n\0\xff\xff"s;

SurveyCase tesk2() {
  return {.test = "Tesk2Marked",
          .kind = Kind::tesk2,
          .byTouch = false,
          .setUp =
              [](Settings& settings) {
                settings.softMarker = 1;
                settings.tesk2Variant = 2;
                settings.calibrationFactors[4] = 20;
              },
          .first = kTesk2First,
          .second = kTesk2Second,
          .firstShown = "C:1299.96",
          .secondShown = "C:100.00",
          .lastShown = "C:1279.96",
          .beforeFile =
              [](Operator& person, const Ports&) {
                person.answering(
                    "CALIBRATION", [&person] { person.press(Qt::Key_A); },
                    [](QDialog& box) { tapIn(box, "No"); });
              },
          .afterFirst = [](Operator& person, const Ports&) { person.hold(Qt::Key_5); },
          .afterSecond = [](Operator& person, const Ports&) { person.release(Qt::Key_5); },
          .beforeLast =
              [](Operator& person, const Ports&) {
                const auto menu = [&person] {
                  person.choosing([&person] { person.press(Qt::Key_M); }, Qt::Key_E);
                };
                person.answering("Delete Calibration", menu, [](QDialog& box) { tapIn(box, "Yes"); });
              },
          .header = "TESK2   W230GRD00102    3",
          .fileRecords = records(26, {withTick(26, std::string_view(kTesk2First).substr(0, 14)),
                                      // The marker is 8 in the mode byte.
                                      withTick(26, "t\x0a" + kTesk2Second.substr(2, 12))}),
          .lastText = kTesk2First.substr(0, 14),
          .calibration =
              records(26, {"O1     0.000      0.000", "O2     0.000      0.000", "O3     0.000      0.000",
                           "O4     0.000      0.000", "O5    20.000      0.000", "O6     0.000      0.000"}),
          .noFactors =
              records(26, {"O1     0.000      0.000", "O2     0.000      0.000", "O3     0.000      0.000",
                           "O4     0.000      0.000", "O5     0.000     20.000", "O6     0.000      0.000"}),
          .length = 26};
}

SurveyCase glaco() {
  return {.test = "GlacoByTouch",
          .kind = Kind::glaco,
          .byTouch = true,
          .setUp = [](Settings&) {},
          .first = "T123I045",
          .second = "T250I007",
          .firstShown = "Th:1.23",
          .secondShown = "Th:2.50",
          .lastShown = "Th:1.23",
          .beforeFile = nothing,
          .afterFirst = nothing,
          .afterSecond = nothing,
          .beforeLast = nothing,
          .header = "GLACO   W210GRD0010   2",
          .fileRecords = records24({withTick(24, "T123I045"), withTick(24, "T250I007")}),
          .lastText = "T123I045",
          .calibration = ""};
}

void PrintTo(const SurveyCase& item, std::ostream* out) {
  *out << item.test;
}

std::string expectedFile(const SurveyCase& item) {
  const auto tick = [&item](std::string_view text) { return withTick(item.length, text); };
  return records(item.length, {item.header, "H E2E        1.000", "L1", "B       0.00", "AN            1.000",
                               "Z00000000 00:00:00"}) +
         item.calibration + records(item.length, {tick("*00:00:00.000"), tick("X$STARTED")}) +
         item.fileRecords +
         records(item.length,
                 {tick("X$PAUSED"), "L7/a", "B     100.00", "AE           -2.500", "Z00000000 00:00:00"}) +
         item.calibration +
         records(item.length, {tick("*00:00:00.000"), "S      42.50 00000000", tick("*00:00:00.000"),
                               tick("CFence by th")}) +
         item.noFactors + records(item.length, {tick("X$STARTED"), tick(item.lastText), tick("X$PAUSED")});
}

class WindowSurvey : public testing::TestWithParam<SurveyCase> {
 protected:
  WindowSurvey() : machine_(GetParam().kind, settingsOf(GetParam())) {
    machine_.options.portrait = !GetParam().byTouch;
    machine_.options.com[0] = ports_.instrument.name;
    machine_.options.com[1] = ports_.receiver.name;
  }
  static Settings settingsOf(const SurveyCase& item) {
    auto settings = quietWheel();
    item.setUp(settings);
    return settings;
  }
  static void command(Operator& person, Qt::Key key, const QString& button) {
    GetParam().byTouch ? person.tap(button) : person.press(key);
  }
  // By "Ok" of the dialog or by Enter.
  static void confirm(QDialog& dialog, const QString& button) {
    GetParam().byTouch ? tapIn(dialog, button) : acceptByKey(dialog);
  }
  static void start(Operator& person) {
    command(person, Qt::Key_G, "&Go");
    person.sees(PanelField::state, "Logging");
  }
  static void pause(Operator& person) {
    command(person, Qt::Key_Space, "TAP ME or press any key to Pause");
    person.sees(PanelField::state, "Stand By");
  }
  void send(Operator& person, const std::string& record, const std::string& shown) const {
    sendOnce(person, ports_.instrument, record, PanelField::value1, shown);
  }

  void open(Operator& person) const;
  static void enterLine(Operator& person);
  static void enterStation(Operator& person);
  static void enterComment(Operator& person);
  static void enterScale(Operator& person);
  void leave(Operator& person);

  Ports ports_;
  Machine machine_;
  std::filesystem::path path_;
};

void WindowSurvey::open(Operator& person) const {
  command(person, Qt::Key_L, "Monitor/&Log");
  person.sees(PanelField::state, "Monitor");
  const auto& item = GetParam();
  wakeUp(person, ports_.instrument, item.first, PanelField::value1, item.firstShown);
  send(person, item.second, item.secondShown);
  item.beforeFile(person, ports_);
  person.answering(
      "Create Data File", [&person] { command(person, Qt::Key_C, "&Create File"); },
      [](QDialog& dialog) {
        type(dialog, "fileNameEdit", "E2E");
        confirm(dialog, "Save");
      });
  person.sees(PanelField::state, "Stand By");
}

void WindowSurvey::enterLine(Operator& person) {
  person.answering(
      "New Line", [&person] { command(person, Qt::Key_L, "&Line"); },
      [](QDialog& dialog) {
        type(dialog, "newLine", "7/a");
        type(dialog, "startStation", "100");
        type(dialog, "stationIncrement", "-2,5");
        QTest::keyClick(dialog.findChild<QComboBox*>("direction"), Qt::Key_End);
        confirm(dialog, "OK");
      });
  EXPECT_EQ(person.text(PanelField::line), "7/a");
}

void WindowSurvey::enterStation(Operator& person) {
  person.answering(
      "New Station", [&person] { command(person, Qt::Key_N, "&NStn"); },
      [](QDialog& dialog) {
        type(dialog, "newStation", "42.5");
        confirm(dialog, "OK");
      });
  person.sees(PanelField::station, "42.50");
}

void WindowSurvey::enterComment(Operator& person) {
  person.answering(
      "Enter Comment", [&person] { command(person, Qt::Key_C, "&Cmnt"); },
      [](QDialog& dialog) {
        type(dialog, "comment", "Fence by the road");
        confirm(dialog, "OK");
      });
}

void WindowSurvey::enterScale(Operator& person) {
  const auto menu = [&person] {
    person.choosing([&person] { command(person, Qt::Key_M, "&Menu"); }, Qt::Key_S);
  };
  person.answering("Enter Scale", menu, [](QDialog& dialog) {
    type(dialog, "firstMinimum", "3");
    type(dialog, "firstMaximum", "8");
    confirm(dialog, "OK");
  });
}

void WindowSurvey::leave(Operator& person) {
  path_ = person.file();
  person.answering(
      "Confirm Exit", [&person] { command(person, Qt::Key_X, "E&xit"); },
      [](QDialog& box) { tapIn(box, "Yes"); });
  EXPECT_FALSE(person.logging().isVisible());
  command(person, Qt::Key_X, "E&xit");
}

TEST_P(WindowSurvey, GivesItsFileByteForByte) {
  const auto& item = GetParam();
  const int status = machine_.run([&](Operator& person) {
    open(person);
    start(person);
    send(person, item.first, item.firstShown);
    item.afterFirst(person, ports_);
    send(person, item.second, item.secondShown);
    item.afterSecond(person, ports_);
    pause(person);
    enterLine(person);
    enterStation(person);
    enterComment(person);
    enterScale(person);
    item.beforeLast(person, ports_);
    start(person);
    send(person, item.first, item.lastShown);
    pause(person);
    leave(person);
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(wiped(readFile(path_), item.length), expectedFile(item));
  const auto settings = machine_.savedSettings();
  EXPECT_EQ(settings.conductivityMinimum, 3.0F);
  EXPECT_EQ(settings.conductivityMaximum, 8.0F);
  EXPECT_EQ(settings.lineName, "7/a");
}

INSTANTIATE_TEST_SUITE_P(Kinds, WindowSurvey, testing::Values(orla(), tesk2(), glaco()),
                         [](const auto& row) { return row.param.test; });

const std::string kRecord = "T$+0400-0800\r";
const std::string kLaterRecord = "T$-0400-0800\r";

// Into Stand By, with a data file.
void createFile(Operator& person) {
  person.answering(
      "Create Data File", [&person] { person.press(Qt::Key_C); }, acceptByKey);
  person.sees(PanelField::state, "Stand By");
}

TEST(WindowFrame, ClosedWhileLoggingAsksAndEndsCleanly) {
  const Device device;
  Machine machine(Kind::orla, quietWheel());
  machine.options.com[0] = device.name;
  std::filesystem::path path;
  const int status = machine.run([&](Operator& person) {
    person.press(Qt::Key_L);
    wakeUp(person, device, kRecord, PanelField::value1, "C:-10.00");
    createFile(person);
    path = person.file();
    person.press(Qt::Key_G);
    const auto closeFrame = [&person] { person.window().close(); };
    person.answering("Confirm Exit", closeFrame, [](QDialog& box) { tapIn(box, "No"); });
    EXPECT_EQ(person.text(PanelField::state), "Logging");
    sendOnce(person, device, kLaterRecord, PanelField::value1, "C:10.00");
    person.answering("Confirm Exit", closeFrame, [](QDialog& box) { tapIn(box, "Yes"); });
  });
  EXPECT_EQ(status, 0);
  EXPECT_THAT(wiped(readFile(path), 24),
              EndsWith(records24({withTick(24, "*00:00:00.000"), withTick(24, "X$STARTED"),
                                  withTick(24, "T$-0400-0800"), withTick(24, "X$PAUSED")})));
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
  void plugIn(const std::string& record) {
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

TEST(WindowCable, PulledBehindADialogAndPluggedInAgainResumes) {
  auto settings = quietWheel();
  settings.readingsInterval = 2;  // five periods are ten seconds
  Machine machine(Kind::orla, settings);
  const auto link = machine.folder.path() / "port";
  machine.options.com[0] = link;
  Cable cable(link);
  cable.plugIn(kRecord);
  std::filesystem::path path;
  const int status = machine.run([&](Operator& person) {
    person.press(Qt::Key_L);
    person.sees(PanelField::value1, "C:-10.00");
    createFile(person);
    path = person.file();
    person.answering(
        "New Line", [&person] { person.press(Qt::Key_L); },
        [&](QDialog& dialog) {
          type(dialog, "newLine", "9");
          cable.pull();
          person.sees(PanelField::message, "Please Wait...");
          cable.plugIn(kLaterRecord);
          person.sees(PanelField::value1, "C:10.00");
          EXPECT_EQ(QApplication::activeModalWidget(), &dialog);
          acceptByKey(dialog);
        });
    EXPECT_EQ(person.text(PanelField::line), "9");
    person.press(Qt::Key_G);
    EXPECT_TRUE(comes([&person] { return person.logging().session()->counts.readings >= 2; }));
    person.press(Qt::Key_Space);
    person.answering(
        "Confirm Exit", [&person] { person.window().close(); }, [](QDialog& box) { tapIn(box, "Yes"); });
  });
  EXPECT_EQ(status, 0);
  // One break, then the line and its readings.
  const auto content = wiped(readFile(path), 24);
  EXPECT_EQ(content.substr(std::size_t{7} * 24, std::size_t{6} * 24),
            records24({withTick(24, "X$CONN BREAK"), "L9", "B       0.00", "AS           -1.000",
                       "Z00000000 00:00:00", withTick(24, "*00:00:00.000")}));
  const auto reading = records24({withTick(24, "T$-0400-0800")});
  EXPECT_THAT(content, testing::HasSubstr(records24({withTick(24, "X$STARTED")}) + reading + reading));
  EXPECT_THAT(content, EndsWith(reading + records24({withTick(24, "X$PAUSED")})));
}

// The program as the desktop starts it, where there is no session bus.
struct Started : testing::Test {
  Started() {
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(folder.path().string()));
  }
  ~Started() override {
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("XDG_CONFIG_HOME");
  }
  std::vector<std::string> command() const {
    return {KALMIRA, "--kind", "ORLA", "--root", folder.path(), "--com", "1=" + device.name};
  }
  // The settings file is made while the window is.
  bool stands() const {
    return comes([this] { return std::filesystem::exists(folder.path() / "Storage/KALINI/ORLA.INI"); });
  }
  TempFolder folder;
  Device device;
};

TEST_F(Started, EndsWhenTheMachineAsks) {
  for (const int number : {SIGTERM, SIGINT}) {
    Program program(command());
    ASSERT_TRUE(stands());
    program.signal(number);
    EXPECT_EQ(program.end(), 0) << program.errors();
    std::filesystem::remove_all(folder.path() / "Storage");
  }
}

TEST_F(Started, ASecondStartOnTheSameRootEnds) {
  Program first(command());
  ASSERT_TRUE(stands());
  const auto second = run(command());
  EXPECT_EQ(second.status, 0);
  EXPECT_THAT(second.errors, EndsWith("kalmira: already running on this root\n"));
  first.signal(SIGTERM);
  EXPECT_EQ(first.end(), 0) << first.errors();
}

}  // namespace
}  // namespace kalmira
