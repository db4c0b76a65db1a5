#include "logging/notes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>

#include "platform/command_line.h"
#include "support/session_fixture.h"

namespace kalmira {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string sentence(const std::string& text) {
  unsigned sum = 0;
  for (const char c : text) sum ^= static_cast<unsigned char>(c);
  return fmt::format("${}*{:02X}", text, sum);
}

// A survey whose clock stands at 10:13:07.250 local time, 9:13:07.250 UTC, of 2026-11-15.
struct NotesTest : testing::Test {
  TestSession test{Kind::tesk};
  Session& session = test.session;
  std::string problem;

  void SetUp() override { test.settings.gpsInput = 1; }
  std::filesystem::path lastNotes() const { return lastNotesPath({.kind = Kind::tesk, .root = test.folder.path()}); }
  SurveyNotes written() {
    session.notes.writer->finish();
    return readNotesBeside(session.file.path(), problem).value_or(SurveyNotes{.project = "no notes: " + problem});
  }
  void say(const std::string& text) { OnGpsLine(session, {.text = text, .tick = test.clock.tick() - 250}); }
  void pass(std::uint32_t ms) {
    test.clock.advance(ms);
    test.link.lastRecordTick = test.clock.tick();
    serviceSession(session);
  }
  std::vector<std::string> messages() {
    auto shown = test.view.changes[PanelField::message];
    std::erase_if(shown, [](const auto& text) { return !text.starts_with("Cannot") && !text.starts_with("Notes"); });
    return shown;
  }
};

TEST_F(NotesTest, BeginWithTheLastOnesThenThoseOfTheRunThenWhatTheProgramKnows) {
  writeFile(lastNotes(), R"({"project":"Moor","site":"North","gpsLag":0.2,"kind":"GLACO","clockDifference":7})");
  session.setup.notes = {"site=South", "gpsLag=", "operator=N"};
  session.setup.teskRangeTimes10 = true;
  test.settings.lineName = "12";
  test.begin();
  const SurveyNotes expected{.project = "Moor",
                             .site = "South",
                             .operatorName = "N",
                             .version = std::string(programVersion()),
                             .kind = "TESK",
                             .created = "2026-11-15T10:13:07",
                             .utcOffset = 3600,
                             .teskRangeTimes10 = true,
                             .settings = settingsForNotes(test.settings, Kind::tesk, false)};
  EXPECT_EQ(written(), expected);
  EXPECT_THAT(readFile(lastNotes()), HasSubstr("North")) << "those of the run are for the run";
  test.settings.lineName = "13";
  say(sentence("GPRMC,091306.5,A,,,,,,,151126,,"));
  LeaveLogging(session, true);
  auto later = expected;
  later.clockDifference = 0.5;
  EXPECT_EQ(readNotesBeside(session.file.path(), problem), later) << "what changes is the difference alone";
  EXPECT_THAT(session.remarks, ElementsAre(HasSubstr("no fix")));
  EXPECT_THAT(messages(), ElementsAre());
}

TEST_F(NotesTest, TheDifferenceOfTheClocksIsThatOfTheFirstGoodFix) {
  const std::string none = "none";
  // The "$" of each came a quarter of a second before it is handled: at 9:13:07.000 UTC.
  const struct {
    std::vector<std::string> said;
    std::string difference;
  } cases[] = {
      {{"GPGGA,091300.00,5000,N,01000,E,1,08"}, "7"},
      {{"GNGGA,091308.25,5000,N,01000,E,4,08"}, "-1.25"},
      {{"GPGGA,235959,5000,N,01000,E,2,08"}, "33188"},  // 9 hours are nearer than 15
      {{"GPGGA,211308,5000,N,01000,E,2,08"}, "43199"},
      {{"GPGGA,211306,5000,N,01000,E,2,08"}, "-43199"},
      {{"GPGGA,091300.00,,,,,0,00"}, none},
      {{"GPGGA,091300.00,5000,N,01000,E,,08"}, none},
      {{"GPGGA,091300.00,5000,N,01000,E,8,08"}, none},  // simulated
      {{"GPGGA,0913,5000,N,01000,E,1,08"}, none},
      {{"GPGGA,246060,5000,N,01000,E,1,08"}, none},
      {{"GPGGA,-11300,5000,N,01000,E,1,08"}, none},
      {{"GPGGA"}, none},
      {{"GPZDA,091300,14,11,2026,00,00"}, none},  // says nothing of a fix
      {{"GPGGA,091300.00,5000,N,01000,E,1,08", "GPZDA,091300,14,11,2026,00,00"}, "86407"},
      {{"GPGGA,091300.00,5000,N,01000,E,1,08", "GLRMC,091300,A,,,,,,,151106,,"}, "631152007"},
      {{"GPRMC,091300,A,,,,,,,161126,,,A", "GPRMC,091300,A,,,,,,,151126,,,A"}, "-86393"},
      {{"GPRMC,091300,A,,,,,,,151180,,", "GPRMC,091300,A,,,,,,,151126,,"}, "1451606407"},
      {{"GPRMC,091300,V,,,,,,,151126,,"}, none},
      {{"GPRMC,091300,A,,,,,,,310226,,"}, none},
      {{"GPRMC,091300,A,,,,,,,1511,,"}, none},
      {{"GPRMC,091300,A"}, none},
      {{"GPRMC,,A,,,,,,,151126,,", "PGRMA,091300,A,,,,,,,151126"}, none},
  };
  for (const int mode : {kModeAuto, kModeManual}) {
    for (const auto& [said, difference] : cases) {
      TestSession other(Kind::orla);
      other.settings.gpsInput = 1;
      other.settings.surveyMode = mode;
      other.begin();
      const auto say = [&](const std::string& text) {
        OnGpsLine(other.session, {.text = text, .tick = other.clock.tick() - 250});
      };
      say("$GPRMC,091300,A,,,,,,,010101,,*00");  // a wrong checksum
      for (const auto& text : said) say(sentence(text));
      LeaveLogging(other.session, true);
      const auto notes = readNotesBeside(other.session.file.path(), problem);
      ASSERT_TRUE(notes);
      EXPECT_EQ(notes->clockDifference ? fmt::format("{}", *notes->clockDifference) : none, difference) << said[0];
      EXPECT_EQ(notes->teskRangeTimes10, std::nullopt);
    }
  }
}

TEST_F(NotesTest, AFixWithoutADateIsNotWaitedForTillTheEnd) {
  test.begin();
  say(sentence("GPGGA,091300.00,5000,N,01000,E,1,08"));
  pass(5000);
  EXPECT_EQ(written().clockDifference, std::nullopt);
  pass(1);
  EXPECT_EQ(written().clockDifference, 7);
  say(sentence("GPRMC,091300,A,,,,,,,161126,,"));
  EXPECT_EQ(written().clockDifference, 7) << "rewritten once";
}

TEST_F(NotesTest, WhatGoesWrongIsToldOnceAndHurtsNothing) {
  writeFile(lastNotes(), R"({"project":"Moor","gpsLag":99)");
  std::filesystem::create_directories(test.folder.path() / "111510A.DAT.json" / "in the way");
  test.go();
  session.notes.writer->finish();
  pass(500);
  pass(500);
  say(sentence("GPRMC,091300,A,,,,,,,151126,,"));
  session.notes.writer->finish();
  pass(500);
  pass(500);
  EXPECT_THAT(messages(), ElementsAre(HasSubstr("gpsLag is not from -10 to 10; broken at byte"),
                                      HasSubstr("Cannot write " + notesPathBeside(session.file.path()).string())));
  EXPECT_EQ(session.notes.survey.project, "Moor");
  LeaveLogging(session, true);
  EXPECT_THAT(session.shortfalls, ElementsAre());
  EXPECT_THAT(session.remarks, ElementsAre(HasSubstr("no fix")));
}

TEST_F(NotesTest, FollowTheDataFileWhenItGoesOnInAnother) {
  LocalDisk disk;
  LinkState link;
  Session moved({.kind = Kind::orla, .root = test.folder.path(), .notes = {"site=a"}}, test.settings, link, test.clock,
                disk, test.view, [](const Settings&) { return std::string{}; });
  moved.ports = &test.ports;
  ASSERT_EQ(startSession(moved), StartOutcome::started);
  const auto folder = test.folder.path() / "data";
  ASSERT_EQ(beginDataFile(moved, [&](const std::string&) { return std::optional(folder / "A.ROR"); }).how,
            CreateOutcome::How::failed);
  std::filesystem::create_directory(folder);
  ASSERT_EQ(beginDataFile(moved, [&](const std::string&) { return std::optional(folder / "A.ROR"); }).how,
            CreateOutcome::How::created);
  moved.notes.writer->finish();
  const auto first = readFile(folder / "A.ROR.json");
  writeFile(folder / "B", "");
  std::filesystem::rename(folder / "A.ROR", folder / "B");
  writeFile(folder / "A.ROR", "another's");
  serviceSession(moved);
  EXPECT_EQ(moved.file.path(), folder / "A2.ROR");
  LeaveLogging(moved, true);
  EXPECT_EQ(readFile(folder / "A2.ROR.json"), first);
  EXPECT_THAT(first, HasSubstr("\"site\": \"a\""));
}

}  // namespace
}  // namespace kalmira
