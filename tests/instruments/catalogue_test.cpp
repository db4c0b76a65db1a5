#include "instruments/catalogue.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "instruments/ice_model.h"

namespace kalmira {
namespace {

TEST(Catalogue, FindsKindsByNameIndexAndHeaderAlone) {
  for (int index = 0; index < kKindCount; ++index) {
    const auto* instrument = findInstrument(index);
    EXPECT_EQ(findInstrumentByHeader(std::string(headerTag(instrument->kind, false, false)) + "0000   3"), instrument);
  }
  EXPECT_EQ(findInstrumentByName("tesk2"), findInstrument(7));
  EXPECT_EQ(findInstrumentByName("3"), findInstrument(3));
  for (const auto* text : {"", "8", "03", "ORL", "ORLA "}) EXPECT_EQ(findInstrumentByName(text), nullptr);
  EXPECT_EQ(headerTag(Kind::orla, true, true), "ORLAS   W230GPS");
  EXPECT_EQ(headerTag(Kind::tesk2, true, true), "TESK2   W230GPS");
  EXPECT_EQ(findInstrumentByHeader("ORLAS   W230GPS"), findInstrument(0));
  EXPECT_EQ(findInstrumentByHeader("ORLA2  iW230GRD0010003"), findInstrument(0));
  for (const auto* text : {"", "ORLA2   W230GR", "ORLA2   W222GRD", "TESKD   W222GXX", "TESKX   W222GRD"}) {
    EXPECT_EQ(findInstrumentByHeader(text), nullptr) << text;
  }
}

constexpr bool kFamilyA = true;  // the short instrument
constexpr bool kFamilyB = false;

IceModel loaded(int seaWaterCase, bool family) {
  IceModel model;
  LoadIceTable(seaWaterCase, family, model);
  return model;
}

// Each entry times its place, summed up: a digit that slips, or two that change places, is seen.
constexpr std::array<std::array<double, kSeaWaterCases>, 2> kSums{
    {{229209.856, 232929.607, 236439.541, 239755.804, 242892.25, 245861.633, 248675.011, 251343.247, 253875.137,
      256279.243, 258563.568},
     {180057.53, 183890.58, 187583.69, 191142.49, 194573.65, 197899.25, 201103.9, 204209.27, 207218.91, 210141.55,
      212973.99}}};

TEST(IceTables, FallFromTheUpperLimitOfEachCaseToTheLowerOne) {
  for (int seaWaterCase = 0; seaWaterCase < kSeaWaterCases; ++seaWaterCase) {
    for (const bool family : {kFamilyA, kFamilyB}) {
      SCOPED_TRACE(testing::Message() << (family ? 'A' : 'B') << seaWaterCase);
      const IceModel model = loaded(seaWaterCase, family);
      const double above = model.upperLimit;
      const double below = model.lowerLimit;
      EXPECT_EQ(model.iceTable[0], family ? above : static_cast<double>(static_cast<float>(above)));
      EXPECT_EQ(IceThickness(above + 1e-9, model, nullptr), kIceAboveTable);
      EXPECT_NE(IceThickness(above, model, nullptr), kIceAboveTable);
      EXPECT_FLOAT_EQ(IceThickness(below, model, nullptr), 7.0F);
      EXPECT_EQ(IceThickness(below - 1e-9, model, nullptr), kIceBelowTable);
      double sum = above;
      for (std::size_t i = 1; i < model.iceTable.size(); ++i) {
        ASSERT_LT(model.iceTable[i], model.iceTable[i - 1]);
        EXPECT_NEAR(IceThickness(model.iceTable[i], model, nullptr), static_cast<double>(i) / 10.0, 1e-6);
        sum += static_cast<double>(i + 1) * model.iceTable[i];
      }
      EXPECT_NEAR(sum, kSums[family ? 1 : 0][static_cast<std::size_t>(seaWaterCase)], 1e-6);
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
      {kFamilyA, 1344.0, 0.05F},
      {kFamilyA, 1428.5, kIceAboveTable},
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

TEST(IceThickness, StoresOnlyWhatWasFoundAndUnknownCasesLoadNothing) {
  IceModel model = loaded(0, kFamilyA);
  Channels channels;
  for (const auto& [conductivity, present] : {std::pair{2000.0, 0}, {1.0, 0}, {1260.0, 1}}) {
    const auto thickness = IceThickness(conductivity, model, &channels);
    EXPECT_EQ(channels.present[4], present);
    EXPECT_EQ(channels.value[4], present == 1 ? thickness : 0.0F) << conductivity;
  }
  EXPECT_EQ(IceThickness(100.0, loaded(-1, kFamilyA), nullptr), kIceBelowTable);
  LoadIceTable(11, kFamilyB, model);
  EXPECT_EQ(model.seaWaterCase, 0);
  EXPECT_TRUE(model.orlaModelOption);
}

}  // namespace
}  // namespace kalmira
