#include "settings/settings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace kalmira {
namespace {

TEST(Settings, ChoicesThatAreNoneAreBroughtBack) {
  EXPECT_EQ(indexOr(2, 3, 0), 2);
  for (const int value : {-1, 3, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    EXPECT_EQ(indexOr(value, 3, 1), 1);
  }
  Settings settings;
  settings.surveyMode = 3;
  EXPECT_EQ(surveyModeOf(settings), kModeAuto);
  settings.surveyMode = kModeManual;
  EXPECT_EQ(surveyModeOf(settings), kModeManual);
}

TEST(Settings, IntervalAndCountAreUsedWithinTheirRanges) {
  struct Case {
    float stored, used;
  };
  for (const auto& item : {Case{0.25F, 0.25F}, Case{0.0F, 1.0F}, Case{-2.0F, 1.0F}, Case{1e9F, 86400.0F},
                           Case{std::nanf(""), 1.0F}, Case{std::numeric_limits<float>::infinity(), 1.0F}}) {
    Settings settings;
    settings.readingsInterval = item.stored;
    EXPECT_EQ(readingsIntervalOf(settings), item.used) << item.stored;
  }
  Settings settings;
  for (const auto& [stored, used] :
       {std::pair(0, 1), std::pair(5, 5), std::pair(101, 100), std::pair(-9, 1)}) {
    settings.readingsCount = stored;
    EXPECT_EQ(readingsCountOf(settings), used);
  }
}

}  // namespace
}  // namespace kalmira
