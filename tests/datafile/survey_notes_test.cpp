#include "datafile/survey_notes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>

#include "support/temp_folder.h"

namespace kalmira {
namespace {

using testing::HasSubstr;

struct SurveyNotesTest : testing::Test {
  TempFolder folder;
  std::filesystem::path file = folder.path() / "111510A.ROR";
  std::string problem = "nothing asked yet";

  std::optional<SurveyNotes> read(const std::string& text) {
    writeFile(notesPathBeside(file), text);
    return readNotesBeside(file, problem);
  }
};

TEST_F(SurveyNotesTest, WhatIsWrittenIsRead) {
  // The tests' own language writes a comma where files have a full stop.
  const std::string before = std::setlocale(LC_ALL, nullptr);
  std::setlocale(LC_ALL, "");
  EXPECT_EQ(readNotesBeside(file, problem), std::nullopt);
  EXPECT_EQ(problem, "");
  Settings settings;
  settings.surveyMode = kModeManual;
  settings.traceWidth[3] = 4;
  const SurveyNotes full{.project = "Peat \"Süd\" \\ 7/8",
                         .site = "\xE2\x9B\xB0",
                         .operatorName = "N. N.",
                         .instrumentSerial = "0017",
                         .calibrationDate = "in spring",
                         .instrumentHeight = 0.1,
                         .antennaAhead = -100,
                         .antennaRight = 1e-7,
                         .antennaUp = 100,
                         .gpsLag = 0,
                         .version = "0.1.0",
                         .kind = "ORLA",
                         .created = "2026-05-14T09:30:00",
                         .utcOffset = 19800,
                         .clockDifference = -619315200.25,
                         .teskRangeTimes10 = false,
                         .settings = settingsForNotes(settings, Kind::orla, false)};
  for (const auto& notes : {full, SurveyNotes{}, askedNotes(full)}) {
    ASSERT_EQ(writeNotes(notesPathBeside(file), notes), "");
    EXPECT_EQ(readNotesBeside(file, problem), notes);
    EXPECT_EQ(problem, "");
  }
  EXPECT_EQ(askedNotes(full).kind, "");
  EXPECT_THAT(formatNotes(full), HasSubstr("\"instrumentHeight\": 0.1,"));
  EXPECT_THAT(formatNotes(full), HasSubstr("\"traceWidth[3]\": \"4\""));
  EXPECT_THAT(formatNotes({.project = "\xFFx"}), HasSubstr("x\""));
  EXPECT_THAT(writeNotes(folder.path() / "none" / "a.json", full), HasSubstr("Cannot write "));
  std::setlocale(LC_ALL, before.c_str());
}

TEST_F(SurveyNotesTest, WhatCannotBeTakenIsToldAndTheRestKept) {
  const std::string gone = "Notes left out, " + notesPathBeside(file).string() + ": ";
  const struct {
    const char* text;
    const char* said;  // empty: nothing
  } cases[] = {
      {R"({"site":"a"})", ""},
      {R"({"site":"a","more":[{"site":"b","settings":{"audio":"2"}},1],"x":{"site":"c"},"settings":{"no":[1]}})", ""},
      {"\xEF\xBB\xBF{\"site\":\"a\"}", ""},
      {R"({"site":"b","site":"a","project":1})", "project is no text"},
      {R"({"site":"a","project":"x\u0000","operator":"\n"})",
       "project has a line end or the like in it; operator has a line end or the like in it"},
      {R"({"instrumentHeight":-0.01,"gpsLag":"1","antennaUp":101,"antennaAhead":true,"site":"a"})",
       "instrumentHeight is not from 0 to 100; gpsLag is no number; antennaUp is not from -100 to 100; antennaAhead is "
       "no number"},
      {R"({"utcOffset":[7200],"created":{"site":"b"},"teskRangeTimes10":1,"settings":7,"site":"a"})",
       "utcOffset is no number; created is no text; teskRangeTimes10 is neither true nor false; settings is no list of "
       "names and values"},
      {R"({"site":"a","settings":[{"audio":"2"}]})", "settings is no list of names and values"},
      {R"({"site":"a","settings":{"audio":2,"surveyMode":{"audio":"2"}}})",
       "setting audio is no text; setting surveyMode is no text"},
      {R"({"version":1,"kind":1,"created":1,"project":1,"operator":1,"gpsLag":null,"utcOffset":{},"site":"a"})",
       "version is no text; kind is no text; created is no text; project is no text; operator is no text; and 2 more"},
      {R"({"site":"a","project":"b)", "broken at byte 25, what follows is left out"},
      {R"({"site":"a" "project":"b"})", "broken at byte 21, what follows is left out"},
      {R"({"site":"a","gpsLag":1e999,"project":"b"})", "broken at byte 26, what follows is left out"},
      {"{\"site\":\"a\",\"project\":\"\xFF\"}", "broken at byte 24, what follows is left out"},
      {R"({"site":"a"} {"site":"b"})", "broken at byte 14, what follows is left out"},
  };
  for (const auto& [text, said] : cases) {
    const auto notes = read(text);
    ASSERT_TRUE(notes) << text;
    EXPECT_EQ(*notes, SurveyNotes{.site = "a"}) << text;
    EXPECT_EQ(problem, *said == '\0' ? "" : gone + said) << text;
  }
  const auto longest = std::string(kLongestNote, 'x');
  EXPECT_EQ(read("{\"site\":\"" + longest + "\"}")->site, longest);
  EXPECT_EQ(read("{\"site\":\"" + longest + "x\"}")->site, "");
  EXPECT_EQ(problem, gone + "site is longer than 1000 bytes");
}

TEST_F(SurveyNotesTest, NonsenseCostsNothing) {
  std::string deep, deepObjects;
  for (int i = 0; i < 150'000; ++i) {
    deep += "[[[[";
    deepObjects += "{\"a\":";
  }
  for (const auto& text : {std::string(), std::string("7"), std::string("null"), std::string("[{\"site\":\"a\"}]"),
                           std::string("\"{}\""), deep, deepObjects, "{\"settings\":" + deep,
                           std::string(1 << 20, '\0'), std::string(1 << 20, '{'), std::string("\xFE\xFF\0{", 4)}) {
    EXPECT_EQ(read(text), SurveyNotes{}) << text.substr(0, 20);
    EXPECT_NE(problem, "") << text.substr(0, 20);
    EXPECT_LT(problem.size(), 300U);
  }
  EXPECT_EQ(read(std::string((1 << 20) + 1, ' ')), std::nullopt);
  EXPECT_THAT(problem, HasSubstr("Cannot read the notes in "));
  std::filesystem::remove(notesPathBeside(file));
  std::filesystem::create_directory(notesPathBeside(file));
  EXPECT_EQ(readNotesBeside(file, problem), std::nullopt);
  EXPECT_THAT(problem, HasSubstr("Cannot read the notes in "));
}

TEST_F(SurveyNotesTest, FieldsAreSetByText) {
  const struct {
    const char* text;
    const char* said;
  } cases[] = {
      {"project=a=b", ""},
      {"gpsLag=-10", ""},
      {"gpsLag=+1e1", ""},
      {"antennaRight=-0.25", ""},
      {"instrumentHeight=100", ""},
      {"site=", ""},
      {"gpsLag=", ""},
      {"project", "a note is FIELD=VALUE"},
      {"", "a note is FIELD=VALUE"},
      {"projekt=a", "there is no note \"projekt\""},
      {"=a", "there is no note \"\""},
      {"version=1", "there is no note \"version\""},
      {"settings=1", "there is no note \"settings\""},
      {"gpsLag=10.01", "gpsLag is not from -10 to 10"},
      {"instrumentHeight=-1", "instrumentHeight is not from 0 to 100"},
      {"antennaUp=1,5", "\"1,5\" is no number for antennaUp"},
      {"antennaUp=nan", "\"nan\" is no number for antennaUp"},
      {"antennaUp=1 m", "\"1 m\" is no number for antennaUp"},
      {"site=a\nb", "site has a line end or the like in it"},
  };
  for (const auto& [text, said] : cases) {
    SurveyNotes notes{.site = "here", .gpsLag = 0.5};
    const auto before = notes;
    EXPECT_EQ(setNote(notes, text), said) << text;
    EXPECT_EQ(notes == before, *said != '\0') << text;
  }
  SurveyNotes notes{.site = "here", .gpsLag = 0.5};
  for (const auto* text : {"site=", "gpsLag=", "operator=N", "antennaAhead=-0.250"})
    EXPECT_EQ(setNote(notes, text), "");
  EXPECT_EQ(notes, (SurveyNotes{.operatorName = "N", .antennaAhead = -0.25}));
  EXPECT_EQ(noteText(notes, notesFields()[2]) + noteText(notes, notesFields()[6]) + noteText(notes, notesFields()[9]),
            "N-0.25");
}

}  // namespace
}  // namespace kalmira
