#include "settings/line_entry.h"

#include <gtest/gtest.h>

namespace kalmira {
namespace {

TEST(ProposedLine, GoesBackAlongTheNextOneWhenLinesAlternate) {
  Settings settings;
  settings.lineName = "12.5";
  settings.lineIncrement = 2.5F;
  settings.startStation = 10.0;
  settings.stationIncrement = 2.5F;
  // West and East, South and North.
  for (const auto& [direction, opposite] :
       {std::pair(0, 3), std::pair(1, 2), std::pair(2, 1), std::pair(3, 0)}) {
    settings.direction = direction;
    const auto entry = proposeLine(settings, 50.0);
    EXPECT_EQ(entry.lineName, "15.00");
    EXPECT_EQ(entry.lineIncrement, 2.5F);
    EXPECT_EQ(entry.startStation, 50.0);
    EXPECT_EQ(entry.stationIncrement, -2.5F);
    EXPECT_EQ(entry.direction, opposite);
  }
}

TEST(ProposedLine, StartsWhereTheLastOneDidWhenLinesGoOneWay) {
  const auto entry = proposeLine(
      {.sequenceMode = kSequenceOneWay, .direction = 3, .startStation = 10.0, .stationIncrement = -2.5F},
      50.0);
  EXPECT_EQ(entry.startStation, 10.0);
  EXPECT_EQ(entry.stationIncrement, -2.5F);
  EXPECT_EQ(entry.direction, 3);
  EXPECT_EQ(entry.sequenceMode, kSequenceOneWay);
  const auto corrected = proposeLine({.sequenceMode = 7, .direction = -1}, 4.0);
  EXPECT_EQ(corrected.sequenceMode, kSequenceAlternate);
  EXPECT_EQ(corrected.direction, 1);  // the opposite of North
}

TEST(ProposedLine, ReadsTheNumberInFrontOfALineName) {
  struct Case {
    std::string_view name;
    float increment;
    std::string_view proposed;
  };
  for (const auto& item : {Case{"A7", 1, "1.00"}, Case{"7A", 1, "8.00"}, Case{"", 0.5F, "0.50"},
                           Case{"-3", 1, "-2.00"}, Case{"0.125", 0, "0.12"}}) {
    Settings settings;
    settings.lineName = item.name;
    settings.lineIncrement = item.increment;
    EXPECT_EQ(proposeLine(settings, 0).lineName, item.proposed) << item.name;
  }
}

TEST(TakenLine, BecomesTheCurrentOneWithItsNameCut) {
  Settings settings;
  takeLine({"\xC3\x84" + std::string(30, 'x'), 3, 1, 0, 12.25, -4}, settings);
  EXPECT_EQ(settings.lineName, "\xC3\x84" + std::string(23, 'x'));
  EXPECT_EQ(settings.lineIncrement, 3.0F);
  EXPECT_EQ(settings.sequenceMode, 1);
  EXPECT_EQ(settings.direction, 0);
  EXPECT_EQ(settings.startStation, 12.25);
  EXPECT_EQ(settings.stationIncrement, -4.0F);
}

}  // namespace
}  // namespace kalmira
