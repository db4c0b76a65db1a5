#include "logging/handlers.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include "logging/calibration.h"
#include "support/session_fixture.h"

namespace kalmira {
namespace {

using testing::ElementsAre;
using enum PanelField;

// ORLA, vertical dipole, range 1000 (code 0): conductivity = field 1 * -0.25, inphase = field 2 * -0.0025.
constexpr auto kReleased = "T -0100-0400";
constexpr auto kPressed = "T`-0100-0400";  // 0x60: trigger and vertical dipole

// Words in record order: conductivity 2, inphase 2, conductivity 1, inphase 1, auxiliary 1 and 2. Modes: 6
// vertical, 2 horizontal, 8 more with the marker.
std::string tesk2Record(char mode, std::array<unsigned, 6> words) {
  std::string text{'T', mode};
  for (const auto word : words) {
    text += static_cast<char>(word >> 8U);
    text += static_cast<char>(word & 0xFFU);
  }
  return text;
}

// Readings 0.2 s apart: a beep with every fifth.
TEST(Reading, TheFirstTwoOfALineShareItsStartStationAndBeepsFollowTheRate) {
  TestSession test(Kind::orla);
  test.settings.startStation = 10.0;
  test.settings.audio = 1;
  test.settings.readingsInterval = 0.2F;
  test.go();
  const int before = test.view.beeps;
  std::vector<double> stationsBefore;
  for (int i = 0; i < 10; ++i) {
    stationsBefore.push_back(test.session.station);
    test.record(kReleased);
  }
  EXPECT_THAT(stationsBefore, ElementsAre(10, 10, 11, 12, 13, 14, 15, 16, 17, 18));
  EXPECT_EQ(test.view.beeps - before, 2);
  EXPECT_EQ(test.records()[1], "T -0100-0400     100050");
  EXPECT_EQ(test.link.recordText[0], '\0') << "the record is consumed";
}

TEST(Reading, RepeatsAtAStationAreNumberedAndShareAColumn) {
  TestSession test(Kind::vardo);
  test.settings.surveyListB = 2;  // three readings a station
  test.settings.startStation = 10.0;
  test.go(kModeManual);
  std::vector<double> stations;
  for (int i = 0; i < 6; ++i) {
    stations.push_back(test.session.station);
    test.record(kPressed);
    test.record(kReleased);
  }
  EXPECT_THAT(stations, ElementsAre(10.0, 10.0, 10.0, 11.0, 11.0, 11.0));
  std::string letters, moves;
  for (const auto& reading : test.readings()) letters += reading[0];
  for (const auto& point : test.view.points) moves += point.newStation ? '>' : '.';
  EXPECT_EQ(letters, "T23T23");
  EXPECT_EQ(moves, "...>..");
  EXPECT_EQ(test.view.texts[mode], "Rdgs:3");
}

TEST(Trigger, RecordsOneReadingAPressInManualModeAndMarksInAuto) {
  TestSession test(Kind::orla);
  test.go(kModeManual);
  for (int i = 0; i < 5; ++i) test.record(kPressed);
  test.record(kReleased);
  EXPECT_EQ(test.session.counts.readings, 1U);
  test.record(kPressed);
  EXPECT_EQ(test.session.counts.readings, 2U);
  EXPECT_EQ(test.view.texts[marker], " ") << "a press that records is no mark";

  TestSession tesk2(Kind::tesk2);
  tesk2.go(kModeManual);
  const std::array<unsigned, 6> zero{32768, 32768, 32768, 32768, 311, 311};
  tesk2.record(tesk2Record(6, zero));
  EXPECT_EQ(tesk2.session.counts.readings, 0U);
  for (int i = 0; i < 3; ++i) tesk2.record(tesk2Record(14, zero));
  EXPECT_EQ(tesk2.session.counts.readings, 1U);

  TestSession automatic(Kind::orla);
  automatic.begin();
  automatic.record(kPressed);
  EXPECT_EQ(automatic.view.texts[marker], "M");
  automatic.record("T\xA0-0100-0400");  // 0xA0: bit 7 and vertical dipole, no trigger
  EXPECT_EQ(automatic.view.texts[marker], " ");
}

struct AverageCase {
  Kind kind;
  std::vector<std::string> samples;
  std::string written, shown;
};

// Each field that the kind has is averaged, towards zero, and nothing else is touched.
TEST(Average, OfSamplesIsOneRecordAndEndsInManualMode) {
  for (const auto& item :
       {AverageCase{Kind::orla, {"T`-0100-0400", "T -0200-0500", "T -0301-0600"}, "T -0200-0500", "C:50.08   mS/m"},
        AverageCase{Kind::orla, {kPressed, "T -0201+0501"}, "T -0150+0050", "C:37.62   mS/m"},
        AverageCase{Kind::teskb, {"T`+9999-0003", "T +9999-0002"}, "T +9999-0002", "C:"},
        AverageCase{Kind::mirka, {kPressed, "T -0201-0501"}, "T -0150-0450", "C:"},
        AverageCase{Kind::tesk, {"Td-0100", "T$-0201"}, "T$-0150     ", "C:"},
        AverageCase{Kind::tesk, {"Td-0100-0400", "T$-0201-0501"}, "T$-0150-0501", "C:"},
        AverageCase{
            Kind::tesk2,
            {tesk2Record(14, {32768, 100, 33792, 1, 0, 65535}), tesk2Record(6, {32768, 101, 34816, 2, 0, 65535})},
            tesk2Record(6, {32768, 100, 34304, 1, 0, 65535}),
            "C:60.00   mS/m"}}) {
    SCOPED_TRACE(std::string(instrumentOf(item.kind).name) + ' ' + item.written);
    TestSession test(item.kind);
    test.settings.readingsCount = static_cast<int>(item.samples.size());
    test.go(kModeManual);
    std::vector<std::string> messages;
    for (const auto& sample : item.samples) {
      EXPECT_TRUE(test.readings().empty());
      test.record(sample);
      messages.push_back(fmt::format("Sample {}   of {}  ", messages.size() + 1, item.samples.size()));
      // A pause keeps the samples.
      pauseRecording(test.session);
      startRecording(test.session);
    }
    EXPECT_EQ(test.session.triggerMode, kModeManual);
    EXPECT_THAT(test.view.changes[message], testing::IsSupersetOf(messages));
    EXPECT_THAT(test.readings(), ElementsAre(item.written));
    EXPECT_THAT(test.view.texts[value1], testing::StartsWith(item.shown));
    ASSERT_EQ(test.view.points.size(), 1U);
    // The profile shows what the file holds.
    EXPECT_TRUE(item.samples.size() != 3 || test.view.points[0].channels.value[0] == 50.0F);
    test.record(item.samples.back());
    EXPECT_EQ(test.session.counts.readings, 1U) << "the next average waits for a press";
    for (const auto& sample : item.samples) test.record(sample);
    EXPECT_THAT(test.readings(), ElementsAre(item.written, item.written)) << "and begins at nothing";
  }
}

TEST(Reading, OfAnOrlaOverIceShowsThicknessInHorizontalModeOnly) {
  TestSession test(Kind::orla, true);
  test.settings.iceDisplay = test.settings.iceQuantity = test.settings.instrumentLength = 1;
  test.go();
  // Factor -0.25; 1260 mS/m is a tenth of a metre.
  struct Case {
    const char *record, *shown;
    int present, lengthUnits;
  };
  for (const auto& item :
       {Case{"T\x10-5040+0000", "Th: 0.10    m", 1, 0}, Case{"T\x20-5040+0000", "Th: N/A in mode V", 0, 0},
        Case{"T\x10-9999+0000", "T: Out of Range", 0, 0}, Case{"T\x10-5040+0000", "Th: 0.33    ft", 1, 1}}) {
    test.settings.lengthUnits = item.lengthUnits;
    test.record(item.record);
    EXPECT_EQ(test.view.texts[value3], item.shown);
    EXPECT_EQ(test.view.points.back().channels.present[4], item.present);
    EXPECT_NEAR(test.view.points.back().channels.value[4], item.present == 1 ? 0.1 : 0, 1e-6) << item.shown;
  }
}

struct ValueCase {
  Kind kind;
  std::string record, wide, narrow;  // value1 to value6, range, mode
};

TEST(Reading, PanelTextsOfEveryKind) {
  for (const auto& item : std::initializer_list<ValueCase>{
           {Kind::orla, kReleased, "C:25.00   mS/m|I:1.00    ppt|||||Vertical Dipoles   Range:1000|Mode:V|",
            "C:25.00   |I:1.00    |||||Vertical  G1000|Mode:V|"},
           // Odd: battery levels, code 1: factor -0.0025.
           {Kind::orla, "T\x21-0100-0200", "B:0.25    Volt|B:0.50    Volt|||||Battery Levels|Mode:V|",
            "B:0.25    |B:0.50    |||||Battery Levels|Mode:V|"},
           // Horizontal, gains 1000 and 100.
           {Kind::teskb, "T\x01-1000-0100", "C:100.00  mS/m|I:2.88    ppt|||||Horizontal    GnC:1000  GnI:100 |Mode:V|",
            "C:100.00  |I:2.88    |||||Horizontal G1000,100 |Mode:V|"},
           // Range 1000; conductivity, then inphase.
           {Kind::teskdd, "T\x27-0100-0200", "CV:100.00  |CH:200.00  |||||Conductivity [mS/m]  Range:1000|Mode:B|",
            "CV:100.00  |CH:200.00  |||||Conductivity  G1000|Mode:B|"},
           {Kind::teskdd, "T\x23-0100-0200", "||IV:2.88    |IH:5.76    |||      Inphase [ppt]  Range:1000|Mode:B|",
            "||IV:2.88    |IH:5.76    |||Inphase  G1000|Mode:B|"},
           {Kind::tesk, "T\x23-0100", "|I:2.88    ppt|||||Vertical Dipoles   Range:1000|Mode:V|",
            "|I:2.88    |||||Vertical  G1000|Mode:V|"},
           // Inverted: 32 is horizontal; 20 m; range 3.
           {Kind::vardo, "T\x20-1000     ", "C:0.75    mS/m|Sep:20 m|||||Horizontal Dipoles   Range:3   |M:V10|",
            "C:0.75    |Sep:20 m|||||Horizontal  G3   |M:V10|"},
           {Kind::mirka, "T\x24-0100-0004", "C:250.00  |Sep:1.00     m|||||||", "C:250.00  |Sep:1.00     m|||||||"},
           {Kind::glaco, "T123I456", "Th:1.23    |IP:456.00  |||||||", "Th:1.23    |IP:456.00  |||||||"},
           {Kind::tesk2, tesk2Record(6, {33792, 32768, 0x0A0A, 33792, 311, 0}),
            "C:-1179.61mS/m|I:1.15    ppt|c:40.00   mS/m|i:0.00    ppt|T:50.06   |t:-50.00  ||Mode:V|",
            "C:-1179.61|I:1.15    |c:40.00   |i:0.00    |T:50.06   |t:-50.00  ||Mode:V|"}}) {
    for (const bool wide : {true, false}) {
      TestSession test(item.kind, false, wide);
      test.begin();
      test.record(item.record);
      std::string shown;
      for (const auto field : {value1, value2, value3, value4, value5, value6, range, mode})
        shown += test.view.texts[field] + '|';
      EXPECT_EQ(shown, wide ? item.wide : item.narrow) << instrumentOf(item.kind).name;
      EXPECT_TRUE(test.records().empty()) << "standing by";
    }
  }
}

constexpr char kVertical = 6;    // no marker
constexpr char kHorizontal = 2;  // no marker

struct CalibrationTest : testing::Test {
  TestSession test{Kind::tesk2};
  Calibration& calibration = test.session.calibration;

  void SetUp() override {
    test.settings.calibrationFactors = {9, 8, 7, 6, 5, 4};
    test.begin();
    ASSERT_TRUE(startCalibration(test.session));
  }
  // One reading every 50 ms; conductivities 40 and 80 mS/m with vertical, 16 and 24 with horizontal dipoles.
  // What is shown then.
  std::string readings(char mode, int count) {
    for (int i = 0; i < count; ++i) {
      test.clock.advance(50);
      test.record(mode == kVertical ? tesk2Record(mode, {34816, 33792, 33792, 33792, 0, 0})
                                    : tesk2Record(mode, {33382, 32768, 33178, 33280, 0, 0}));
    }
    return test.view.texts[PanelField::calibration];
  }
};

TEST_F(CalibrationTest, GoodSequenceSavesAndWritesTheFactors) {
  EXPECT_EQ(test.view.questions.at(0).text,
            "Place  TESK-2  on  Monopod\r\nin  Vertical  Dipole  Mode\r\nand  press  YES  when  ready\r\n");
  EXPECT_FALSE(commandAllowed(test.session, Command::calibrate));
  EXPECT_FALSE(commandAllowed(test.session, Command::deleteCalibration));
  EXPECT_EQ(readings(kVertical, 40), "Vertical Calibration");
  EXPECT_EQ(readings(kVertical, 1), "Rotate to Horiz. Mode within 60 s");
  EXPECT_EQ(readings(kHorizontal, 22), "Preparing for Horizontal Calibration");
  EXPECT_EQ(readings(kHorizontal, 41), "Horizontal Calibration");
  EXPECT_EQ(readings(kHorizontal, 2), "Calibration Completed - Wait for Beep");

  // Raw inphase words 33792 and 33280: 40 and 20 times the channel's factor; 33792 in the second channel.
  const auto& factors = test.settings.calibrationFactors;
  const std::array<double, 6> wanted{40 * 0.028819,   40 * 0.00720475, 20 * 0.028819, 0,
                                     40 - 2 * 16.016, 80 - 2 * 23.984};
  for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(factors[i], wanted[i], i < 4 ? 1e-4 : 0.01) << i;
  ASSERT_EQ(test.saved.size(), 1U);
  EXPECT_EQ(test.saved[0].calibrationFactors, factors);
  ASSERT_EQ(test.records().size(), 6U);
  EXPECT_EQ(test.records()[0], "O1     1.153      9.000  ");
  EXPECT_EQ(test.records()[5], "O6    32.031      4.000  ");

  EXPECT_EQ(readings(kHorizontal, 61), "");
  EXPECT_EQ(calibration.calibrationPhase, 0);
  ASSERT_TRUE(deleteCalibration(test.session));
  EXPECT_NEAR(calibration.deletedCalibration[0], wanted[0], 1e-4);
  EXPECT_EQ(test.settings.calibrationFactors[0], 0.0F);
  EXPECT_EQ(test.records().at(6), "O1     0.000      1.153  ");
}

TEST_F(CalibrationTest, ThirtyReadingsPassAndTwentyNineFailAndSoDoesStayingVertical) {
  readings(kVertical, 29);
  readings(kHorizontal, 12);  // not counted
  EXPECT_EQ(readings(kVertical, 1), "Vert. Mode Failed - Wait for Beep");
  readings(kVertical, 60);
  EXPECT_EQ(calibration.calibrationPhase, 0);
  EXPECT_EQ(test.settings.calibrationFactors[0], 9.0F) << "the factors from before are back";
  EXPECT_TRUE(test.saved.empty() && test.records().empty());

  ASSERT_TRUE(startCalibration(test.session));
  readings(kVertical, 30);
  readings(kHorizontal, 11);
  EXPECT_EQ(calibration.calibrationActive, 2);
  EXPECT_EQ(calibration.calibrationStep, 0);
  abandonCalibration(test.session);

  ASSERT_TRUE(startCalibration(test.session));
  readings(kVertical, 241);  // ten seconds upright behind the forty that count
  EXPECT_EQ(calibration.calibrationStep, 0);
  EXPECT_EQ(readings(kVertical, 2), "Hor. Mode Not Detected - Wait for Beep");
}

TEST_F(CalibrationTest, WhatEndsItMidwayKeepsTheFactorsThatHeld) {
  readings(kVertical, 10);
  newLine(test.session, proposeLine(test.settings, 0));
  EXPECT_EQ(test.records().at(4), "O1     9.000      0.000  ");
  EXPECT_EQ(test.saved.at(0).calibrationFactors[0], 9.0F);
  abandonCalibration(test.session);
  EXPECT_TRUE(commandAllowed(test.session, Command::calibrate));
  test.view.answer = false;
  EXPECT_FALSE(startCalibration(test.session));
  EXPECT_EQ(test.settings.calibrationFactors[0], 9.0F) << "the answer no changes nothing";
  test.view.answer = true;
  ASSERT_TRUE(startCalibration(test.session));
  readings(kVertical, 41);
  ASSERT_TRUE(LeaveLogging(test.session, false));
  EXPECT_EQ(test.settings.calibrationFactors[5], 4.0F);
}

}  // namespace
}  // namespace kalmira
