#include "settings/settings.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "settings/display_options.h"
#include "settings/setup_lists.h"

namespace kalmira {
namespace {

// A file may hold anything; what is none of a list's positions is taken as the default.
TEST(Settings, ChoicesThatAreNoneAreBroughtBack) {
  EXPECT_EQ(indexOr(2, 3, 0), 2);
  for (const int value : {-1, 3, INT_MAX, INT_MIN}) EXPECT_EQ(indexOr(value, 3, 1), 1);
  Settings settings;
  settings.surveyMode = 3;
  EXPECT_EQ(surveyModeOf(settings), kModeAuto);
  settings.surveyMode = kModeManual;
  EXPECT_EQ(surveyModeOf(settings), kModeManual);
  settings.traceWidth = {0, 5, 4, -1, 1, 1, 1, 1};
  settings.traceShown = {2, -1, 0, 1, 1, 1, 1, 1};
  for (const auto& [slot, width, shown] :
       {std::tuple{std::size_t{0}, 1, true}, {std::size_t{1}, 1, true}, {std::size_t{2}, 4, false}}) {
    EXPECT_EQ(traceWidthOf(settings, slot), width);
    EXPECT_EQ(traceChosen(settings, slot), shown);
  }
}

TEST(Settings, IntervalAndCountAreUsedWithinTheirRanges) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  Settings settings;
  for (const auto& [stored, used] : {std::pair{0.25F, 0.25F},
                                     {0.0F, 1.0F},
                                     {-2.0F, 1.0F},
                                     {1e9F, 86400.0F},
                                     {std::nanf(""), 1.0F},
                                     {kInfinity, 1.0F}}) {
    settings.readingsInterval = stored;
    EXPECT_EQ(readingsIntervalOf(settings), used) << stored;
  }
  for (const auto& [stored, used] : {std::pair{0, 1}, {5, 5}, {101, 100}, {-9, 1}}) {
    settings.readingsCount = stored;
    EXPECT_EQ(readingsCountOf(settings), used);
  }
}

TEST(SetupLists, ValuesOutsideTheListShowAsTheDefaultAndPositionsOutsideChangeNothing) {
  auto lists = loggerSetupLists({.kind = Kind::tesk2});
  for (const auto& list : gpsSetupLists()) lists.push_back(list);
  for (const auto& list : loggerSetupLists({.kind = Kind::orla})) {
    if (std::string_view(list.name) == "pauseKey") lists.push_back(list);
  }
  const struct {
    std::string_view list;
    std::size_t entries;
    int value, position;
  } cases[] = {
      {"tesk2Variant", 2, 1, 0},  {"tesk2Variant", 2, 2, 1}, {"tesk2Variant", 2, 0, 0},
      {"markerPort", 12, 11, 11}, {"markerPort", 12, 12, 0}, {"tesk2Variant", 2, INT_MIN, 0},
      {"audio", 2, -1, 1},        {"gpsDataBits", 2, 7, 1},  {"gpsPort", 12, INT_MAX, 1},
      {"pauseKey", 1, 2, 0},      {"pauseKey", 4, 2, 2},     {"instrumentPort", 12, 11, 11},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << each.list << " " << each.value);
    const auto found = std::find_if(lists.begin(), lists.end(), [&each](const SetupList& list) {
      return each.list == list.name && list.entries.size() == each.entries;
    });
    ASSERT_NE(found, lists.end());
    Settings settings;
    settings.*found->field = each.value;
    EXPECT_EQ(shownPosition(*found, settings), each.position);
    for (const int position : {-1, static_cast<int>(each.entries)}) takePosition(*found, position, settings);
    EXPECT_EQ(settings.*found->field, each.value);
  }
}

TEST(DisplayOptions, ColoursHaveNamesAndNumbers) {
  std::string names;
  for (const int colour : Settings{}.traceColour) names += std::string(colourName(colour)) + ",";
  EXPECT_EQ(names, "Blue,Vermilion,Green,Pink,Black,Light blue,Orange,Grey,");
  EXPECT_EQ(colourNumber(-1), "#FFFFFF");
}

}  // namespace
}  // namespace kalmira
