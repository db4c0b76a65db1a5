#include "settings/survey_setup.h"

#include <gmock/gmock.h>

namespace kalmira {
namespace {

using ::testing::ElementsAre;

std::string joined(const SurveyList& list) {
  std::string text(list.label);
  for (const auto entry : list.entries) text += "|" + std::string(entry);
  return text;
}

TEST(SurveyLists, AreThoseOfKindAndMode) {
  struct Case {
    Kind kind;
    int mode;
    std::string listA;
    std::string listB;
    int firstA;
  };
  const std::string dipoles = "Dipole Mode|Vertical|Horizontal|Both";
  const std::string coils = "Coil Setting|V10|V20|V40|H10|H20|H40";
  const std::string allComponents = "Component|Both|Inphase|Conductivity";
  const std::string oneComponent = "Component|Inphase|Conductivity";
  for (const auto& c :
       {Case{Kind::orla, kModeAuto, "Display|Cond./Inphase|Inphase", dipoles, 0},
        Case{Kind::teskb, kModeWheel, "", dipoles, 0}, Case{Kind::teskdd, kModeAuto, oneComponent, "", 1},
        Case{Kind::teskdd, kModeManual, allComponents, "", 0},
        Case{Kind::tesk, kModeWheel, oneComponent, dipoles, 1},
        Case{Kind::tesk, kModeManual, allComponents, dipoles, 0}, Case{Kind::vardo, kModeAuto, "", coils, 0},
        Case{Kind::vardo, kModeManual, "", "Rdgs/Station|1|2|3|4|5|6", 0},
        Case{Kind::mirka, kModeManual, "", "", 0}, Case{Kind::glaco, kModeWheel, "", "", 0},
        Case{Kind::tesk2, kModeAuto, "Inphase|ppt|Unscaled", dipoles, 0}}) {
    EXPECT_EQ(joined(instrumentOf(c.kind).listA(c.mode)), c.listA) << static_cast<int>(c.kind) << c.mode;
    EXPECT_EQ(joined(instrumentOf(c.kind).listB(c.mode)), c.listB) << static_cast<int>(c.kind) << c.mode;
    EXPECT_EQ(instrumentOf(c.kind).listA(c.mode).firstValue, c.firstA) << static_cast<int>(c.kind) << c.mode;
  }
}

TEST(ModeChoices, AreSharedByModesThatMeanTheSame) {
  ModeChoices component(instrumentOf(Kind::tesk).listA, 0, kModeManual);
  EXPECT_EQ(component.value(kModeManual), 0);
  EXPECT_EQ(component.value(kModeAuto), 2) << "both are not to be had in Auto mode";
  component.choose(kModeWheel, 1);
  EXPECT_EQ(component.value(kModeAuto), 1);
  EXPECT_EQ(component.value(kModeManual), 1);

  ModeChoices coils(instrumentOf(Kind::vardo).listB, 5, kModeWheel);
  EXPECT_EQ(coils.value(kModeAuto), 5);
  EXPECT_EQ(coils.value(kModeManual), 0) << "a coil setting is no number of readings";
  coils.choose(kModeManual, 3);
  EXPECT_EQ(coils.value(kModeAuto), 5);

  for (const int stored : {-1, 3, 2147483647}) {
    EXPECT_EQ(ModeChoices(instrumentOf(Kind::orla).listB, stored, kModeAuto).value(kModeAuto), 0) << stored;
    EXPECT_EQ(ModeChoices(instrumentOf(Kind::teskdd).listA, stored, kModeAuto).value(kModeAuto), 2) << stored;
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
       {Case{"2.5", kInterval, 2.5, ""}, Case{" +.5e1 ", kInterval, 5, ""},
        Case{"0.091", kInterval, 0.091, ""}, Case{"0.05", kInterval, 0.091, "Was \"0.05\": 0.091 to 86400"},
        Case{"-1", kInterval, 0.091, "Was \"-1\": 0.091 to 86400"},
        Case{"1e38", kInterval, 86400, "Was \"1e38\": 0.091 to 86400"},
        Case{"1e999", kStation, 9999, "Was \"1e999\": -9999 to 9999"},
        Case{"-99999999999999", kStation, -9999, "Was \"-99999999999...\": -9999 to 9999"},
        Case{"101", kCount, 100, "Was \"101\": 1 to 100"}, Case{"0", kCount, 1, "Was \"0\": 1 to 100"},
        Case{"2.6", kCount, 3, "Was \"2.6\": whole numbers only"}, Case{"5m", kStation, 5, "Was \"5m\""},
        Case{"1e", kStation, 1, "Was \"1e\""}, Case{"", kCount, 7, "Was empty"},
        Case{"  ", kCount, 7, "Was empty"}, Case{"abc", kCount, 7, "Was \"abc\": no number"},
        Case{"nan", kStation, 7, "Was \"nan\": no number"},
        Case{"inf", kStation, 7, "Was \"inf\": no number"},
        Case{"-.", kStation, 7, "Was \"-.\": no number"}}) {
    const auto typed = limitedNumber(c.typed, c.limits, 7);
    EXPECT_EQ(typed.value, c.value) << c.typed;
    EXPECT_EQ(typed.note, c.note) << c.typed;
  }
}

TEST(SurveyNumbers, IntervalIsNoShorterThanTheInstrumentSends) {
  const auto least = [](Kind kind) { return limitsOf(SurveyNumber::readingsInterval, kind).least; };
  EXPECT_EQ(least(Kind::orla), 0.091);
  EXPECT_EQ(least(Kind::glaco), 0.1);
  EXPECT_EQ(least(Kind::tesk2), 0.05);
}

TEST(SurveyNumbers, RateIsTheReciprocalOfTheInterval) {
  EXPECT_EQ(readingsPerSecondText("0.25"), "= 4.000/s");
  EXPECT_EQ(readingsPerSecondText("3"), "= 0.333/s");
  for (const char* typed : {"", "0", "-1", "nan", "x", "1e-300"}) EXPECT_EQ(readingsPerSecondText(typed), "");
}

}  // namespace
}  // namespace kalmira
