#include "settings/settings_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "platform/files.h"
#include "settings/settings.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

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
