#include <gmock/gmock.h>

#include <algorithm>

#include "settings/settings_file.h"
#include "support/dialogs.h"
#include "ui/setup/setup_dialogs.h"

namespace kalmira {
namespace {

using How = GpsSetupOutcome::How;

// What the lists offer: the first entry stands for `first`. Those that differ by the screen have a letter.
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
     "2000 mS/m|2100 mS/m|2200 mS/m|2300 mS/m|2400 mS/m|2500 mS/m|2600 mS/m|2700 mS/m|2800 mS/m|2900 mS/m|3000 mS/m",
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

std::vector<ListCase> listsOf(const std::string& names) {
  std::vector<ListCase> found;
  for (const auto& name : QString::fromStdString(names).split(' ')) {
    const auto* each =
        std::find_if(kLists, std::end(kLists), [&](const ListCase& item) { return item.name == name.toStdString(); });
    found.push_back(*each);
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
    {Kind::orla, "ORLA Port", "seaWater iceQuantity instrumentLength pauseKey iceDisplay", true, true},
    {Kind::orla, "ORLA Port", "seaWater iceQuantity instrumentLength pauseKey/f iceDisplay", false, true},
    {Kind::teskdd, "TESK-DD Port", "pauseKey"},
    {Kind::tesk, "TESK Port", "pauseKey/f", false},
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
  // All at their last entries in the settings, shown so, and brought to their first ones; what is saved then.
  Settings fillLast(const std::vector<ListCase>& lists) {
    settings = {};
    for (const auto& each : lists) {
      settings.*each.field = each.first + static_cast<int>(std::count(each.entries.begin(), each.entries.end(), '|'));
    }
    Settings home = settings;
    for (const auto& each : lists) home.*each.field = each.first;
    return home;
  }
  static void lookAndGoHome(QDialog& dialog, const std::vector<ListCase>& lists) {
    std::size_t shown = 0;
    for (auto* found : dialog.findChildren<QComboBox*>()) shown += found->isVisible() ? 1U : 0U;
    EXPECT_EQ(shown, lists.size());
    for (const auto& each : lists) {
      EXPECT_EQ(entriesOf(dialog, each.name.c_str()),
                each.entries + '=' + each.entries.substr(each.entries.rfind('|') + 1))
          << each.name;
      choose(dialog, each.name.c_str(), 0);
    }
  }

  Settings settings;
  PortLists ports;
  ReceiverAccess access;
};

TEST_F(SetupDialogs, ListsOfTheLoggerSetupAreThoseOfTheKindAndTheScreenAndCancelSavesNothing) {
  for (const auto& each : kLoggers) {
    SCOPED_TRACE(testing::Message() << each.label << each.ice << each.portrait);
    const auto lists = listsOf("instrumentPort lengthUnits audio " + each.lists);
    const auto home = fillLast(lists);
    for (const char* button : {"ok", "cancel"}) {
      const auto changed = logger(each, [&](QDialog& dialog) {
        EXPECT_EQ(textOf(dialog, "instrumentPortLabel"), each.label);
        lookAndGoHome(dialog, lists);
        tap(dialog, button);
      });
      EXPECT_EQ(changed ? everything(*changed) : "", *button == 'o' ? everything(home) : "");
    }
  }
}

TEST_F(SetupDialogs, GpsSetupHasThreeWaysOutAndCancelSavesNothing) {
  const auto lists = listsOf("gpsInput gpsPort gpsBaud gpsDataBits gpsParity gpsStopBits");
  const auto home = fillLast(lists);
  for (const auto& [button, how] :
       {std::pair{"ok", How::saved}, std::pair{"cancel", How::cancelled}, std::pair{"monitor", How::monitor}}) {
    SCOPED_TRACE(button);
    const auto outcome = gps([&, button = button](QDialog& dialog) {
      lookAndGoHome(dialog, lists);
      EXPECT_FALSE(part<QPushButton>(dialog, "find").isVisible()) << "nothing to find with";
      tap(dialog, button);
    });
    EXPECT_EQ(outcome.how, how);
    EXPECT_EQ(everything(outcome.settings), everything(how == How::cancelled ? settings : home));
  }
}

}  // namespace
}  // namespace kalmira
