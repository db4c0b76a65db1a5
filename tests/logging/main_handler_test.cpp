#include <gmock/gmock.h>

#include "support/session_fixture.h"

namespace kalmira {
namespace {

using testing::ElementsAre;

// ORLA, vertical dipole, range 1000 (code 0): conductivity = field 1 * -0.25, inphase = field 2 * -0.0025.
constexpr auto kReleased = "T -0100-0400";
constexpr auto kPressed = "T`-0100-0400";  // 0x60: trigger and vertical dipole

TEST(MainHandler, StandByShowsValuesAndWritesNothing) {
  TestSession test(Kind::orla);
  test.begin();
  test.record(kReleased);
  EXPECT_EQ(test.view.texts[PanelField::value1], "C:25.00   mS/m");
  EXPECT_EQ(test.view.texts[PanelField::value2], "I:1.00    ppt");
  EXPECT_EQ(test.view.texts[PanelField::range], "Vertical Dipoles   Range:1000");
  EXPECT_EQ(test.view.texts[PanelField::mode], "Mode:V");
  EXPECT_TRUE(test.records().empty());
  EXPECT_EQ(test.link.recordText[0], '\0') << "the record is consumed";
}

TEST(MainHandler, FirstTwoReadingsOfALineShareItsStartStation) {
  TestSession test(Kind::orla);
  test.settings.startStation = 10.0;
  test.begin();
  startRecording(test.session);
  std::vector<double> stationsBefore;
  for (int i = 0; i < 4; ++i) {
    stationsBefore.push_back(test.session.station);
    test.record(kReleased);
  }
  EXPECT_THAT(stationsBefore, ElementsAre(10.0, 10.0, 11.0, 12.0));
  EXPECT_THAT(test.records(),
              ElementsAre("X$STARTED        100050", "T -0100-0400     100050", "T -0100-0400     100050",
                          "T -0100-0400     100050", "T -0100-0400     100050"));
}

TEST(MainHandler, RepeatedReadingsAtAStationAreNumberedAndShareAColumn) {
  TestSession test(Kind::vardo);
  test.settings.surveyMode = kModeManual;
  test.settings.surveyListB = 2;  // three readings a station
  test.settings.startStation = 10.0;
  test.begin();
  startRecording(test.session);
  std::vector<double> stations;
  for (int i = 0; i < 6; ++i) {
    stations.push_back(test.session.station);
    test.record(kPressed);
    test.record(kReleased);
  }
  EXPECT_THAT(stations, ElementsAre(10.0, 10.0, 10.0, 11.0, 11.0, 11.0));
  std::string letters;
  for (const auto& reading : test.readings()) letters += reading[0];
  EXPECT_EQ(letters, "T23T23");
  std::string moves;
  for (const auto& point : test.view.points) moves += point.newStation ? '>' : '.';
  EXPECT_EQ(moves, "...>..");
  EXPECT_EQ(test.view.texts[PanelField::mode], "Rdgs:3");
}

TEST(MainHandler, HeldTriggerRecordsOneReading) {
  TestSession test(Kind::orla);
  test.settings.surveyMode = kModeManual;
  test.begin();
  startRecording(test.session);
  for (int i = 0; i < 5; ++i) test.record(kPressed);
  test.record(kReleased);
  EXPECT_EQ(test.session.counts.readings, 1U);
  test.record(kPressed);
  EXPECT_EQ(test.session.counts.readings, 2U);
  EXPECT_EQ(test.view.texts[PanelField::marker], " ") << "a press that records is no mark";
}

TEST(MainHandler, TriggerBitIsShownAsMarkInAuto) {
  TestSession test(Kind::orla);
  test.begin();
  test.record(kPressed);
  EXPECT_EQ(test.view.texts[PanelField::marker], "M");
  test.record("T\xA0-0100-0400");  // 0xA0: bit 7 and vertical dipole, no trigger
  EXPECT_EQ(test.view.texts[PanelField::marker], " ");
}

TEST(MainHandler, AverageOfSamplesIsOneRecordAndEndsInManualMode) {
  TestSession test(Kind::orla);
  test.settings.surveyMode = kModeManual;
  test.settings.readingsCount = 3;
  test.begin();
  startRecording(test.session);
  test.record("T`-0100-0400");
  EXPECT_EQ(test.session.triggerMode, kModeAuto);
  test.record("T -0200-0500");
  test.record("T -0301-0600");
  EXPECT_EQ(test.session.triggerMode, kModeManual);
  EXPECT_THAT(test.view.changes[PanelField::message],
              ElementsAre("Sample 1   of 3  ", "Sample 2   of 3  ", "Sample 3   of 3  "));
  // (100 + 200 + 301) / 3 = 200.33, truncated.
  EXPECT_THAT(test.readings(), ElementsAre("T -0200-0500"));
  EXPECT_EQ(test.view.texts[PanelField::value1], "C:50.08   mS/m");
  ASSERT_EQ(test.view.points.size(), 1U);
  EXPECT_EQ(test.view.points[0].channels.value[0], 50.0F) << "the profile shows what the file holds";
  test.record(kReleased);
  EXPECT_EQ(test.session.counts.readings, 1U) << "the next average waits for a press";
}

TEST(MainHandler, PauseInAnAverageKeepsItsSamples) {
  TestSession test(Kind::orla);
  test.settings.surveyMode = kModeManual;
  test.settings.readingsCount = 2;
  test.begin();
  startRecording(test.session);
  test.record(kPressed);
  pauseRecording(test.session);
  startRecording(test.session);
  test.record("T -0300-0400");
  EXPECT_THAT(test.readings(), ElementsAre("T -0200-0400"));
}

TEST(MainHandler, ShortTeskRecordIsPaddedAndBeepsFollowTheRate) {
  TestSession test(Kind::tesk);
  test.settings.audio = 1;
  test.settings.readingsInterval = 0.2F;  // five readings a second: a beep a second
  test.begin();
  startRecording(test.session);
  const int before = test.view.beeps;
  for (int i = 0; i < 10; ++i) test.record("T\x20-0100");
  EXPECT_EQ(test.view.beeps - before, 2);
  EXPECT_EQ(test.readings().at(0), "T -0100     ");
}

TEST(MainHandler, OrlaIceShowsThicknessInHorizontalModeOnly) {
  TestSession test(Kind::orla, true);
  test.settings.iceDisplay = 1;
  test.settings.iceQuantity = 1;
  test.settings.instrumentLength = 1;
  test.begin();
  startRecording(test.session);
  test.record("T\x10-5040+0000");  // horizontal, factor -0.25: 1260 mS/m is a tenth of a metre
  EXPECT_EQ(test.view.texts[PanelField::value3], "Th: 0.10    m");
  EXPECT_EQ(test.view.texts[PanelField::range], "Mode:H  R:1000");
  ASSERT_EQ(test.view.points.size(), 1U);
  EXPECT_EQ(test.view.points[0].channels.present[4], 1);
  EXPECT_NEAR(test.view.points[0].channels.value[4], 0.1, 1e-6);
  test.record("T\x20-5040+0000");
  EXPECT_EQ(test.view.texts[PanelField::value3], "Th: N/A in mode V");
  EXPECT_EQ(test.view.points[1].channels.present[4], 0);
  test.record("T\x10-9999+0000");
  EXPECT_EQ(test.view.texts[PanelField::value3], "T: Out of Range");
  test.settings.lengthUnits = 1;
  test.record("T\x10-5040+0000");
  EXPECT_EQ(test.view.texts[PanelField::value3], "Th: 0.33    ft");
}

struct ValueCase {
  Kind kind;
  std::string_view record;
  std::vector<std::pair<PanelField, std::string>> wide;
  std::vector<std::pair<PanelField, std::string>> narrow;
};

TEST(MainHandler, ValueTextsOfEveryKind) {
  using enum PanelField;
  const std::vector<ValueCase> cases{
      {Kind::orla,
       "T\x21-0100-0200",  // odd: battery levels, code 1: factor -0.0025
       {{value1, "B:0.25    Volt"}, {value2, "B:0.50    Volt"}, {range, "Battery Levels"}},
       {{value1, "B:0.25    "}, {value2, "B:0.50    "}, {range, "Battery Levels"}}},
      {Kind::teskb,
       "T\x01-1000-0100",  // horizontal, gains 1000 and 100
       {{value1, "C:100.00  mS/m"}, {value2, "I:2.88    ppt"}, {range, "Horizontal    GnC:1000  GnI:100 "}},
       {{value1, "C:100.00  "}, {range, "Horizontal G1000,100 "}}},
      {Kind::teskdd,
       "T\x27-0100-0200",  // conductivity, range 1000
       {{value1, "CV:100.00  "}, {value2, "CH:200.00  "}, {range, "Conductivity [mS/m]  Range:1000"}},
       {{range, "Conductivity  G1000"}}},
      {Kind::teskdd,
       "T\x23-0100-0200",
       {{value3, "IV:2.88    "}, {value4, "IH:5.76    "}, {range, "      Inphase [ppt]  Range:1000"}},
       {{range, "Inphase  G1000"}}},
      {Kind::tesk,
       "T\x23-0100",
       {{value2, "I:2.88    ppt"}, {range, "Vertical Dipoles   Range:1000"}},
       {{value2, "I:2.88    "}, {range, "Vertical  G1000"}}},
      {Kind::vardo,
       "T\x20-1000     ",  // inverted: 32 is horizontal; 20 m; range 3
       {{value1, "C:0.75    mS/m"}, {value2, "Sep:20 m"}, {range, "Horizontal Dipoles   Range:3   "}},
       {{value1, "C:0.75    "}}},
      {Kind::mirka,
       "T\x24-0100-0004",
       {{value1, "C:250.00  "}, {value2, "Sep:1.00     m"}},
       {{value1, "C:250.00  "}}},
  };
  for (const auto& item : cases) {
    SCOPED_TRACE(std::string(instrumentOf(item.kind).name));
    for (const bool wide : {true, false}) {
      TestSession test(item.kind, false, wide);
      test.begin();
      test.record(item.record);
      for (const auto& [field, text] : wide ? item.wide : item.narrow)
        EXPECT_EQ(test.view.texts[field], text);
    }
  }
}

TEST(MainHandler, BatteryIsShownEveryThreeMinutes) {
  TestSession test(Kind::orla);
  test.begin();
  EXPECT_EQ(test.view.texts[PanelField::battery], " 87%");
  test.session.readBattery = [] { return std::optional<int>(5); };
  test.clock.advance(180000);
  test.record(kReleased);
  EXPECT_EQ(test.view.texts[PanelField::battery], " 87%");
  test.clock.advance(1000);
  test.record(kReleased);
  EXPECT_EQ(test.view.texts[PanelField::battery], "  5%");
}

TEST(IceHandler, EveryReadingIsWrittenAndBeeps) {
  TestSession test(Kind::glaco);
  test.settings.audio = 1;
  test.settings.modeIncrement = {0.5F, 0.5F, 0.5F};
  test.settings.stationIncrement = 0.5F;
  test.begin();
  test.record("T123I456");
  EXPECT_EQ(test.view.texts[PanelField::value1], "Th:1.23    ");
  EXPECT_EQ(test.view.texts[PanelField::value2], "IP:456.00  ");
  EXPECT_TRUE(test.records().empty());
  startRecording(test.session);
  const int before = test.view.beeps;
  std::vector<double> stations;
  for (int i = 0; i < 4; ++i) {
    stations.push_back(test.session.station);
    test.record("T123I456");
  }
  EXPECT_THAT(stations, ElementsAre(0.0, 0.0, 0.5, 1.0));
  EXPECT_EQ(test.view.beeps - before, 4);
  EXPECT_EQ(test.readings().at(3), "T123I456    ");
}

}  // namespace
}  // namespace kalmira
