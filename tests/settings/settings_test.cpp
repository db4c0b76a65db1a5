#include "settings/settings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <limits>
#include <tuple>

#include "settings/display_options.h"
#include "settings/line_entry.h"
#include "settings/setup_lists.h"
#include "settings/survey_setup.h"

// What is typed and stored, brought to what can be used.
namespace kalmira {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

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
  Settings settings;
  for (const auto& [stored, used] :
       {std::pair{0.25F, 0.25F}, {0.0F, 1.0F}, {-2.0F, 1.0F}, {1e9F, 86400.0F}, {kNan, 1.0F}, {kInfinity, 1.0F}}) {
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
  const struct {
    std::string_view list;
    int value, position;
  } cases[] = {{"tesk2Variant", 2, 1}, {"markerPort", 12, 0},   {"tesk2Variant", INT_MIN, 0},
               {"gpsDataBits", 7, 1},  {"gpsPort", INT_MAX, 1}, {"instrumentPort", 11, 11}};
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << each.list << " " << each.value);
    const auto found =
        std::ranges::find(lists, each.list, [](const SetupList& list) { return std::string_view(list.name); });
    ASSERT_NE(found, lists.end());
    Settings settings;
    settings.*found->field = each.value;
    EXPECT_EQ(shownPosition(*found, settings), each.position);
    for (const int position : {-1, static_cast<int>(found->entries.size())}) takePosition(*found, position, settings);
    EXPECT_EQ(settings.*found->field, each.value);
  }
}

TEST(SurveyNumbers, AreBroughtToTheNearestAllowed) {
  struct Case {
    const char* typed;
    NumberLimits limits;
    double value;
    const char* note;
  };
  constexpr NumberLimits kInterval{0.091, 86400};
  constexpr NumberLimits kCount{1, 100, true};
  constexpr NumberLimits kStation{-9999, 9999};
  for (const auto& c :
       {Case{"2.5", kInterval, 2.5, ""}, Case{" +.5e1 ", kInterval, 5, ""}, Case{"0.091", kInterval, 0.091, ""},
        Case{"-1", kInterval, 0.091, "Was \"-1\": 0.091 to 86400"},
        Case{"1e999", kStation, 9999, "Was \"1e999\": -9999 to 9999"},
        Case{"-99999999999999", kStation, -9999, "Was \"-99999999999...\": -9999 to 9999"},
        Case{"101", kCount, 100, "Was \"101\": 1 to 100"}, Case{"0", kCount, 1, "Was \"0\": 1 to 100"},
        Case{"2.6", kCount, 3, "Was \"2.6\": whole numbers only"}, Case{"5m", kStation, 5, "Was \"5m\""},
        Case{"", kCount, 7, "Was empty"}, Case{"  ", kCount, 7, "Was empty"},
        Case{"abc", kCount, 7, "Was \"abc\": no number"}, Case{"nan", kStation, 7, "Was \"nan\": no number"},
        Case{"-.", kStation, 7, "Was \"-.\": no number"}}) {
    const auto typed = limitedNumber(c.typed, c.limits, 7);
    EXPECT_EQ(typed.value, c.value) << c.typed;
    EXPECT_EQ(typed.note, c.note) << c.typed;
  }
  // No interval is shorter than the instrument sends; its rate is the reciprocal.
  for (const auto& [kind, least] : {std::pair{Kind::orla, 0.091}, {Kind::glaco, 0.1}, {Kind::tesk2, 0.05}})
    EXPECT_EQ(limitsOf(SurveyNumber::readingsInterval, kind).least, least);
  EXPECT_EQ(readingsPerSecondText("3"), "= 0.333/s");
  for (const char* typed : {"", "0", "-1", "nan", "x", "1e-300"}) EXPECT_EQ(readingsPerSecondText(typed), "");
}

struct Limited {
  ScaleEnds typed;
  ScaleEnds kept;
};
void expectLimits(ScaleEnds (*limit)(ScaleEnds), std::initializer_list<Limited> cases) {
  for (const auto& [typed, kept] : cases) {
    const ScaleEnds ends = limit(typed);
    EXPECT_EQ(ends.minimum, kept.minimum) << typed.minimum << " to " << typed.maximum;
    EXPECT_EQ(ends.maximum, kept.maximum) << typed.minimum << " to " << typed.maximum;
  }
}

TEST(ProfileScale, EndsStayWithinTheirRangeAndApart) {
  expectLimits(limitedScale, {{{50, 20}, {50, 150}},
                              {{0, 12000}, {0, 9000}},
                              {{-9001, -9000.5F}, {-9000, -8900}},  // both end at -9000
                              {{5, 5}, {5, 105}},
                              {{5, 5.5F}, {5, 5.5F}},
                              {{-kInfinity, kInfinity}, {-9000, 9000}}});
  expectLimits(limitedThickness, {{{12, 15}, {9, 10}},
                                  {{3, 3}, {3, 4}},
                                  {{-5, -1}, {0, 1}},
                                  {{10, 20}, {10, 11}},  // ten itself is not above ten
                                  {{kNan, 2}, {0, 2}},
                                  {{kInfinity, kInfinity}, {9, 10}}});
}

TEST(ProposedLine, GoesBackAlongTheNextOneOrStartsWhereTheLastOneDid) {
  const struct {
    std::string name;
    float increment;
    int sequence, direction;
    LineEntry wanted;
  } cases[]{{"12.5", 2.5F, 0, 0, {"15.00", 2.5F, 0, 3, 50, -2.5F}},
            {"12.5", 2.5F, 0, 1, {"15.00", 2.5F, 0, 2, 50, -2.5F}},
            {"12.5", 2.5F, 1, 3, {"15.00", 2.5F, 1, 3, 10, 2.5F}},
            {"12.5", 2.5F, 7, -1, {"15.00", 2.5F, 0, 1, 50, -2.5F}},  // what is none is the default
            // The number in front of a name counts.
            {"A7", 1, 1, 0, {"1.00", 1, 1, 0, 10, 2.5F}},
            {"7A", 1, 1, 0, {"8.00", 1, 1, 0, 10, 2.5F}},
            {"0.125", 0, 1, 0, {"0.12", 0, 1, 0, 10, 2.5F}}};
  const auto all = [](const auto& line) {
    return std::tuple(line.lineName, line.lineIncrement, line.sequenceMode, line.direction, line.startStation,
                      line.stationIncrement);
  };
  for (const auto& each : cases) {
    Settings settings{.lineName = each.name,
                      .lineIncrement = each.increment,
                      .sequenceMode = each.sequence,
                      .direction = each.direction,
                      .startStation = 10.0,
                      .stationIncrement = 2.5F};
    EXPECT_EQ(all(proposeLine(settings, 50.0)), all(each.wanted)) << each.name;
  }
  Settings taken;
  takeLine({"\xC3\x84" + std::string(30, 'x'), 3, 1, 0, 12.25, -4}, taken);
  EXPECT_EQ(all(taken), std::tuple("\xC3\x84" + std::string(23, 'x'), 3.0F, 1, 0, 12.25, -4.0F));
}

}  // namespace
}  // namespace kalmira
