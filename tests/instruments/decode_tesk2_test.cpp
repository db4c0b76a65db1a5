#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "instruments/decode.h"

namespace kalmira {
namespace {

constexpr float kFactor1 = 1.15276F;  // inphase of the word 33792: 40 x 0.028819
constexpr float kFactor2 = 0.28819F;  // and 40 x 0.00720475
constexpr Tesk2Offsets kNoOffsets{};

std::string record(int mode, const std::array<std::uint16_t, 6>& words) {
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

TEST(Tesk2Decode, LiveGivesEveryFieldOfTheRecord) {
  Tesk2Reading reading;
  Channels channels;
  channels.present.fill(1);  // of the reading before: to be cleared
  const float last = DecodeTesk2Live(record(6, kWords), kNoOffsets, false, reading, channels);
  EXPECT_EQ(reading.conductivity1, 1279.9609375F);
  EXPECT_EQ(reading.conductivity2, -1280.0F);
  EXPECT_FLOAT_EQ(reading.inphase1, kFactor1);
  EXPECT_FLOAT_EQ(reading.inphase2, kFactor2);
  EXPECT_EQ(last, reading.inphase2);
  EXPECT_FLOAT_EQ(reading.auxiliary1, 950.0F);
  EXPECT_EQ(reading.auxiliary2, -50.0F);
  EXPECT_EQ(reading.words, kWords);
  EXPECT_EQ(reading.orientation, 'V');
  EXPECT_EQ(reading.secondMode, 'N');
  EXPECT_EQ(channels.present, (std::array<int, kSlots>{1, 0, 1, 0, 1, 0, 1, 0}));
  EXPECT_EQ(channels.value, (std::array<float, kSlots>{reading.conductivity1, 0, reading.inphase1, 0,
                                                       reading.conductivity2, 0, reading.inphase2, 0}));
}

TEST(Tesk2Decode, TestsTheModeByteWithItsMarkerBits) {
  struct ModeCase {
    int mode;
    char orientation, secondMode;
  };
  const std::vector<ModeCase> cases{{0, 'H', 'M'},     {1, 'H', 'M'},          {2, 'H', 'N'},
                                    {3, 'H', 'M'},     {4, 'V', 'M'},          {5, 'V', 'M'},
                                    {6, 'V', 'N'},     {7, 'V', 'M'},          {2 + 16, 'V', 'M'},
                                    {2 + 8, 'V', 'M'}, {6 + 16 + 8, 'V', 'M'}, {255, 'V', 'M'}};
  for (const auto& [mode, orientation, secondMode] : cases) {
    SCOPED_TRACE(mode);
    Channels channels;
    char gotOrientation = '?';
    char gotSecondMode = '?';
    DecodeTesk2Record(record(mode, kWords), kNoOffsets, false, channels, gotOrientation, gotSecondMode);
    EXPECT_EQ(gotOrientation, orientation);
    EXPECT_EQ(gotSecondMode, secondMode);
    EXPECT_EQ(channels.present[orientation == 'V' ? 0 : 1], 1);
  }
}

TEST(Tesk2Decode, AddsConductivityAndSubtractsInphaseOffsetsOfTheOrientation) {
  const Tesk2Offsets offsets = tesk2Offsets({1, 2, 3, 4, 10, 20});  // V1, V2, H1, H2, conductivity 1, 2
  const std::array<std::uint16_t, 6> words{33792, 33792, 33792, 33792, 0, 0};
  Channels channels;
  char orientation = '?';
  char secondMode = '?';
  DecodeTesk2Record(record(6, words), offsets, true, channels, orientation, secondMode);
  EXPECT_EQ(channels.value, (std::array<float, kSlots>{50, 0, 39, 0, 60, 0, 38, 0}));
  DecodeTesk2Record(record(2, words), offsets, true, channels, orientation, secondMode);
  EXPECT_EQ(channels.value, (std::array<float, kSlots>{0, 50, 0, 37, 0, 60, 0, 36}));
  DecodeTesk2Record(record(2, words), offsets, false, channels, orientation, secondMode);
  EXPECT_FLOAT_EQ(channels.value[3], kFactor1 - 3);
  EXPECT_FLOAT_EQ(channels.value[7], kFactor2 - 4);
}

TEST(Tesk2Decode, ReadsMissingBytesAsZero) {
  Channels channels;
  char orientation = '?';
  char secondMode = '?';
  DecodeTesk2Record(record(2, kWords).substr(0, 7), kNoOffsets, true, channels, orientation, secondMode);
  EXPECT_FLOAT_EQ(channels.value[1], 1270.0F);  // the word 255 x 256: 5 x 65280 / 1024 = 318.75
  EXPECT_EQ(channels.value[3], -1280.0F);
}

}  // namespace
}  // namespace kalmira
