#include "instruments/decode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace kalmira {
namespace {

using Slots = std::map<std::size_t, float>;  // the flagged slots with their values

Slots flagged(const Channels& channels) {
  Slots slots;
  for (std::size_t i = 0; i < kSlots; ++i) {
    if (channels.present[i] != 0) slots[i] = channels.value[i];
  }
  return slots;
}

// "T", the mode byte and the fields: 1234 and -567 unless stated.
std::string record(int mode, const std::string& fields = "+1234-0567") {
  return std::string("T") + static_cast<char>(mode) + fields;
}

constexpr AsciiOptions kNormal{};
constexpr AsciiOptions kShort{.orlaModelOption = true};
constexpr AsciiOptions kInphaseOnly{.orlaAltInphase = true};
constexpr AsciiOptions kShortInphaseOnly{.orlaModelOption = true, .orlaAltInphase = true};
constexpr AsciiOptions kTimes10{.teskRangeTimes10 = true};
constexpr AsciiOptions kManual{.gpsLoggingMode = 2};

struct Row {
  Kind kind;
  int mode;
  float conductivity;
  float inphase;
  char orientation;
  char secondMode;
  int range;
  Slots slots;
  AsciiOptions options = kNormal;
  int recordType = 0;
  int secondRange = 0;
};

// Both fields are 1234 and -567.
const std::vector<Row> kRows{
    // ORLA: 1234 x factor, -567 x -0.0025
    {Kind::orla, 0, -308.5F, 1.4175F, 'H', 'N', 1000, {{1, -308.5F}, {3, 1.4175F}}},
    {Kind::orla, 32 + 2, -3.085F, 1.4175F, 'V', 'N', 10, {{0, -3.085F}, {2, 1.4175F}}},
    {Kind::orla, 64 + 4, -30.85F, 1.4175F, 'H', 'M', 100, {{1, -30.85F}, {3, 1.4175F}}},
    {Kind::orla, 64 + 32 + 6, -308.5F, 1.4175F, 'V', 'M', 1000, {{0, -308.5F}, {2, 1.4175F}}},
    {Kind::orla, 64 + 4, -30.85F, 1.4175F, 'H', 'N', 100, {{1, -30.85F}, {3, 1.4175F}}, kManual},
    {Kind::orla, 16 + 8 + 4, -30.85F, 1.4175F, 'H', 'N', 100, {{1, -30.85F}, {3, 1.4175F}}},
    {Kind::orla, 255, -3.085F, 1.4175F, 'V', 'M', 1000, {{0, -3.085F}, {2, 1.4175F}}},
    {Kind::orla, 128, -3.085F, 1.4175F, 'V', 'M', 1000, {{0, -3.085F}, {2, 1.4175F}}},
    {Kind::orla, 128 + 4, -30.85F, 1.4175F, 'H', 'N', 100, {{1, -30.85F}, {3, 1.4175F}}},
    {Kind::orla, 0, -308.5F, 0.42313433F, 'H', 'N', 1000, {{1, -308.5F}, {3, 0.42313433F}}, kShort},
    {Kind::orla, 1, -3.085F, 1.4175F, 'H', 'N', 1000, {{1, -3.085F}, {3, 1.4175F}}, kShort},
    {Kind::orla, 2, 1234.0F, -0.77125F, 'H', 'N', 10, {{3, -0.77125F}}, kInphaseOnly},
    {Kind::orla, 32, 1234.0F, -77.125F, 'V', 'N', 1000, {{2, -77.125F}}, kInphaseOnly},
    {Kind::orla, 2, 1234.0F, 368.35821F, 'H', 'N', 10, {{3, 368.35821F}}, kShortInphaseOnly},
    {Kind::orla, 32 + 5, -3.085F, 1.4175F, 'V', 'N', 1000, {{2, 1.4175F}}, kShortInphaseOnly},
    // TESKB: -567 is the conductivity field, 1234 the inphase field
    {Kind::teskb, 0, 56.7F, -3.55392F, 'H', 'N', 100, {{1, 56.7F}, {3, -3.55392F}}, kNormal, 0, 100},
    {Kind::teskb, 1, 567.0F, -3.55392F, 'H', 'N', 1000, {{1, 567.0F}, {3, -3.55392F}}, kNormal, 0, 100},
    {Kind::teskb, 2, 56.7F, -35.5392F, 'H', 'N', 100, {{1, 56.7F}, {3, -35.5392F}}, kNormal, 0, 1000},
    {Kind::teskb, 3, 567.0F, -35.5392F, 'H', 'N', 1000, {{1, 567.0F}, {3, -35.5392F}}, kNormal, 0, 1000},
    {Kind::teskb, 64 + 4, 56.7F, -3.55392F, 'H', 'M', 100, {{1, 56.7F}, {3, -3.55392F}}, kNormal, 0, 100},
    {Kind::teskb,
     32 + 16 + 7,
     70.875F,
     -4.4424F,
     'V',
     'N',
     1000,
     {{0, 70.875F}, {2, -4.4424F}},
     kNormal,
     0,
     1000},
    // TESKDD: one component of both dipoles
    {Kind::teskdd, 0, -3.55392F, 1.63296F, 'H', 'N', 100, {{2, -3.55392F}, {3, 1.63296F}}, kNormal, 1},
    {Kind::teskdd, 3, -35.5392F, 16.3296F, 'H', 'N', 1000, {{2, -35.5392F}, {3, 16.3296F}}, kNormal, 1},
    {Kind::teskdd, 32 + 7, -1234.0F, 567.0F, 'V', 'N', 1000, {{0, -1234.0F}, {1, 567.0F}}, kNormal, 2},
    {Kind::teskdd, 16 + 8 + 4, -15.425F, 7.0875F, 'H', 'N', 100, {{0, -15.425F}, {1, 7.0875F}}, kNormal, 2},
    // TESK: one component of one dipole
    {Kind::tesk, 0, 0.0F, -3.55392F, 'H', 'N', 100, {{3, -3.55392F}}, kNormal, 1},
    {Kind::tesk, 32 + 3, 0.0F, -35.5392F, 'V', 'N', 1000, {{2, -35.5392F}}, kNormal, 1},
    {Kind::tesk, 7, -1234.0F, 0.0F, 'H', 'N', 1000, {{1, -1234.0F}}, kNormal, 2},
    {Kind::tesk, 64 + 32 + 4, -123.4F, 0.0F, 'V', 'M', 100, {{0, -123.4F}}, kNormal, 2},
    {Kind::tesk, 16 + 7, -1542.5F, 0.0F, 'H', 'N', 10000, {{1, -1542.5F}}, kTimes10, 2},
    {Kind::tesk, 0, 0.0F, -35.5392F, 'H', 'N', 1000, {{3, -35.5392F}}, kTimes10, 1},
    // VARDO: below 32 is vertical; the separation in place of the inphase
    {Kind::vardo, 0, -0.9255F, 20.0F, 'V', 'N', 3, {{1, -0.9255F}}},
    {Kind::vardo, 8 + 2, -3.085F, 20.0F, 'V', 'N', 10, {{1, -3.085F}}},
    {Kind::vardo, 16 + 3, -9.255F, 10.0F, 'V', 'N', 30, {{0, -9.255F}}},
    {Kind::vardo, 24 + 4, -30.85F, 40.0F, 'V', 'N', 100, {{2, -30.85F}}},
    {Kind::vardo, 32 + 5, -92.55F, 20.0F, 'H', 'N', 300, {{4, -92.55F}}},
    {Kind::vardo, 32 + 16 + 1, -308.5F, 10.0F, 'H', 'N', 1000, {{3, -308.5F}}},
    {Kind::vardo, 32 + 24 + 7, -308.5F, 40.0F, 'H', 'N', 1000, {{5, -308.5F}}},
    {Kind::vardo, 64 + 6, -308.5F, 20.0F, 'V', 'M', 1000, {{1, -308.5F}}},
    // MIRKA: always slots 0 and 2
    {Kind::mirka, 0, -30850.0F, 141.75F, 'H', 'N', 1000, {{0, -30850.0F}, {2, 141.75F}}},
    {Kind::mirka, 32 + 16 + 4, -3085.0F, 141.75F, 'V', 'N', 100, {{0, -3085.0F}, {2, 141.75F}}},
    {Kind::mirka, 6, -30850.0F, 141.75F, 'H', 'N', 1000, {{0, -30850.0F}, {2, 141.75F}}},
    {Kind::mirka, 3, -308.5F, 141.75F, 'H', 'N', 10, {{0, -308.5F}, {2, 141.75F}}},
};

TEST(AsciiDecode, FollowsTheTableOfEachKind) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(std::string(instrumentOf(row.kind).name) + ", mode byte " + std::to_string(row.mode));
    AsciiReading reading;
    Channels channels;
    channels.present.fill(1);  // of the reading before: to be cleared
    DecodeAsciiRecord(record(row.mode), row.kind, row.options, reading, channels);
    EXPECT_FLOAT_EQ(reading.conductivity, row.conductivity);
    EXPECT_FLOAT_EQ(reading.inphase, row.inphase);
    EXPECT_EQ(reading.orientation, row.orientation);
    EXPECT_EQ(reading.secondMode, row.secondMode);
    EXPECT_EQ(reading.range, row.range);
    EXPECT_EQ(reading.recordType, row.recordType);
    EXPECT_EQ(reading.secondRange, row.secondRange);
    EXPECT_EQ(reading.odd, row.mode % 2);
    const Slots slots = flagged(channels);
    ASSERT_EQ(slots.size(), row.slots.size());
    for (const auto& [slot, value] : row.slots) {
      ASSERT_TRUE(slots.contains(slot)) << slot;
      EXPECT_FLOAT_EQ(slots.at(slot), value);
    }
  }
}

TEST(AsciiDecode, ReadsTheIceRecordWithoutAModeByte) {
  AsciiReading reading;
  Channels channels;
  DecodeAsciiRecord("T123I045", Kind::glaco, kNormal, reading, channels);
  EXPECT_FLOAT_EQ(reading.conductivity, 1.23F);
  EXPECT_EQ(reading.inphase, 45.0F);
  EXPECT_EQ(reading.orientation, 'V');
  EXPECT_EQ(reading.secondMode, 'N');
  EXPECT_EQ(reading.range, 100);
  EXPECT_EQ(reading.odd, 0);
  EXPECT_EQ(flagged(channels), (Slots{{0, 1.23F}, {2, 45.0F}}));
}

TEST(AsciiDecode, ReadsEachFieldFromItsFiveBytesAlone) {
  struct FieldCase {
    std::string fields;
    float first, second;
  };
  const std::vector<FieldCase> cases{{"1234567890", 12345.0F, 67890.0F},
                                     {" 12.5-.500", 12.5F, -0.5F},
                                     {std::string("12\0"
                                                  "45+0007",
                                                  10),
                                      12.0F, 7.0F},
                                     {"+1e+3x0001", 1000.0F, 0.0F},
                                     {"+12", 12.0F, 0.0F},
                                     {"", 0.0F, 0.0F}};
  for (const auto& [fields, first, second] : cases) {
    SCOPED_TRACE(fields);
    AsciiReading reading;
    Channels channels;
    // Type 2, range 1000: the factor is -1.
    DecodeAsciiRecord(record(7, fields), Kind::teskdd, kNormal, reading, channels);
    EXPECT_FLOAT_EQ(reading.conductivity, -first);
    EXPECT_FLOAT_EQ(reading.inphase, -second);
  }
}

TEST(AsciiDecode, TakesABlankForAMissingModeByte) {
  AsciiReading reading;
  Channels channels;
  DecodeAsciiRecord("T", Kind::orla, kNormal, reading, channels);
  EXPECT_EQ(reading.orientation, 'V');
  EXPECT_EQ(reading.range, 1000);
}

constexpr int kKept = -7;

std::array<int, kProfilePoints> mapped(Kind kind, bool ice, bool unscaled,
                                       const std::array<float, kSlots>& values) {
  // Conductivity: (10 - v) x 2; inphase: (5 - v) x 4; ice: (3 - v) x 100
  const ProfileAxes axes{.conductivity = {10, 2}, .inphase = {5, 4}, .ice = {3, 100}};
  std::array<int, kProfilePoints> points{};
  points.fill(kKept);
  MapProfilePoints(kind, ice, unscaled, axes, values, 9.0F, 8.0F, points);
  return points;
}

TEST(ProfileMapping, PutsEachKindsValuesOnTheirAxes) {
  const std::array<float, kSlots> values{0, 1, 2, 3, 0.5F, 5, 6, 7};
  using Points = std::array<int, kProfilePoints>;
  const Points four{20, 18, 12, 8, kKept, kKept, kKept, kKept, kKept, kKept};
  for (const Kind kind : {Kind::orla, Kind::teskb, Kind::teskdd, Kind::tesk}) {
    EXPECT_EQ(mapped(kind, kind != Kind::orla, true, values), four);
  }
  const Points ice{kKept, kKept, kKept, kKept, 250, kKept, kKept, kKept, kKept, kKept};
  EXPECT_EQ(mapped(Kind::orla, true, false, values), ice);
  const Points six{20, 18, 16, 14, 19, 10, kKept, kKept, kKept, kKept};
  EXPECT_EQ(mapped(Kind::vardo, false, false, values), six);
  EXPECT_EQ(mapped(Kind::mirka, false, false, values), six);
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
  const auto points =
      mapped(Kind::vardo, false, false, {9.3F, 10.7F, nan, -1e30F, infinity, -infinity, 0, 0});
  EXPECT_EQ(points[0], 1);   // 1.4
  EXPECT_EQ(points[1], -1);  // -1.4
  EXPECT_EQ(points[2], 0);
  EXPECT_EQ(points[3], std::numeric_limits<int>::max());
  EXPECT_EQ(points[4], std::numeric_limits<int>::min());
  EXPECT_EQ(points[5], std::numeric_limits<int>::max());
}

}  // namespace
}  // namespace kalmira
