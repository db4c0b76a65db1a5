#include <gmock/gmock.h>

#include "platform/clock.h"
#include "settings/settings_file.h"
#include "support/dialogs.h"
#include "support/fake_port.h"
#include "ui/setup/setup_dialogs.h"

namespace kalmira {
namespace {

using ::testing::ElementsAre;

// What the lists offer, and which setting each one is: its first entry stands for `first`. Some lists offer
// something else on another screen; those have a letter.
struct ListCase {
  std::string name;
  std::string entries;
  int Settings::*field;
  int first = 0;
};
const std::string kComs = "COM1:|COM2:|COM3:|COM4:|COM5:|COM6:|COM7:|COM8:|COM9:|COM10:|COM11:|COM12:";
const ListCase kLists[]{
    {"instrumentPort", kComs, &Settings::instrumentPortIndex},
    {"lengthUnits", "meters|feet", &Settings::lengthUnits},
    {"audio", "No|Yes", &Settings::audio},
    {"pauseKey", "Any key", &Settings::pauseKey},
    {"pauseKey/f", "Any key|SPACE bar|ENTER key|Key S", &Settings::pauseKey},
    {"pauseKey/n", "Non numeric key|<-> <0> <.>|ENTER key|Key <0>", &Settings::pauseKey},
    {"instrumentLength", "Standard|Short", &Settings::instrumentLength},
    {"iceDisplay", "Disabled|Enabled", &Settings::iceDisplay},
    {"iceQuantity", "Cond./Inphase|Ice Thickness", &Settings::iceQuantity},
    {"seaWater",
     "2000 mS/m|2100 mS/m|2200 mS/m|2300 mS/m|2400 mS/m|2500 mS/m|2600 mS/m|2700 mS/m|2800 mS/m|2900 mS/m|"
     "3000 mS/m",
     &Settings::seaWaterChoice},
    {"tesk2Variant", "TESK-2-1|TESK-2", &Settings::tesk2Variant, 1},
    {"markerPort",
     "Disabled|COM1:|COM2:|COM3:|COM4:|COM5:|COM7:|COM8:|COM9:|COM10:|COM11:|COM12:", &Settings::markerPortChoice},
    {"softMarker/d", "No|Digit keys", &Settings::softMarker},
    {"softMarker/a", "No|Arrow keys", &Settings::softMarker},
    {"gpsInput", "Disabled|Enabled", &Settings::gpsInput},
    {"gpsPort", kComs, &Settings::gpsPortIndex},
    {"gpsBaud", "4800|9600|19200|38400|57600|115200|230400|460800", &Settings::gpsBaudIndex},
    {"gpsDataBits", "7|8", &Settings::gpsDataBitsIndex},
    {"gpsParity", "No|Even|Odd", &Settings::gpsParityIndex},
    {"gpsStopBits", "1|2", &Settings::gpsStopBitsIndex}};
const char* const kGps = "gpsInput gpsPort gpsBaud gpsDataBits gpsParity gpsStopBits";

std::vector<ListCase> listsOf(const std::string& names) {
  std::vector<ListCase> found;
  for (const auto& name : QString::fromStdString(names).split(' ')) {
    for (const auto& each : kLists) {
      if (each.name == name.toStdString()) found.push_back(each);
    }
    found.back().name = name.section('/', 0, 0).toStdString();
  }
  return found;
}

struct LoggerCase {
  Kind kind;
  const char* label;
  std::string lists;  // and what every kind has
  bool portrait = true;
  bool ice = false;
  int storageClass = 1;
};
const LoggerCase kLoggers[]{
    {Kind::orla, "ORLA Port", "instrumentLength pauseKey"},
    {Kind::orla, "ORLA Port", "instrumentLength pauseKey/f", false},
    {Kind::orla, "ORLA Port", "seaWater iceQuantity instrumentLength pauseKey iceDisplay", true, true},
    {Kind::orla, "ORLA Port", "seaWater iceQuantity instrumentLength pauseKey/f iceDisplay", false, true},
    {Kind::teskb, "TESKB Port", "pauseKey"},
    {Kind::teskdd, "TESK-DD Port", "pauseKey"},
    {Kind::tesk, "TESK Port", "pauseKey/f", false},
    {Kind::vardo, "VARDO Port", "pauseKey", true, true},
    {Kind::mirka, "Instrument Port", "pauseKey"},
    {Kind::glaco, "GLACO Port", "pauseKey/f", false},
    {Kind::tesk2, "TESK-2 Port", "tesk2Variant markerPort softMarker/a pauseKey/n", false},
    {Kind::tesk2, "TESK-2 Port", "tesk2Variant markerPort softMarker/a pauseKey/n", true, false, 0},
    {Kind::tesk2, "TESK-2 Port", "tesk2Variant markerPort softMarker/d pauseKey/n"}};

std::string everything(const Settings& settings) {
  return formatSettings(settings, Kind::orla, true) + formatSettings(settings, Kind::tesk2, false);
}

struct SetupDialogs : DialogTest {
  std::optional<Settings> logger(const LoggerCase& of, const DialogActor::Act& act) {
    window.resize(of.portrait ? QSize(480, 640) : QSize(640, 480));
    return in("Logger Setup", act, [&] {
      return runLoggerSetupDialog(&window, {of.kind, of.ice, of.portrait, of.storageClass}, settings, ports);
    });
  }
  GpsSetupOutcome gps(const DialogActor::Act& act) {
    return in("Set GPS Port", act, [&] { return runGpsPortSetupDialog(&window, settings, ports, access); });
  }
  // All at their last entries in the settings, shown so, and brought to their first ones.
  void fillLast(const std::vector<ListCase>& lists) {
    settings = {};
    for (const auto& each : lists) {
      const auto last = std::count(each.entries.begin(), each.entries.end(), '|');
      settings.*each.field = each.first + static_cast<int>(last);
    }
  }
  static void lookAndGoHome(QDialog& dialog, const std::vector<ListCase>& lists) {
    std::size_t shown = 0;
    for (auto* found : dialog.findChildren<QComboBox*>()) shown += found->isVisible() ? 1U : 0U;
    EXPECT_EQ(shown, lists.size());
    for (const auto& each : lists) {
      const auto* name = each.name.c_str();
      auto& box = list(dialog, name);
      QStringList entries;
      for (int i = 0; i < box.count(); ++i) entries << box.itemText(i);
      EXPECT_EQ(entries.join('|').toStdString(), each.entries) << name;
      EXPECT_EQ(box.currentText(), entries.back()) << name;
      choose(dialog, name, 0);
    }
  }
  Settings home(const std::vector<ListCase>& lists) const {
    Settings expected = settings;
    for (const auto& each : lists) expected.*each.field = each.first;
    return expected;
  }

  Settings settings;
  PortLists ports;
  ReceiverAccess access;
};

TEST_F(SetupDialogs, ListsOfTheLoggerSetupAreThoseOfTheKindAndTheScreen) {
  for (const auto& each : kLoggers) {
    SCOPED_TRACE(testing::Message() << each.label << each.ice << each.portrait);
    const auto lists = listsOf("instrumentPort lengthUnits audio " + each.lists);
    fillLast(lists);
    const auto look = [&](QDialog& dialog) {
      EXPECT_EQ(labelText(dialog, "instrumentPortLabel"), each.label);
      lookAndGoHome(dialog, lists);
    };
    const auto changed = logger(each, [&](QDialog& dialog) {
      look(dialog);
      press(dialog, Qt::Key_Return);
    });
    ASSERT_TRUE(changed);
    EXPECT_EQ(everything(*changed), everything(home(lists)));
    EXPECT_FALSE(logger(each, [&](QDialog& dialog) {
      look(dialog);
      tapCancel(dialog);
    }));
  }
}

TEST_F(SetupDialogs, GpsSetupHasThreeWaysOut) {
  const auto lists = listsOf(kGps);
  fillLast(lists);
  using How = GpsSetupOutcome::How;
  for (const auto& [button, how] :
       {std::pair{"ok", How::saved}, std::pair{"cancel", How::cancelled}, std::pair{"monitor", How::monitor}}) {
    SCOPED_TRACE(button);
    const auto outcome = gps([&, button = button](QDialog& dialog) {
      lookAndGoHome(dialog, lists);
      EXPECT_FALSE(part<QPushButton>(dialog, "find").isVisible()) << "nothing to find with";
      tap(dialog, button);
    });
    EXPECT_EQ(outcome.how, how);
    EXPECT_EQ(everything(outcome.settings), everything(how == How::cancelled ? settings : home(lists)));
  }
}

TEST_F(SetupDialogs, IceListsAreGreyedWithoutTheIceDisplayAndSavedAsTheyStand) {
  settings.seaWaterChoice = 7;
  const auto changed = logger(kLoggers[2], [](QDialog& dialog) {
    const auto usable = [&dialog] {
      return std::vector{list(dialog, "seaWater").isEnabled(), list(dialog, "iceQuantity").isEnabled()};
    };
    EXPECT_THAT(usable(), ElementsAre(false, false));
    choose(dialog, "iceDisplay", 1);
    EXPECT_THAT(usable(), ElementsAre(true, true));
    choose(dialog, "seaWater", 8);
    choose(dialog, "iceQuantity", 1);
    choose(dialog, "iceDisplay", 0);
    EXPECT_THAT(usable(), ElementsAre(false, false));
    tapOk(dialog);
  });
  ASSERT_TRUE(changed);
  EXPECT_THAT((std::vector{changed->iceDisplay, changed->seaWaterChoice, changed->iceQuantity}), ElementsAre(0, 8, 1));
}

TEST_F(SetupDialogs, TheDeviceLineFollowsTheListAndTheMachine) {
  std::string secondDevice = "/dev/ttyUSB1, adapter";
  int assignments = 0;
  ports.deviceLine = [&](int com) -> DeviceText {
    if (com == 2) return {.text = secondDevice};
    return {.text = "device of " + std::to_string(com), .trouble = true};
  };
  ports.assignDevices = [&](QWidget*) {
    ++assignments;
    secondDevice = "/dev/ttyS4";
  };
  EXPECT_FALSE(logger(kLoggers[10], [&](QDialog& dialog) {
    auto& line = part<QLabel>(dialog, "instrumentDevice");
    auto& marker = part<QLabel>(dialog, "markerDevice");
    EXPECT_EQ(line.text(), "device of 1");
    EXPECT_TRUE(line.font().bold());
    EXPECT_FALSE(marker.isVisible());
    choose(dialog, "instrumentPort", 1);
    EXPECT_EQ(line.text(), "/dev/ttyUSB1, adapter");
    EXPECT_FALSE(line.font().bold());
    tap(dialog, "devices");
    EXPECT_EQ(line.text(), "/dev/ttyS4");
    secondDevice = "unplugged";
    EXPECT_TRUE(QTest::qWaitFor([&] { return line.text() == "unplugged"; }, 3000));
    choose(dialog, "markerPort", 6);
    EXPECT_EQ(marker.text(), "device of 7") << "there is no COM6 in that list";
    expectFits(dialog);
    dialog.reject();
  }));
  EXPECT_EQ(assignments, 1);
}

struct FindButton : SetupDialogs {
  FindButton() {
    window.resize(480, 640);
    devices["elsewhere"].plugged = false;
    listenTo("receiver");
  }
  void listenTo(const std::string& device) {
    access = {.deviceOf = [device](int) { return device; },
              .portFactory = [this] { return std::make_unique<FakePort>(devices); },
              .clock = &clock};
  }
  static bool says(const QDialog& dialog, const char* text) {
    return QTest::qWaitFor([&] { return labelText(dialog, "findLine").find(text) != std::string::npos; }, 5000);
  }
  // A sentence at one baud rate only; at the others nothing ever comes.
  void understandAt(int baud) {
    receiver.onOpen = [this, baud](const LineSettings& line) {
      receiver.steps = {line.baud == baud ? LineStep{.bytes = "$GPGLL,1,2*53\r\n"} : LineStep{.gone = true}};
    };
  }
  bool isOpen() { return receiver.locked(&FakeDevice::isOpen); }

  FakeDevices devices;
  FakeDevice& receiver = devices["receiver"];
  SystemClock clock{TickBase::program};
};

TEST_F(FindButton, ProposesWhatItHeardAndNothingElse) {
  settings.gpsParityIndex = 1;
  understandAt(38400);
  const auto outcome = gps([](QDialog& dialog) {
    tap(dialog, "find");
    EXPECT_TRUE(says(dialog, "Found: 38400 baud ($GPGLL)")) << labelText(dialog, "findLine");
    EXPECT_EQ(list(dialog, "gpsBaud").currentText(), "38400");
    EXPECT_EQ(list(dialog, "gpsParity").currentText(), "No");
    EXPECT_EQ(list(dialog, "gpsInput").currentText(), "Enabled");
    EXPECT_TRUE(dialog.isVisible()) << "the operator decides";
    tapCancel(dialog);
  });
  EXPECT_EQ(everything(outcome.settings), everything(settings));
  EXPECT_FALSE(isOpen());
}

TEST_F(FindButton, SaysWhatIsInTheWay) {
  understandAt(1);
  for (const auto& [device, text] : {std::pair{"receiver", "Nothing heard"}, std::pair{"elsewhere", "not plugged"},
                                     std::pair{"", "There is no device behind COM2:"}}) {
    listenTo(device);
    gps([text = text](QDialog& dialog) {
      tap(dialog, "find");
      EXPECT_TRUE(says(dialog, text)) << labelText(dialog, "findLine");
      EXPECT_EQ(part<QPushButton>(dialog, "find").text(), "&Find");
      dialog.reject();
    });
  }
  EXPECT_FALSE(isOpen());
}

TEST_F(FindButton, StopsWhenAskedWhenThePortIsChangedAndWhenTheDialogIsLeft) {
  const auto outcome = gps([this](QDialog& dialog) {
    const std::function<void()> stops[] = {[&] { tap(dialog, "find"); }, [&] { choose(dialog, "gpsPort", 2); },
                                           [&] { tapOk(dialog); }};
    for (const auto& stop : stops) {
      tap(dialog, "find");
      EXPECT_TRUE(QTest::qWaitFor([this] { return isOpen(); }, 2000));
      EXPECT_EQ(labelText(dialog, "findLine"), "Listening at 4800 baud (1 of 8)");
      stop();
      if (!dialog.isVisible()) return;
      EXPECT_FALSE(isOpen());
      EXPECT_FALSE(part<QLabel>(dialog, "findLine").isVisible());
    }
  });
  EXPECT_EQ(outcome.how, GpsSetupOutcome::How::saved);
  EXPECT_FALSE(isOpen());
}

}  // namespace
}  // namespace kalmira
