#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>

#include "console/log_program.h"
#include "console/operator_commands.h"
#include "console/output.h"
#include "console/run_settings.h"
#include "support/command_line_case.h"
#include "support/session_fixture.h"

namespace kalmira {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(LogOptions, GoodAndBadCommandLines) {
  const std::string needed = "--kind tesk2 --port=/dev/x ";
  const auto options = optionsOf(
      logCommandLine,
      needed + "--set traceWidth[2]=3 --set lineName= --seconds +2.5 --marker m --note site=a --note gpsLag=1");
  EXPECT_TRUE(options.kind == Kind::tesk2 && options.port == "/dev/x" && options.seconds == 2.5);
  EXPECT_EQ(options.set.at(0).first.index, 2U);
  EXPECT_EQ(options.set.at(1).second, "");
  EXPECT_THAT(options.notes, ElementsAre("site=a", "gpsLag=1"));
  for (const auto& [more, said] : std::initializer_list<std::pair<std::string, std::string>>{
           {"--seconds 0", "--seconds takes a number of seconds above 0"},
           {"--set surveyMode", "--set takes FIELD=VALUE"},
           {"--set surveyMode=x", "\"x\" is no whole number for surveyMode"},
           {"--set traceWidth[8]=3", "there is no setting \"traceWidth[8]\""},
           {"--set readingsInterval=fast", "\"fast\" is no number for readingsInterval"},
           {"--note site", "a note is FIELD=VALUE"},
           {"--note kind=a", "there is no note \"kind\""},
           {"--note site=a --note gpsLag=11", "gpsLag is not from -10 to 10"},
           {"--name ../x", "\"../x\" is no name for a data file: a bare name without folder is wanted"},
           {"--gps=", "a device is missing"},
           {"--kind TESK --marker /dev/y", "--marker is for the TESK2"},
           {"--ice", "--ice is for the ORLA"}}) {
    optionsOf(logCommandLine, needed + more, said);
  }
  optionsOf(logCommandLine, "--kind 0", "--port is missing");
}

TEST(RunSettings, OverridesNeverReachTheFileWhichIsReplacedWhole) {
  TempFolder root;
  const SettingsPlace place{.kind = Kind::orla, .iceOption = false, .storageClass = 1, .root = root.path()};
  RunSettings run(
      place,
      {{*findField("surveyMode"), "2"}, {*findField("modeIncrement[2]"), "0.5"}, {*findField("lineIncrement"), "7"}});
  Settings file;
  const auto saved = [&] {
    run.save(run.settings());
    run.finish();
    EXPECT_EQ(run.takeProblem(), "");
    EXPECT_EQ(loadSettings(place, file).how, SettingsLoad::loaded);
  };
  EXPECT_EQ(run.settings().stationIncrement, 0.5F) << "that of the mode set for this run";
  run.settings().lineIncrement = 3.0F;  // changed in the session
  run.settings().lineName = "9";
  saved();
  EXPECT_EQ(file.surveyMode, 0);
  EXPECT_EQ(file.modeIncrement[2], 1.0F);
  EXPECT_EQ(file.lineIncrement, 3.0F);
  EXPECT_EQ(file.lineName, "9");

  // Whoever holds the older file, a power cut included, keeps it whole.
  const auto path = settingsFileOf(place);
  const auto expectReplaced = [&](const std::function<void()>& save) {
    const auto content = readFile(path);
    const auto older = root.path() / "older";
    std::filesystem::remove(older);
    std::filesystem::create_hard_link(path, older);
    save();
    EXPECT_EQ(readFile(older), content);
    EXPECT_NE(readFile(path), content);
  };
  // A confirmed line is the session's, even where it repeats what was set for the run.
  run.settings().lineIncrement = 7.0F;
  run.keepLine();
  expectReplaced(saved);
  EXPECT_EQ(file.lineIncrement, 7.0F);
  EXPECT_EQ(file.surveyMode, 0);
  expectReplaced([&] { EXPECT_EQ(saveSettings(place, Settings{}), ""); });
}

TEST(OperatorCommands, StatesAndMistakes) {
  TestSession test(Kind::orla);
  test.begin();
  const auto error = [&](const char* line) { return runOperatorCommand(test.session, line).error; };
  for (const auto* line :
       {"pause", "pause now", "calibrate", "mark", "station", "station 1 2", "station x", "line 1 2 3 Q", "line 1 two",
        "line 1 2 3 N 5", "line \"7 b", "line 7 0 0.0003", "comment a\tb", "fly"}) {
    EXPECT_NE(error(line), "") << line << " standing by";
  }
  EXPECT_EQ(error("line \"7 b\" 10 -2.5 E"), "");
  EXPECT_EQ(error("  comment  two words"), "");
  EXPECT_THAT(test.records(),
              ElementsAre("L7 b                   ", "B      10.00           ", "AE           -2.500    ",
                          "Z15112026 10:13:07     ", "*10:13:07.250    100050", "Ctwo words       100050"));
  EXPECT_THAT(runOperatorCommand(test.session, "status").status,
              HasSubstr("state=\"Stand By\" line=\"7 b\" station=10.00 readings=0"));
  // What the file holds is shown where it is not what was given.
  for (const auto& [line, kept] : {std::pair{"comment Z\u00e4une", "Z?une"},
                                   {"comment", ""},
                                   {"station 1.006", "1.01"},
                                   {"line \u00e4 1 0.3048", "? increment 0.305"},
                                   {"line 8 1 0.5", ""}}) {
    EXPECT_EQ(runOperatorCommand(test.session, line).kept, kept) << line;
  }
  EXPECT_EQ(test.session.settings.stationIncrement, 0.5F);
  EXPECT_THAT(runOperatorCommand(test.session, "help").status, HasSubstr("\nhelp station X"));
  EXPECT_EQ(error("go"), "");
  for (const auto* line : {"go", "line 2", "station 4", "comment x", "calibrate"}) {
    EXPECT_NE(error(line), "") << line << " while logging";
  }
  EXPECT_EQ(runOperatorCommand(test.session, "exit").error, "");
  EXPECT_FALSE(test.session.sessionActive);
  EXPECT_THAT(test.disk.content(), testing::EndsWith("X$PAUSED         100050\n"));
}

TEST(OperatorCommands, OfTheTesk2) {
  TestSession test(Kind::tesk2);
  test.settings.calibrationFactors[0] = 1;
  test.begin();
  const auto command = [&](const char* line) { EXPECT_EQ(runOperatorCommand(test.session, line).error, "") << line; };
  const auto record = [&](char mode) { test.record(std::string("T") + mode + std::string(12, '\x40')); };
  command("mark");
  EXPECT_EQ(test.link.markerKeyPending, 1);
  record('\x06');
  releaseMarkAfterRecord(test.session);
  EXPECT_EQ(test.link.markerKeyPending, 1) << "framed before the key was pressed";
  record('\x0E');
  releaseMarkAfterRecord(test.session);
  EXPECT_EQ(test.link.markerKeyPending, 0);
  command("delete-calibration");
  EXPECT_EQ(test.records().at(0), "O1     0.000      1.000  ");
  command("calibrate");
  record('\x06');
  EXPECT_EQ(test.view.texts[PanelField::calibration], "Vertical Calibration");
}

TEST(ConsoleView, NoticesShowLinesAndAnswers) {
  for (const bool exits : {true, false}) {
    std::vector<std::string> lines, wanted{"notice Please Wait...", "notice T", "notice a", "notice answered YES"};
    if (exits)
      wanted = {wanted[0],  "show message Please Wait...", "show value1 C:1.00", "notice T",
                "notice a", "notice answered NO"};
    ConsoleView view([&](std::string line) { lines.push_back(std::move(line)); }, exits, exits);
    view.show(PanelField::message, "Please Wait...");
    view.show(PanelField::value1, "C:1.00");
    EXPECT_EQ(view.ask(Question::linkLost, {.title = "T", .text = "a\r\n"}), !exits);
    EXPECT_EQ(view.linkGivenUp(), exits);
    EXPECT_TRUE(view.ask(Question::exitLogging, {.title = "Confirm Exit", .text = "Exit Logging?"}));
    EXPECT_EQ(lines, wanted);
  }
}

TEST(ConsoleView, OfASilenceAJournalHasItsBeginningOnly) {
  std::vector<std::string> lines;
  ConsoleView view([&](std::string line) { lines.push_back(std::move(line)); }, false, false);
  view.tellSilencesOnce();
  const auto silence = [&] {
    for (const std::string receiver : {"GPS receiver gone", "GPS receiver is back"}) {
      view.show(PanelField::message, "Please Wait...");
      view.show(PanelField::message, receiver);
      EXPECT_TRUE(view.ask(Question::linkLost, {.title = "T", .text = "a"}));
    }
  };
  const std::vector<std::string> once{"notice Please Wait...", "notice GPS receiver gone",   "notice T", "notice a",
                                      "notice answered YES",   "notice GPS receiver is back"};
  silence();
  EXPECT_EQ(std::exchange(lines, {}), once);
  view.silenceIsOver();
  silence();
  EXPECT_EQ(lines, once);
}

TEST(OutputThread, AReaderThatStandsStillHoldsNobodyUp) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  const auto start = std::chrono::steady_clock::now();
  {
    OutputThread output(ends[1], ends[1]);
    for (int i = 0; i < 30000; ++i) output.line("a line that nobody reads");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  }
  ::close(ends[1]);
  std::string read;
  std::array<char, 4096> block{};
  for (ssize_t n = 0; (n = ::read(ends[0], block.data(), block.size())) > 0;) {
    read.append(block.data(), static_cast<std::size_t>(n));
  }
  EXPECT_TRUE(read.starts_with("a line that nobody reads\na line"));
  ::close(ends[0]);
}

}  // namespace
}  // namespace kalmira
