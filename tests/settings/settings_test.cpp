#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <limits>
#include <sstream>
#include <tuple>

#include "platform/files.h"
#include "settings/display_options.h"
#include "settings/line_entry.h"
#include "settings/settings.h"
#include "settings/settings_file.h"
#include "settings/setup_lists.h"
#include "settings/survey_setup.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

// A file may hold anything; what is none of a list's positions is taken as the default.
TEST(Settings, ChoicesThatAreNoneAreBroughtBack) {
  EXPECT_EQ(indexOr(2, 3, 0), 2);
  for (const int value : {-1, 3, INT_MAX, INT_MIN}) EXPECT_EQ(indexOr(value, 3, 1), 1);
  Settings settings;
  settings.surveyMode = 3;
  EXPECT_EQ(surveyModeOf(settings), kModeAuto);
  settings.surveyMode = kModeManual;
  EXPECT_EQ(surveyModeOf(settings), kModeManual);
  settings.traceWidth = {0, 5, 4, -1, 1, 1, 1, 1};
  settings.traceShown = {2, -1, 0, 1, 1, 1, 1, 1};
  for (const auto& [slot, width, shown] :
       {std::tuple{std::size_t{0}, 1, true}, {std::size_t{1}, 1, true}, {std::size_t{2}, 4, false}}) {
    EXPECT_EQ(traceWidthOf(settings, slot), width);
    EXPECT_EQ(traceChosen(settings, slot), shown);
  }
}

TEST(Settings, IntervalAndCountAreUsedWithinTheirRanges) {
  Settings settings;
  for (const auto& [stored, used] :
       {std::pair{0.25F, 0.25F}, {0.0F, 1.0F}, {-2.0F, 1.0F}, {1e9F, 86400.0F}, {kNan, 1.0F}, {kInfinity, 1.0F}}) {
    settings.readingsInterval = stored;
    EXPECT_EQ(readingsIntervalOf(settings), used) << stored;
  }
  for (const auto& [stored, used] : {std::pair{0, 1}, {5, 5}, {101, 100}, {-9, 1}}) {
    settings.readingsCount = stored;
    EXPECT_EQ(readingsCountOf(settings), used);
  }
}

TEST(SetupLists, ValuesOutsideTheListShowAsTheDefaultAndPositionsOutsideChangeNothing) {
  auto lists = loggerSetupLists({.kind = Kind::tesk2});
  for (const auto& list : gpsSetupLists()) lists.push_back(list);
  const struct {
    std::string_view list;
    int value, position;
  } cases[] = {{"tesk2Variant", 2, 1}, {"markerPort", 12, 0},   {"tesk2Variant", INT_MIN, 0},
               {"gpsDataBits", 7, 1},  {"gpsPort", INT_MAX, 1}, {"instrumentPort", 11, 11}};
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << each.list << " " << each.value);
    const auto found =
        std::ranges::find(lists, each.list, [](const SetupList& list) { return std::string_view(list.name); });
    ASSERT_NE(found, lists.end());
    Settings settings;
    settings.*found->field = each.value;
    EXPECT_EQ(shownPosition(*found, settings), each.position);
    for (const int position : {-1, static_cast<int>(found->entries.size())}) takePosition(*found, position, settings);
    EXPECT_EQ(settings.*found->field, each.value);
  }
}

TEST(SurveyNumbers, AreBroughtToTheNearestAllowed) {
  struct Case {
    const char* typed;
    NumberLimits limits;
    double value;
    const char* note;
  };
  constexpr NumberLimits kInterval{0.091, 86400};
  constexpr NumberLimits kCount{1, 100, true};
  constexpr NumberLimits kStation{-9999, 9999};
  for (const auto& c :
       {Case{"2.5", kInterval, 2.5, ""}, Case{" +.5e1 ", kInterval, 5, ""}, Case{"0.091", kInterval, 0.091, ""},
        Case{"-1", kInterval, 0.091, "Was \"-1\": 0.091 to 86400"},
        Case{"1e999", kStation, 9999, "Was \"1e999\": -9999 to 9999"},
        Case{"-99999999999999", kStation, -9999, "Was \"-99999999999...\": -9999 to 9999"},
        Case{"101", kCount, 100, "Was \"101\": 1 to 100"}, Case{"0", kCount, 1, "Was \"0\": 1 to 100"},
        Case{"2.6", kCount, 3, "Was \"2.6\": whole numbers only"}, Case{"5m", kStation, 5, "Was \"5m\""},
        Case{"", kCount, 7, "Was empty"}, Case{"  ", kCount, 7, "Was empty"},
        Case{"abc", kCount, 7, "Was \"abc\": no number"}, Case{"nan", kStation, 7, "Was \"nan\": no number"},
        Case{"-.", kStation, 7, "Was \"-.\": no number"}}) {
    const auto typed = limitedNumber(c.typed, c.limits, 7);
    EXPECT_EQ(typed.value, c.value) << c.typed;
    EXPECT_EQ(typed.note, c.note) << c.typed;
  }
  // No interval is shorter than the instrument sends; its rate is the reciprocal.
  for (const auto& [kind, least] : {std::pair{Kind::orla, 0.091}, {Kind::glaco, 0.1}, {Kind::tesk2, 0.05}})
    EXPECT_EQ(limitsOf(SurveyNumber::readingsInterval, kind).least, least);
  EXPECT_EQ(readingsPerSecondText("3"), "= 0.333/s");
  for (const char* typed : {"", "0", "-1", "nan", "x", "1e-300"}) EXPECT_EQ(readingsPerSecondText(typed), "");
}

void expectLimits(ScaleEnds (*limit)(ScaleEnds), std::initializer_list<std::pair<ScaleEnds, ScaleEnds>> cases) {
  for (const auto& [typed, kept] : cases) {
    const ScaleEnds ends = limit(typed);
    EXPECT_EQ(ends.minimum, kept.minimum) << typed.minimum << " to " << typed.maximum;
    EXPECT_EQ(ends.maximum, kept.maximum) << typed.minimum << " to " << typed.maximum;
  }
}

TEST(ProfileScale, EndsStayWithinTheirRangeAndApart) {
  expectLimits(limitedScale, {{{50, 20}, {50, 150}},
                              {{0, 12000}, {0, 9000}},
                              {{-9001, -9000.5F}, {-9000, -8900}},  // both end at -9000
                              {{5, 5}, {5, 105}},
                              {{5, 5.5F}, {5, 5.5F}},
                              {{-kInfinity, kInfinity}, {-9000, 9000}}});
  expectLimits(limitedThickness, {{{12, 15}, {9, 10}},
                                  {{3, 3}, {3, 4}},
                                  {{-5, -1}, {0, 1}},
                                  {{10, 20}, {10, 11}},  // ten itself is not above ten
                                  {{kNan, 2}, {0, 2}},
                                  {{kInfinity, kInfinity}, {9, 10}}});
}

TEST(ProposedLine, GoesBackAlongTheNextOneOrStartsWhereTheLastOneDid) {
  const struct {
    std::string name;
    float increment;
    int sequence, direction;
    LineEntry wanted;
  } cases[]{{"12.5", 2.5F, 0, 0, {"15.00", 2.5F, 0, 3, 50, -2.5F}},
            {"12.5", 2.5F, 0, 1, {"15.00", 2.5F, 0, 2, 50, -2.5F}},
            {"12.5", 2.5F, 1, 3, {"15.00", 2.5F, 1, 3, 10, 2.5F}},
            {"12.5", 2.5F, 7, -1, {"15.00", 2.5F, 0, 1, 50, -2.5F}},  // what is none is the default
            // The number in front of a name counts.
            {"A7", 1, 1, 0, {"1.00", 1, 1, 0, 10, 2.5F}},
            {"7A", 1, 1, 0, {"8.00", 1, 1, 0, 10, 2.5F}},
            {"0.125", 0, 1, 0, {"0.12", 0, 1, 0, 10, 2.5F}}};
  const auto all = [](const auto& line) {
    return std::tuple(line.lineName, line.lineIncrement, line.sequenceMode, line.direction, line.startStation,
                      line.stationIncrement);
  };
  for (const auto& each : cases) {
    Settings settings{.lineName = each.name,
                      .lineIncrement = each.increment,
                      .sequenceMode = each.sequence,
                      .direction = each.direction,
                      .startStation = 10.0,
                      .stationIncrement = 2.5F};
    EXPECT_EQ(all(proposeLine(settings, 50.0)), all(each.wanted)) << each.name;
  }
  Settings taken;
  takeLine({"\xC3\x84" + std::string(30, 'x'), 3, 1, 0, 12.25, -4}, taken);
  EXPECT_EQ(all(taken), std::tuple("\xC3\x84" + std::string(23, 'x'), 3.0F, 1, 0, 12.25, -4.0F));
}

// Lines with CR LF behind each.
std::string lines(std::initializer_list<std::string_view> texts) {
  std::string out;
  for (const auto text : texts) (out += text) += "\r\n";
  return out;
}

constexpr std::pair<Kind, bool> kFiles[] = {{Kind::orla, false},   {Kind::orla, true},   {Kind::teskb, false},
                                            {Kind::teskdd, false}, {Kind::tesk, false},  {Kind::vardo, false},
                                            {Kind::mirka, false},  {Kind::glaco, false}, {Kind::tesk2, false}};

// Every field another value, each told apart from its neighbours and from its default.
Settings distinctSettings(Kind kind, bool ice) {
  Settings settings;
  int number = 2;
  for (const auto& field : settingsFields()) {
    if (!fieldApplies(field, kind, ice)) continue;
    for (std::size_t i = 0; i < fieldSize(field); ++i) {
      setFieldText(settings, field, i, std::to_string(number++) + ".75");
    }
  }
  settings.surveyMode = kModeManual;
  settings.stationIncrement = settings.modeIncrement[2];
  return settings;
}

TEST(SettingsFile, IsReadBackUpToWhereItWasCut) {
  for (const auto& [kind, ice] : kFiles) {
    SCOPED_TRACE(instrumentOf(kind).name);
    const auto written = distinctSettings(kind, ice);
    const auto text = formatSettings(written, kind, ice);
    Settings whole;
    ASSERT_TRUE(parseSettings(text, kind, ice, whole));
    EXPECT_EQ(formatSettings(whole, kind, ice), text);
    // Not only the text: also the fields that this kind's file leaves out, which keep their defaults.
    EXPECT_EQ(formatSettings(whole, Kind::tesk2, false), formatSettings(written, Kind::tesk2, false));
    // The missing values are 0 or empty.
    const auto tagEnd = instrumentOf(kind).versionTag.size();
    for (std::size_t length = 0; length < text.size(); ++length) {
      Settings settings;
      const bool read = parseSettings(std::string_view(text).substr(0, length), kind, ice, settings);
      ASSERT_EQ(read, length >= tagEnd) << length;
      if (!read) continue;
      const auto kept = std::min(length, text.rfind('\n', length) + 1);
      ASSERT_EQ(formatSettings(settings, kind, ice).substr(0, kept), text.substr(0, kept));
    }
    Settings settings;
    ASSERT_TRUE(parseSettings(text.substr(0, tagEnd + 2), kind, ice, settings));
    EXPECT_EQ(settings.lineName, "");
    EXPECT_EQ(settings.gpsDataBitsIndex, 0);
    EXPECT_EQ(settings.modeIncrement[1], 0.0F);
  }
}

TEST(SettingsFile, HasTheIceFieldsBehindTheLengthAndPlainTexts) {
  Settings settings;
  settings.instrumentLength = settings.iceDisplay = settings.iceQuantity = 1;
  settings.seaWaterChoice = 10;
  EXPECT_TRUE(
      formatSettings(settings, Kind::orla, true)
          .starts_with(lines({"CEVer2.30", "1", "1", "1", "10", "9.000000", "10.000000", "0", "0", "1", "0", "1"})));
  settings.lineName = "N\xC3\xBA 7";
  settings.startStation = -123456789.125;
  const auto text = formatSettings(settings, Kind::tesk2, false);
  EXPECT_TRUE(text.ends_with(lines({"N? 7", "1.000000", "0", "2", "-123456789.125000", "1.000000", "0", "0"})));
}

// The values of the format document's example, its explanations cut off.
std::string documentedFile() {
  const auto document = readFile(KALMIRA_DOCS "/settings-file-format.md");
  const std::string fence = "```example\n";
  const auto start = document.find(fence) + fence.size();
  std::istringstream example(document.substr(start, document.find("```", start) - start));
  std::string out;
  for (std::string line; std::getline(example, line);) out += line.substr(0, line.find(' ')) + "\r\n";
  return out;
}

TEST(SettingsFile, IsThatOfTheFormatDocument) {
  Settings settings;
  settings.traceShown = {1, 1, 1, 1, 0, 0, 0, 0};
  settings.traceWidth = {2, 2, 1, 1, 1, 1, 1, 1};
  settings.conductivityMaximum = 50;
  settings.gpsInput = 1;
  settings.gpsBaudIndex = 1;
  settings.surveyMode = kModeWheel;
  settings.tesk2Variant = 2;
  settings.calibrationFactors = {1.153F, 1.15276F, 2.30552F, -0.28819F, -160, 40};
  settings.modeIncrement = {1, 2.5F, 1};
  settings.lineName = "4.00";
  settings.direction = 1;
  settings.startStation = 250;
  settings.stationIncrement = -2.5F;
  settings.markerPortChoice = 6;
  EXPECT_EQ(formatSettings(settings, Kind::tesk2, false), documentedFile());
  Settings read;
  ASSERT_TRUE(parseSettings(documentedFile(), Kind::tesk2, false, read));
  EXPECT_EQ(read.stationIncrement, 2.5F);
  EXPECT_EQ(read.calibrationFactors, settings.calibrationFactors);
}

// The last line holds the increment: in Wheel mode its sign alone.
TEST(SettingsFile, KeepsTheIncrementOfEachMode) {
  for (const auto& [mode, increment, line] : {std::tuple{kModeWheel, -2.5F, "-1.000000"},
                                              {kModeWheel, 2.5F, "1.000000"},
                                              {kModeWheel, 0.0F, "1.000000"},
                                              {kModeAuto, -2.5F, "-2.500000"},
                                              {kModeManual, 0.0F, "0.000000"},
                                              {9, 1.0F, "1.000000"}}) {
    Settings settings{.surveyMode = mode, .modeIncrement = {3, 4, 5}, .stationIncrement = increment};
    const auto text = formatSettings(settings, Kind::mirka, false);
    EXPECT_TRUE(text.ends_with(std::string("\n") + line + "\r\n")) << mode;
    Settings read;
    ASSERT_TRUE(parseSettings(text, Kind::mirka, false, read));
    EXPECT_EQ(read.stationIncrement, mode == 9 ? 3.0F : static_cast<float>(3 + mode));
  }
}

TEST(SettingsFile, TakesNumbersOutOfRangeAndBytesThatAreNone) {
  auto text = lines({"CEVer2.10", "99999999999", "-5", "x", "1e3"});
  text += std::string("\0\xFF\r\n\r\r\n\n", 8) + std::string(100000, '7') + "\n";
  Settings settings;
  ASSERT_TRUE(parseSettings(text, Kind::mirka, false, settings));
  EXPECT_EQ(settings.lengthUnits, 2147483647);
  EXPECT_EQ(settings.instrumentPortIndex, -5);
  EXPECT_EQ(settings.audio, 0);
  EXPECT_EQ(settings.pauseKey, 1);
  EXPECT_EQ(settings.traceShown[0], 0);
  EXPECT_EQ(settings.traceShown[3], 2147483647);
}

struct LoadFixture : testing::Test {
  TempFolder folder;
  SettingsPlace place{.kind = Kind::teskb, .root = folder.path() / "new" / "root"};
  std::filesystem::path file = place.root / "Storage" / "KALINI" / "TESKB.INI";
};

TEST_F(LoadFixture, MakesAMissingFileReplacesAForeignOneAndReadsItsOwn) {
  Settings changed;
  changed.lineIncrement = 4;
  EXPECT_EQ(loadSettings(place, changed).how, SettingsLoad::created);
  EXPECT_EQ(readFile(file), formatSettings(changed, Kind::teskb, false));
  EXPECT_EQ(changed.lineIncrement, 4.0F);
  for (const std::string tag : {"CEVer2.30", "CEVer2.2", "CEVer2.222", " CEVer2.22", ""}) {
    writeFile(file, tag + "\r\n1\r\n2\r\n");
    Settings settings;
    EXPECT_EQ(loadSettings(place, settings).how, SettingsLoad::replaced) << tag;
    EXPECT_EQ(settings.lengthUnits, 0);
    EXPECT_EQ(readFile(file), formatSettings(Settings{}, Kind::teskb, false)) << tag;
  }
  writeFile(file, "CEVer2.22\r\n1\r\n11\r\n");
  Settings settings;
  EXPECT_EQ(loadSettings(place, settings).how, SettingsLoad::loaded);
  EXPECT_EQ(settings.instrumentPortIndex, 11);
  EXPECT_EQ(readFile(file), "CEVer2.22\r\n1\r\n11\r\n");
}

// A file where the folder should be: nobody, root included, can write there.
TEST_F(LoadFixture, SaysWhyAFileCannotBeWritten) {
  writeFile(place.root / "Storage", "in the way");
  Settings settings;
  const auto result = loadSettings(place, settings);
  EXPECT_TRUE(result.problem.starts_with("Cannot write " + file.string() + ": ")) << result.problem;
  EXPECT_EQ(saveSettings(place, settings), result.problem);
}

}  // namespace
}  // namespace kalmira
