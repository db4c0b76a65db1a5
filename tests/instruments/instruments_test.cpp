#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "instruments/catalogue.h"
#include "instruments/framing.h"
#include "instruments/ice_model.h"

namespace kalmira {
namespace {

Bytes bytesOf(std::string_view text) { return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}; }

// Feeds `block` to its end and appends every record that ends in it to `seen`, a bad one as "bad".
template <class Framer>
void feedAll(Framer& framer, std::string_view block, std::vector<std::string>& seen) {
  while (true) {
    const FrameStep step = framer.feed(bytesOf(block));
    if (step.result == FrameStep::Result::needMore) {
      EXPECT_EQ(step.used, block.size());
      return;
    }
    seen.emplace_back(step.result == FrameStep::Result::good ? framer.record() : "bad");
    block.remove_prefix(step.used);
  }
}

// What comes out of `stream`, which is fed whole, byte by byte and in two blocks cut at every place.
template <class Framer>
std::vector<std::string> frame(const Framer& fresh, std::string_view stream) {
  std::vector<std::string> whole;
  Framer framer = fresh;
  feedAll(framer, stream, whole);

  std::vector<std::string> single;
  framer = fresh;
  for (const char& byte : stream) feedAll(framer, {&byte, 1}, single);
  EXPECT_EQ(single, whole);
  for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
    std::vector<std::string> halves;
    framer = fresh;
    for (const auto part : {stream.substr(0, cut), stream.substr(cut)}) feedAll(framer, part, halves);
    EXPECT_EQ(halves, whole) << "cut at " << cut;
  }
  return whole;
}

struct Case {
  std::string name;
  std::string stream;
  std::vector<std::string> seen;
};

template <class Framer>
void expectFramed(const Framer& fresh, std::initializer_list<Case> cases) {
  for (const auto& [name, stream, seen] : cases) EXPECT_EQ(frame(fresh, stream), seen) << name;
}

TEST(AsciiFraming, FindsRecordsOfItsLength) {
  expectFramed(AsciiFramer(7), {{"seven bytes", "T\x04+0123\rT\x27-9999\r", {"T\x04+0123", "T\x27-9999"}},
                                {"twelve", "TA+0123-0045\r", {"bad"}}});
  const std::string record = "TA+0123-0045";
  expectFramed(AsciiFramer(12),
               {{"whole records", "T12345678901\rTA+0123-0045\r", {"T12345678901", record}},
                {"another first letter", "X12345678901\r", {"bad"}},
                {"stream starts in the middle", "-0045\rTA+0123-0045\r", {record}},
                {"a byte lost: the return comes too early to be looked at", "T1234567890\r", {}},
                {"a byte too many", "T123456789012\rTA+0123-0045\r", {"bad", record}},
                {"a return inside a record", "T1234567890\r\r", {"T1234567890\r"}},
                {"a bad record keeps the buffer", "XT1234567890\r\r", {"bad", "T1234567890\r"}},
                {"a good record empties it", "T12345678901\r\r", {"T12345678901"}},
                {"noise with a NUL and high bytes", std::string("\0\xFF\x80", 3) + record + "\r", {record}},
                {"the return is the last byte that fits", std::string(168, 'x') + record + "\r", {record}},
                {"the return is dropped with the full buffer", std::string(169, 'x') + record + "\r", {}},
                {"in step again after a drop", std::string(169, 'x') + record + "\r" + record + "\r", {record}},
                {"the letter is dropped with the full buffer", std::string(181, 'x') + record + "\r", {}}});
}

TEST(IceFraming, ChecksEveryByteAtItsPlace) {
  expectFramed(
      IceFramer(),
      {{"two records without anything between", "T123I045T000I999", {"T123I045", "T000I999"}},
       {"wrong first byte", "\rT123I045", {"bad", "T123I045"}},
       {"letter among the thickness digits", "T1x", {"bad"}},
       {"fifth byte is no I", "T1234", {"bad"}},
       {"the failing byte is not a new start", "T12T123I045", {"bad", "bad", "bad", "bad", "bad", "bad", "bad", "bad"}},
       {"cut record", "T123I04", {}}});
}

TEST(Tesk2Framing, FindsFramesByTheirTwoEndBytes) {
  const std::string end = "\xFF\xFF";
  const std::string record = "t\x02" + std::string("\x80\x00\x80\x00\x80\x00\x80\x00\x12\x34\x56\x78", 12);
  const std::string full = "T\x06" + std::string(12, '\xFF');
  const std::string filler(165, 'x');
  expectFramed(Tesk2Framer(),
               {{"small and capital letter", record + end + "T234567890ABCD" + end, {record, "T234567890ABCD"}},
                {"one end byte ends nothing", record + "\xFF" + "Z" + record + end, {record}},
                {"another first letter: neither good nor bad", "X234567890ABCD" + end, {}},
                {"and the buffer is kept: one more end byte, one place on",
                 "XT34567890ABC\xFF" + end + "\xFF",
                 {"T34567890ABC\xFF\xFF"}},
                {"too short", "T234567890ABC" + end, {}},
                {"end bytes as data, all words full", full + end, {full}},
                {"stream starts in the middle", record.substr(5) + end + record + end, {record}},
                {"the end is the last byte that fits", filler + record + end, {record}},
                {"the end is dropped with the full buffer", filler + "x" + record + end, {}},
                {"in step again after a drop", filler + "x" + record + end + record + end, {record}}});
}

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
  struct Entry {
    bool family;
    double conductivity;
    float thickness;
  };
  const std::vector<Entry> rows{
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

TEST(IceThickness, UnknownCasesLoadNothing) {
  IceModel model = loaded(0, kFamilyA);
  EXPECT_EQ(IceThickness(100.0, loaded(-1, kFamilyA), nullptr), kIceBelowTable);
  LoadIceTable(11, kFamilyB, model);
  EXPECT_EQ(model.seaWaterCase, 0);
  EXPECT_TRUE(model.orlaModelOption);
}

}  // namespace
}  // namespace kalmira
