#include "settings/setup_lists.h"

#include <gmock/gmock.h>

#include <climits>

namespace kalmira {
namespace {

using ::testing::ElementsAre;

const SetupList& listNamed(const std::vector<SetupList>& lists, std::string_view name) {
  for (const auto& list : lists) {
    if (list.name == name) return list;
  }
  ADD_FAILURE() << "no list " << name;
  return lists.front();
}

std::vector<std::string> names(const std::vector<SetupList>& lists) {
  std::vector<std::string> out;
  for (const auto& list : lists) out.emplace_back(list.name);
  return out;
}

TEST(SetupLists, EveryKindHasItsOwn) {
  EXPECT_THAT(names(loggerSetupLists({.kind = Kind::orla, .iceOption = true})),
              ElementsAre("iceDisplay", "seaWater", "iceQuantity", "instrumentLength", "instrumentPort",
                          "lengthUnits", "audio", "pauseKey"));
  EXPECT_THAT(names(loggerSetupLists({.kind = Kind::orla})),
              ElementsAre("instrumentLength", "instrumentPort", "lengthUnits", "audio", "pauseKey"));
  EXPECT_THAT(names(loggerSetupLists({.kind = Kind::tesk2})),
              ElementsAre("tesk2Variant", "markerPort", "softMarker", "instrumentPort", "lengthUnits",
                          "audio", "pauseKey"));
  for (const Kind kind : {Kind::teskb, Kind::teskdd, Kind::tesk, Kind::vardo, Kind::mirka, Kind::glaco}) {
    EXPECT_THAT(names(loggerSetupLists({.kind = kind, .iceOption = true})),
                ElementsAre("instrumentPort", "lengthUnits", "audio", "pauseKey"));
  }
}

TEST(SetupLists, PauseKeysAndSoftMarkersFollowTheScreen) {
  const auto entries = [](Kind kind, bool portrait, int storageClass, const char* name) {
    return listNamed(loggerSetupLists({.kind = kind, .portrait = portrait, .storageClass = storageClass}),
                     name)
        .entries;
  };
  EXPECT_THAT(entries(Kind::vardo, true, 1, "pauseKey"), ElementsAre("Any key"));
  EXPECT_THAT(entries(Kind::vardo, false, 1, "pauseKey"),
              ElementsAre("Any key", "SPACE bar", "ENTER key", "Key S"));
  for (const bool portrait : {true, false}) {
    EXPECT_THAT(entries(Kind::tesk2, portrait, 1, "pauseKey"),
                ElementsAre("Non numeric key", "<-> <0> <.>", "ENTER key", "Key <0>"));
  }
  EXPECT_THAT(entries(Kind::tesk2, true, 1, "softMarker"), ElementsAre("No", "Digit keys"));
  EXPECT_THAT(entries(Kind::tesk2, false, 1, "softMarker"), ElementsAre("No", "Arrow keys"));
  EXPECT_THAT(entries(Kind::tesk2, true, 0, "softMarker"), ElementsAre("No", "Arrow keys"));
}

TEST(SetupLists, EntriesStandForTheirPositions) {
  const auto ice = loggerSetupLists({.kind = Kind::orla, .iceOption = true});
  const auto& seaWater = listNamed(ice, "seaWater").entries;
  ASSERT_EQ(seaWater.size(), 11U);
  EXPECT_EQ(seaWater[0] + seaWater[1] + seaWater[10], "2000 mS/m2100 mS/m3000 mS/m");
  const auto tesk2 = loggerSetupLists({.kind = Kind::tesk2});
  EXPECT_THAT(listNamed(tesk2, "markerPort").entries,
              ElementsAre("Disabled", "COM1:", "COM2:", "COM3:", "COM4:", "COM5:", "COM7:", "COM8:", "COM9:",
                          "COM10:", "COM11:", "COM12:"));
  EXPECT_EQ(listNamed(tesk2, "instrumentPort").entries.back(), "COM12:");
  EXPECT_THAT(listNamed(gpsSetupLists(), "gpsBaud").entries,
              ElementsAre("4800", "9600", "19200", "38400", "57600", "115200", "230400", "460800"));
  EXPECT_THAT(listNamed(gpsSetupLists(), "gpsParity").entries, ElementsAre("No", "Even", "Odd"));
}

TEST(SetupLists, ValuesOutsideTheListShowAsTheDefault) {
  const auto logger = loggerSetupLists({.kind = Kind::tesk2, .portrait = false});
  const auto upright = loggerSetupLists({.kind = Kind::orla});
  const auto gps = gpsSetupLists();
  const struct {
    const SetupList& list;
    int value;
    int position;
  } cases[] = {
      {listNamed(logger, "tesk2Variant"), 1, 0},
      {listNamed(logger, "tesk2Variant"), 2, 1},
      {listNamed(logger, "tesk2Variant"), 0, 0},
      {listNamed(logger, "tesk2Variant"), INT_MIN, 0},
      {listNamed(logger, "markerPort"), 11, 11},
      {listNamed(logger, "markerPort"), 12, 0},
      {listNamed(logger, "audio"), -1, 1},
      {listNamed(gps, "gpsDataBits"), 7, 1},
      {listNamed(gps, "gpsPort"), INT_MAX, 1},
      {listNamed(upright, "pauseKey"), 2, 0},
      {listNamed(upright, "instrumentPort"), 11, 11},
  };
  for (const auto& each : cases) {
    Settings settings;
    settings.*each.list.field = each.value;
    EXPECT_EQ(shownPosition(each.list, settings), each.position) << each.list.name << " " << each.value;
  }
  Settings settings;
  takePosition(listNamed(logger, "tesk2Variant"), 1, settings);
  EXPECT_EQ(settings.tesk2Variant, 2);
  takePosition(listNamed(logger, "tesk2Variant"), -1, settings);
  takePosition(listNamed(logger, "tesk2Variant"), 2, settings);
  EXPECT_EQ(settings.tesk2Variant, 2);
}

}  // namespace
}  // namespace kalmira
