#include "instruments/ice_model.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <vector>

namespace kalmira {
namespace {

constexpr bool kFamilyA = true;  // the short instrument
constexpr bool kFamilyB = false;

IceModel loaded(int seaWaterCase, bool family) {
  IceModel model;
  LoadIceTable(seaWaterCase, family, model);
  return model;
}

struct Excerpt {
  bool family;
  int seaWaterCase;
  std::array<double, 7> first;   // entries 1 to 7
  std::array<double, 5> middle;  // 33 to 37
  std::array<double, 3> last;    // 68 to 70
};

TEST(IceTables, HoldTheModelledConductivities) {
  const std::vector<Excerpt> excerpts{
      {kFamilyA,
       0,
       {1260.0, 1110.0, 977.3, 861.2, 760.1, 672.4, 596.3},
       {68.33, 64.58, 61.11, 57.92, 54.96},
       {18.56, 18.17, 17.8}},
      {kFamilyA,
       5,
       {1502.0, 1320.0, 1159.0, 1018.0, 895.3, 789.1, 697.3},
       {72.84, 68.64, 64.78, 61.23, 57.95},
       {18.59, 18.18, 17.8}},
      {kFamilyA,
       10,
       {1727.0, 1513.0, 1325.0, 1161.0, 1018.0, 894.8, 788.2},
       {76.22, 71.66, 67.48, 63.63, 60.1},
       {18.53, 18.12, 17.73}},
      {kFamilyB,
       0,
       {950.41, 880.897, 815.665, 754.69, 697.896, 645.165, 596.343},
       {100.553, 95.183, 90.188, 85.537, 81.204},
       {24.583, 23.934, 23.317}},
      {kFamilyB,
       5,
       {1081.301, 1001.124, 925.796, 855.331, 789.67, 728.702, 672.265},
       {106.331, 100.421, 94.935, 89.838, 85.099},
       {24.557, 23.888, 23.252}},
      {kFamilyB,
       10,
       {1189.51, 1100.597, 1016.928, 938.567, 865.493, 797.611, 734.764},
       {110.4, 104.072, 98.209, 92.771, 87.724},
       {24.405, 23.726, 23.081}},
  };
  for (const auto& [family, seaWaterCase, first, middle, last] : excerpts) {
    SCOPED_TRACE(testing::Message() << (family ? 'A' : 'B') << seaWaterCase);
    const IceModel model = loaded(seaWaterCase, family);
    for (std::size_t i = 0; i < first.size(); ++i) EXPECT_EQ(model.iceTable[1 + i], first[i]);
    for (std::size_t i = 0; i < middle.size(); ++i) EXPECT_EQ(model.iceTable[33 + i], middle[i]);
    for (std::size_t i = 0; i < last.size(); ++i) EXPECT_EQ(model.iceTable[68 + i], last[i]);
  }
}

TEST(IceTables, FallFromTheUpperLimitOfEachCaseToTheLowerOne) {
  struct Limits {
    double aboveA, belowA, aboveB, belowB;
  };
  const std::array<Limits, kSeaWaterCases> limits{{{1428.0, 17.8, 1024.2, 23.317},
                                                   {1486.0, 17.81, 1054.8, 23.317},
                                                   {1542.0, 17.81, 1084.3, 23.31},
                                                   {1598.0, 17.81, 1112.7, 23.296},
                                                   {1653.0, 17.81, 1140.0, 23.276},
                                                   {1707.0, 17.8, 1166.2, 23.252},
                                                   {1760.0, 17.79, 1191.5, 23.224},
                                                   {1813.0, 17.78, 1215.8, 23.193},
                                                   {1865.0, 17.76, 1239.3, 23.158},
                                                   {1916.0, 17.75, 1261.8, 23.121},
                                                   {1966.0, 17.73, 1283.5, 23.081}}};
  for (int seaWaterCase = 0; seaWaterCase < kSeaWaterCases; ++seaWaterCase) {
    const Limits& row = limits[static_cast<std::size_t>(seaWaterCase)];
    for (const bool family : {kFamilyA, kFamilyB}) {
      SCOPED_TRACE(testing::Message() << (family ? 'A' : 'B') << seaWaterCase);
      const IceModel model = loaded(seaWaterCase, family);
      const double above = family ? row.aboveA : row.aboveB;
      const double below = family ? row.belowA : row.belowB;
      EXPECT_EQ(model.iceTable[0], family ? above : static_cast<double>(static_cast<float>(above)));
      EXPECT_EQ(model.iceTable[70], below);
      EXPECT_EQ(IceThickness(above + 1e-9, model, nullptr), kIceAboveTable);
      EXPECT_NE(IceThickness(above, model, nullptr), kIceAboveTable);
      EXPECT_FLOAT_EQ(IceThickness(below, model, nullptr), 7.0F);
      EXPECT_EQ(IceThickness(below - 1e-9, model, nullptr), kIceBelowTable);
      for (std::size_t i = 1; i < model.iceTable.size(); ++i) {
        ASSERT_LT(model.iceTable[i], model.iceTable[i - 1]);
        EXPECT_NEAR(IceThickness(model.iceTable[i], model, nullptr), static_cast<double>(i) / 10.0, 1e-6);
      }
    }
  }
}

TEST(IceThickness, InterpolatesBetweenEntries) {
  struct Row {
    bool family;
    double conductivity;
    float thickness;
  };
  const std::vector<Row> rows{
      {kFamilyA, 1428.0, 0.0F},
      {kFamilyA, 1260.0, 0.1F},
      {kFamilyA, 1344.0, 0.05F},
      {kFamilyA, 1428.5, kIceAboveTable},
      {kFamilyA, 17.79, kIceBelowTable},
      {kFamilyA, 61.11, 3.5F},          // entry 35: found in the lower half
      {kFamilyA, 62.845, 3.45F},        // half-way from 64.58 to 61.11
      {kFamilyA, 59.515, 3.55F},        // half-way from 61.11 to 57.92
      {kFamilyB, 1024.19921875, 0.0F},  // entry 0 in single precision
      {kFamilyB, 1024.2, -16.581961F},  // (35 + (1024.2 - 90.188) / (85.537 - 90.188)) / 10
      {kFamilyA, std::numeric_limits<double>::quiet_NaN(), kIceBelowTable},
      {kFamilyA, std::numeric_limits<double>::infinity(), kIceAboveTable},
  };
  for (const auto& [family, conductivity, thickness] : rows) {
    EXPECT_NEAR(IceThickness(conductivity, loaded(0, family), nullptr), thickness, 2e-6) << conductivity;
  }
}

TEST(IceThickness, StoresOnlyWhatWasFound) {
  const IceModel model = loaded(0, kFamilyA);
  Channels channels;
  IceThickness(2000.0, model, &channels);
  IceThickness(1.0, model, &channels);
  EXPECT_EQ(channels.present[4], 0);
  EXPECT_EQ(IceThickness(1260.0, model, &channels), channels.value[4]);
  EXPECT_EQ(channels.present[4], 1);
  EXPECT_FLOAT_EQ(channels.value[4], 0.1F);
}

TEST(IceThickness, UnknownCasesLoadAndConvertNothing) {
  EXPECT_EQ(IceThickness(100.0, loaded(-1, kFamilyA), nullptr), kIceBelowTable);
  IceModel model = loaded(3, kFamilyB);
  LoadIceTable(11, kFamilyA, model);
  EXPECT_EQ(model.seaWaterCase, 3);
  EXPECT_FALSE(model.orlaModelOption);
  EXPECT_EQ(model.upperLimit, 1112.7);
}

}  // namespace
}  // namespace kalmira
