#include "settings/profile_scale.h"

#include <gtest/gtest.h>

#include <limits>

namespace kalmira {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

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

TEST(ProfileScale, ConductivityAndInphaseStayWithinNineThousandAndApart) {
  expectLimits(limitedScale, {{{50, 20}, {50, 150}},
                              {{0, 12000}, {0, 9000}},
                              {{-9001, -9000.5F}, {-9000, -8900}},  // both end at -9000
                              {{9500, 9600}, {9000, 9100}},
                              {{5, 5}, {5, 105}},
                              {{5, 5.5F}, {5, 5.5F}},
                              {{kNan, kNan}, {0, 100}},
                              {{-kInfinity, kInfinity}, {-9000, 9000}}});
}

TEST(ProfileScale, ThicknessKeepsRoomBelowTenMetres) {
  expectLimits(limitedThickness, {{{12, 15}, {9, 10}},
                                  {{3, 3}, {3, 4}},
                                  {{-2, 5}, {0, 5}},
                                  {{-5, -1}, {0, 1}},
                                  {{10, 20}, {10, 11}},  // ten itself is not above ten
                                  {{9.5F, 10.5F}, {9.5F, 10}},
                                  {{kNan, 2}, {0, 2}},
                                  {{kInfinity, kInfinity}, {9, 10}}});
}

TEST(ProfileScale, KindsShowTheScalesTheyHave) {
  struct Case {
    Kind kind;
    bool iceOption, inphase, ice, thickness;
  };
  for (const auto& c :
       {Case{Kind::orla, false, true, false, false}, Case{Kind::orla, true, true, true, false},
        Case{Kind::tesk2, true, true, false, false}, Case{Kind::vardo, false, false, false, false},
        Case{Kind::glaco, true, true, false, true}}) {
    const auto fields = scaleFieldsOf(c.kind, c.iceOption);
    EXPECT_EQ(fields.inphase, c.inphase) << static_cast<int>(c.kind);
    EXPECT_EQ(fields.ice, c.ice) << static_cast<int>(c.kind);
    EXPECT_EQ(fields.firstIsThickness, c.thickness) << static_cast<int>(c.kind);
  }
}

}  // namespace
}  // namespace kalmira
