#include "instruments/catalogue.h"

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

constexpr DecodeOptions kNormal{};
constexpr DecodeOptions kShort{.orlaModelOption = true};
constexpr DecodeOptions kInphaseOnly{.listA = 1};
constexpr DecodeOptions kShortInphaseOnly{.orlaModelOption = true, .listA = 1};
constexpr DecodeOptions kTimes10{.teskRangeTimes10 = true};
constexpr DecodeOptions kManual{.gpsLoggingMode = 2};

struct Row {
  Kind kind;
  int mode;
  float conductivity, inphase;
  char orientation, secondMode;
  int range;
  Slots slots;
  DecodeOptions options = kNormal;
  int recordType = 0, secondRange = 0;
};

// Both fields are 1234 and -567.
const std::vector<Row> kRows{
    // ORLA: 1234 x factor, -567 x -0.0025
    {Kind::orla, 0, -308.5F, 1.4175F, 'H', 'N', 1000, {{1, -308.5F}, {3, 1.4175F}}},
    {Kind::orla, 64 + 4, -30.85F, 1.4175F, 'H', 'M', 100, {{1, -30.85F}, {3, 1.4175F}}},
    {Kind::orla, 64 + 4, -30.85F, 1.4175F, 'H', 'N', 100, {{1, -30.85F}, {3, 1.4175F}}, kManual},
    {Kind::orla, 255, -3.085F, 1.4175F, 'V', 'M', 1000, {{0, -3.085F}, {2, 1.4175F}}},
    {Kind::orla, 0, -308.5F, 0.42313433F, 'H', 'N', 1000, {{1, -308.5F}, {3, 0.42313433F}}, kShort},
    {Kind::orla, 1, -3.085F, 1.4175F, 'H', 'N', 1000, {{1, -3.085F}, {3, 1.4175F}}, kShort},
    {Kind::orla, 2, 1234.0F, -0.77125F, 'H', 'N', 10, {{3, -0.77125F}}, kInphaseOnly},
    {Kind::orla, 32, 1234.0F, -77.125F, 'V', 'N', 1000, {{2, -77.125F}}, kInphaseOnly},
    {Kind::orla, 32 + 5, -3.085F, 1.4175F, 'V', 'N', 1000, {{2, 1.4175F}}, kShortInphaseOnly},
    // TESKB: -567 is the conductivity field, 1234 the inphase field
    {Kind::teskb, 0, 56.7F, -3.55392F, 'H', 'N', 100, {{1, 56.7F}, {3, -3.55392F}}, kNormal, 0, 100},
    {Kind::teskb, 64 + 4, 56.7F, -3.55392F, 'H', 'M', 100, {{1, 56.7F}, {3, -3.55392F}}, kNormal, 0, 100},
    {Kind::teskb, 32 + 16 + 7, 70.875F, -4.4424F, 'V', 'N', 1000, {{0, 70.875F}, {2, -4.4424F}}, kNormal, 0, 1000},
    // TESKDD: one component of both dipoles
    {Kind::teskdd, 3, -35.5392F, 16.3296F, 'H', 'N', 1000, {{2, -35.5392F}, {3, 16.3296F}}, kNormal, 1},
    {Kind::teskdd, 32 + 7, -1234.0F, 567.0F, 'V', 'N', 1000, {{0, -1234.0F}, {1, 567.0F}}, kNormal, 2},
    {Kind::teskdd, 16 + 8 + 4, -15.425F, 7.0875F, 'H', 'N', 100, {{0, -15.425F}, {1, 7.0875F}}, kNormal, 2},
    // TESK: one component of one dipole
    {Kind::tesk, 32 + 3, 0.0F, -35.5392F, 'V', 'N', 1000, {{2, -35.5392F}}, kNormal, 1},
    {Kind::tesk, 7, -1234.0F, 0.0F, 'H', 'N', 1000, {{1, -1234.0F}}, kNormal, 2},
    {Kind::tesk, 64 + 32 + 4, -123.4F, 0.0F, 'V', 'M', 100, {{0, -123.4F}}, kNormal, 2},
    {Kind::tesk, 16 + 7, -1542.5F, 0.0F, 'H', 'N', 10000, {{1, -1542.5F}}, kTimes10, 2},
    {Kind::tesk, 0, 0.0F, -35.5392F, 'H', 'N', 1000, {{3, -35.5392F}}, kTimes10, 1},
    // VARDO: below 32 is vertical; the separation in place of the inphase
    {Kind::vardo, 8 + 2, -3.085F, 20.0F, 'V', 'N', 10, {{1, -3.085F}}},
    {Kind::vardo, 16 + 3, -9.255F, 10.0F, 'V', 'N', 30, {{0, -9.255F}}},
    {Kind::vardo, 24 + 4, -30.85F, 40.0F, 'V', 'N', 100, {{2, -30.85F}}},
    {Kind::vardo, 32 + 24 + 7, -308.5F, 40.0F, 'H', 'N', 1000, {{5, -308.5F}}},
    {Kind::vardo, 64 + 6, -308.5F, 20.0F, 'V', 'M', 1000, {{1, -308.5F}}},
    // MIRKA: always slots 0 and 2
    {Kind::mirka, 0, -30850.0F, 141.75F, 'H', 'N', 1000, {{0, -30850.0F}, {2, 141.75F}}},
    {Kind::mirka, 32 + 16 + 4, -3085.0F, 141.75F, 'V', 'N', 100, {{0, -3085.0F}, {2, 141.75F}}},
};

TEST(AsciiDecode, FollowsTheTableOfEachKind) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(std::string(instrumentOf(row.kind).name) + ", mode byte " + std::to_string(row.mode));
    const auto reading = instrumentOf(row.kind).decode(record(row.mode), row.options);
    EXPECT_FLOAT_EQ(reading.conductivity, row.conductivity);
    EXPECT_FLOAT_EQ(reading.inphase, row.inphase);
    EXPECT_EQ(reading.orientation, row.orientation);
    EXPECT_EQ(reading.secondMode, row.secondMode);
    EXPECT_EQ(reading.range, row.range);
    EXPECT_EQ(reading.recordType, row.recordType);
    EXPECT_EQ(reading.secondRange, row.secondRange);
    EXPECT_EQ(reading.batteryLevels, row.kind == Kind::orla && row.mode % 2 == 1);
    const Slots slots = flagged(reading.channels);
    ASSERT_EQ(slots.size(), row.slots.size());
    for (const auto& [slot, value] : row.slots) {
      ASSERT_TRUE(slots.contains(slot)) << slot;
      EXPECT_FLOAT_EQ(slots.at(slot), value);
    }
  }
}

TEST(AsciiDecode, ReadsEachFieldFromItsFiveBytesAlone) {
  struct FieldCase {
    std::string fields;
    float first, second;
  };
  for (const auto& [fields, first, second] : std::initializer_list<FieldCase>{{"1234567890", 12345, 67890},
                                                                              {" 12.5-.500", 12.5F, -0.5F},
                                                                              {std::string("12\0+5+0007", 10), 12, 7},
                                                                              {"+12", 12, 0},
                                                                              {"", 0, 0}}) {
    // Type 2, range 1000: the factor is -1.
    const auto reading = instrumentOf(Kind::teskdd).decode(record(7, fields), kNormal);
    EXPECT_FLOAT_EQ(reading.conductivity, -first) << fields;
    EXPECT_FLOAT_EQ(reading.inphase, -second) << fields;
  }
  // A missing mode byte is a blank; an ice record has none.
  const auto orla = instrumentOf(Kind::orla).decode("T", kNormal);
  EXPECT_TRUE(orla.orientation == 'V' && orla.range == 1000);
  const auto ice = instrumentOf(Kind::glaco).decode("T123I045", kNormal);
  EXPECT_TRUE(ice.orientation == 'V' && ice.secondMode == 'N' && ice.range == 100);
  EXPECT_EQ(flagged(ice.channels), (Slots{{0, 1.23F}, {2, 45.0F}}));
  EXPECT_EQ(ice.conductivity, 1.23F);
  EXPECT_EQ(ice.inphase, 45.0F);
}

constexpr float kFactor1 = 1.15276F;  // inphase of the word 33792: 40 x 0.028819
constexpr float kFactor2 = 0.28819F;  // and 40 x 0.00720475
const Instrument& kTesk2Row = instrumentOf(Kind::tesk2);

std::string tesk2Record(int mode, const std::array<std::uint16_t, 6>& words) {
  std::string text = "T";
  text.push_back(static_cast<char>(mode));
  for (const auto word : words) {
    text.push_back(static_cast<char>(word >> 8U));
    text.push_back(static_cast<char>(word & 0xFFU));
  }
  return text;
}

// Conductivity 2, inphase 2, conductivity 1, inphase 1, auxiliary 1 and 2.
constexpr std::array<std::uint16_t, 6> kWords{0, 33792, 65535, 33792, 3108, 0};

TEST(Tesk2Decode, GivesEveryFieldOfTheRecordAndReadsMissingBytesAsZero) {
  const auto reading = kTesk2Row.decode(tesk2Record(6, kWords), {});
  EXPECT_FLOAT_EQ(reading.auxiliary[0], 950.0F);
  EXPECT_EQ(reading.auxiliary[1], -50.0F);
  EXPECT_EQ(reading.conductivity, 1279.9609375F);
  EXPECT_EQ(reading.conductivity2, -1280.0F);
  EXPECT_FLOAT_EQ(reading.inphase, kFactor1);
  EXPECT_FLOAT_EQ(reading.inphase2, kFactor2);
  EXPECT_EQ(
      flagged(reading.channels),
      (Slots{{0, reading.conductivity}, {2, reading.inphase}, {4, reading.conductivity2}, {6, reading.inphase2}}));
  const auto cut = kTesk2Row.decode(tesk2Record(2, kWords).substr(0, 7), {.listA = 1}).channels;
  EXPECT_FLOAT_EQ(cut.value[1], 1270.0F);  // the word 255 x 256: 5 x 65280 / 1024 = 318.75
  EXPECT_EQ(cut.value[3], -1280.0F);
}

TEST(Tesk2Decode, TestsTheModeByteWithItsMarkerBits) {
  const std::string modes("\0\1\2\3\4\5\6\7\x12\x0A\x1E\xFF", 12);
  for (std::size_t i = 0; i < modes.size(); ++i) {
    const auto text = tesk2Record(modes[i], kWords);
    const auto reading = kTesk2Row.decode(text, {});
    EXPECT_EQ(reading.orientation, "HHHHVVVVVVVV"[i]) << i;
    EXPECT_EQ(reading.secondMode, "MMNMMMNMMMMM"[i]) << i;
    EXPECT_EQ(kTesk2Row.triggerPressed(text), reading.secondMode == 'M');
    EXPECT_EQ(reading.channels.present[reading.orientation == 'V' ? 0 : 1], 1);
  }
}

TEST(Tesk2Decode, AddsConductivityAndSubtractsInphaseOffsetsOfTheOrientation) {
  DecodeOptions options{.listA = 1, .calibration = {1, 2, 3, 4, 10, 20}};  // V1, V2, H1, H2, conductivity 1, 2
  const auto decoded = [&options](int mode) {
    return flagged(kTesk2Row.decode(tesk2Record(mode, {33792, 33792, 33792, 33792, 0, 0}), options).channels);
  };
  EXPECT_EQ(decoded(6), (Slots{{0, 50}, {2, 39}, {4, 60}, {6, 38}}));
  EXPECT_EQ(decoded(2), (Slots{{1, 50}, {3, 37}, {5, 60}, {7, 36}}));
  options.listA = 0;
  EXPECT_FLOAT_EQ(decoded(2)[3], kFactor1 - 3);
  EXPECT_FLOAT_EQ(decoded(2)[7], kFactor2 - 4);
}

}  // namespace
}  // namespace kalmira
