#include "logging/handlers.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

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

TEST(Reading, StandingByShowsValuesAndWritesNothing) {
  TestSession test(Kind::orla);
  test.begin();
  test.record(kReleased);
  EXPECT_EQ(test.view.texts[value1], "C:25.00   mS/m");
  EXPECT_EQ(test.view.texts[value2], "I:1.00    ppt");
  EXPECT_EQ(test.view.texts[range], "Vertical Dipoles   Range:1000");
  EXPECT_EQ(test.view.texts[mode], "Mode:V");
  EXPECT_TRUE(test.records().empty());
  EXPECT_EQ(test.link.recordText[0], '\0') << "the record is consumed";
}

TEST(Reading, TheFirstTwoOfALineShareItsStartStation) {
  for (const auto kind : {Kind::orla, Kind::glaco}) {
    TestSession test(kind);
    test.settings.startStation = 10.0;
    test.settings.audio = 1;
    test.go();
    const int before = test.view.beeps;
    std::vector<double> stationsBefore;
    const std::string text = kind == Kind::orla ? kReleased : "T123I456    ";
    for (int i = 0; i < 4; ++i) {
      stationsBefore.push_back(test.session.station);
      test.record(kind == Kind::orla ? text : text.substr(0, 8));
    }
    EXPECT_THAT(stationsBefore, ElementsAre(10.0, 10.0, 11.0, 12.0));
    EXPECT_EQ(test.view.beeps - before, 4);
    EXPECT_THAT(test.readings(), ElementsAre(text, text, text, text));
    EXPECT_EQ(test.records()[1], text + "     100050");
  }
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

TEST(Reading, AShortTeskRecordIsPaddedAndBeepsFollowTheRate) {
  TestSession test(Kind::tesk);
  test.settings.audio = 1;
  test.settings.readingsInterval = 0.2F;  // five readings a second: a beep a second
  test.go();
  const int before = test.view.beeps;
  for (int i = 0; i < 10; ++i) test.record("T\x20-0100");
  EXPECT_EQ(test.view.beeps - before, 2);
  EXPECT_EQ(test.readings().at(0), "T -0100     ");
}

TEST(Reading, OfAnOrlaOverIceShowsThicknessInHorizontalModeOnly) {
  TestSession test(Kind::orla, true);
  test.settings.iceDisplay = 1;
  test.settings.iceQuantity = 1;
  test.settings.instrumentLength = 1;
  test.go();
  test.record("T\x10-5040+0000");  // horizontal, factor -0.25: 1260 mS/m is a tenth of a metre
  EXPECT_EQ(test.view.texts[value3], "Th: 0.10    m");
  EXPECT_EQ(test.view.texts[range], "Mode:H  R:1000");
  ASSERT_EQ(test.view.points.size(), 1U);
  EXPECT_EQ(test.view.points[0].channels.present[4], 1);
  EXPECT_NEAR(test.view.points[0].channels.value[4], 0.1, 1e-6);
  test.record("T\x20-5040+0000");
  EXPECT_EQ(test.view.texts[value3], "Th: N/A in mode V");
  EXPECT_EQ(test.view.points[1].channels.present[4], 0);
  test.record("T\x10-9999+0000");
  EXPECT_EQ(test.view.texts[value3], "T: Out of Range");
  test.settings.lengthUnits = 1;
  test.record("T\x10-5040+0000");
  EXPECT_EQ(test.view.texts[value3], "Th: 0.33    ft");
}

struct ValueCase {
  Kind kind;
  std::string record;
  std::vector<std::pair<PanelField, std::string>> wide, narrow;
};

TEST(Reading, ValueTextsOfEveryKind) {
  for (const auto& item : std::initializer_list<ValueCase>{
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
           {Kind::glaco, "T123I456", {{value1, "Th:1.23    "}, {value2, "IP:456.00  "}}, {}},
           {Kind::tesk2,
            tesk2Record(6, {33792, 32768, 0x0A0A, 33792, 311, 0}),
            {{value2, "I:1.15    ppt"}, {value3, "c:40.00   mS/m"}, {value5, "T:50.06   "}, {value6, "t:-50.00  "}},
            {}}}) {
    for (const bool wide : {true, false}) {
      TestSession test(item.kind, false, wide);
      test.begin();
      test.record(item.record);
      for (const auto& [field, text] : wide ? item.wide : item.narrow)
        EXPECT_EQ(test.view.texts[field], text) << instrumentOf(item.kind).name;
    }
  }
}

TEST(Battery, IsShownEveryThreeMinutes) {
  TestSession test(Kind::orla);
  test.begin();
  EXPECT_EQ(test.view.texts[battery], " 87%");
  test.session.readBattery = [] { return std::optional<int>(5); };
  for (const auto& [passed, text] : {std::pair{180000U, " 87%"}, {1000U, "  5%"}}) {
    test.clock.advance(passed);
    test.record(kReleased);
    EXPECT_EQ(test.view.texts[battery], text);
  }
}

}  // namespace
}  // namespace kalmira
