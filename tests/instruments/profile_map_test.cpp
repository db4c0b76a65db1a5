#include "instruments/profile_map.h"

#include <gtest/gtest.h>

#include <limits>

namespace kalmira {
namespace {

constexpr int kKept = -7;

std::array<int, kProfilePoints> mapped(Kind kind, bool ice, bool unscaled, const std::array<float, kSlots>& values) {
  // Conductivity: (10 - v) x 2; inphase: (5 - v) x 4; ice: (3 - v) x 100
  const ProfileAxes axes{.conductivity = {10, 2}, .inphase = {5, 4}, .ice = {3, 100}};
  std::array<int, kProfilePoints> points{};
  points.fill(kKept);
  MapProfilePoints(instrumentOf(kind), ice, unscaled, axes, values, 9.0F, 8.0F, points);
  return points;
}

TEST(ProfileMapping, PutsEachKindsValuesOnTheirAxes) {
  const std::array<float, kSlots> values{0, 1, 2, 3, 0.5F, 5, 6, 7};
  using Points = std::array<int, kProfilePoints>;
  const Points four{20, 18, 12, 8, kKept, kKept, kKept, kKept, kKept, kKept};
  for (const Kind kind : {Kind::orla, Kind::teskb, Kind::teskdd, Kind::tesk}) {
    EXPECT_EQ(mapped(kind, false, true, values), four);
  }
  const Points ice{kKept, kKept, kKept, kKept, 250, kKept, kKept, kKept, kKept, kKept};
  EXPECT_EQ(mapped(Kind::orla, true, false, values), ice);
  const Points six{20, 18, 16, 14, 19, 10, kKept, kKept, kKept, kKept};
  EXPECT_EQ(mapped(Kind::vardo, false, false, values), six);
  const Points mirka{20, kKept, 16, kKept, kKept, kKept, kKept, kKept, kKept, kKept};
  EXPECT_EQ(mapped(Kind::mirka, false, false, values), mirka);
  const Points glaco{20, kKept, 12, kKept, kKept, kKept, kKept, kKept, kKept, kKept};
  EXPECT_EQ(mapped(Kind::glaco, false, false, values), glaco);
  const Points eight{20, 18, 12, 8, 19, 10, -4, -8, kKept, kKept};
  EXPECT_EQ(mapped(Kind::tesk2, false, false, values), eight);
  const Points ten{20, 18, 12, 8, 19, 10, -4, -8, 2, 4};
  EXPECT_EQ(mapped(Kind::tesk2, false, true, values), ten);
}

TEST(ProfileMapping, TruncatesAndKeepsWithinInt) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  const auto points = mapped(Kind::vardo, false, false, {9.3F, 10.7F, nan, -1e30F, infinity, -infinity, 0, 0});
  EXPECT_EQ(points[0], 1);   // 1.4
  EXPECT_EQ(points[1], -1);  // -1.4
  EXPECT_EQ(points[2], 0);
  EXPECT_EQ(points[3], std::numeric_limits<int>::max());
  EXPECT_EQ(points[4], std::numeric_limits<int>::min());
  EXPECT_EQ(points[5], std::numeric_limits<int>::max());
}

}  // namespace
}  // namespace kalmira
