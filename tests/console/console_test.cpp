#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>

#include "console/console_view.h"
#include "console/operator_commands.h"
#include "console/options.h"
#include "console/output_thread.h"
#include "console/run_settings.h"
#include "support/session_fixture.h"

namespace kalmira {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string usageProblem(const std::vector<std::string>& arguments) {
  const auto parsed = parseLogOptions(arguments);
  const auto* error = std::get_if<UsageError>(&parsed);
  return error == nullptr ? std::string{} : error->what;
}

TEST(LogOptions, GoodAndBadCommandLines) {
  const auto parsed =
      parseLogOptions({"--kind", "tesk2", "--port=/dev/x", "--set", "traceWidth[2]=3", "--seconds", "2.5"});
  const auto& options = std::get<LogOptions>(parsed);
  EXPECT_EQ(options.kind, Kind::tesk2);
  EXPECT_EQ(options.port, "/dev/x");
  EXPECT_EQ(options.set.at(0).first.index, 2U);
  EXPECT_EQ(options.seconds, 2.5);

  const std::vector<std::string> good{"--kind", "0", "--port", "x"};
  const std::vector<std::pair<std::vector<std::string>, std::string>> bad{
      {{"--wrong"}, "no option"},
      {{"--seconds", "-1"}, "seconds"},
      {{"--seconds", "1,5"}, "seconds"},
      {{"--set", "surveyMode=x"}, "no whole number"},
      {{"--set", "traceWidth=3"}, "no setting"},
      {{"--set", "traceWidth[8]=3"}, "no setting"},
      {{"--set", "readingsInterval=fast"}, "no number"},
      {{"--name", "../x"}, "no name"},
      {{"--storage-class", "4"}, "0 to 3"},
      {{"--marker", "/dev/y"}, "TESK2"},
      {{"--on-silence", "perhaps"}, "wait or exit"},
      {{"--gps"}, "needs a value"},
  };
  EXPECT_EQ(usageProblem(good), "");
  for (const auto& [more, problem] : bad) {
    auto arguments = good;
    arguments.insert(arguments.end(), more.begin(), more.end());
    EXPECT_THAT(usageProblem(arguments), HasSubstr(problem));
  }
  EXPECT_THAT(usageProblem({"--kind", "8", "--port", "x"}), HasSubstr("no instrument"));
  EXPECT_THAT(usageProblem({"--kind", "0"}), HasSubstr("--port"));
}

TEST(RunSettings, OverridesNeverReachTheFile) {
  TempFolder root;
  const SettingsPlace place{.kind = Kind::orla, .iceOption = false, .storageClass = 1, .root = root.path()};
  RunSettings run(place, {{*findField("surveyMode"), "2"},
                          {*findField("modeIncrement[2]"), "0.5"},
                          {*findField("lineIncrement"), "7"}});
  EXPECT_EQ(run.settings().stationIncrement, 0.5F) << "that of the mode set for this run";
  run.settings().lineIncrement = 3.0F;  // changed in the session
  run.settings().lineName = "9";
  run.save(run.settings());
  run.finish();
  ASSERT_EQ(run.takeProblem(), "");

  Settings file;
  ASSERT_EQ(loadSettings(place, file).how, SettingsLoad::loaded);
  EXPECT_EQ(file.surveyMode, 0);
  EXPECT_EQ(file.modeIncrement[2], 1.0F);
  EXPECT_EQ(file.lineIncrement, 3.0F);
  EXPECT_EQ(file.lineName, "9");

  // A confirmed line is the session's, even where it repeats what was set for the run.
  run.settings().lineIncrement = 7.0F;
  run.keepLine();
  run.save(run.settings());
  run.finish();
  ASSERT_EQ(run.takeProblem(), "");
  loadSettings(place, file);
  EXPECT_EQ(file.lineIncrement, 7.0F);
  EXPECT_EQ(file.surveyMode, 0);
}

TEST(OperatorCommands, StatesAndMistakes) {
  TestSession test(Kind::orla);
  test.begin();
  const auto error = [&](const char* line) { return runOperatorCommand(test.session, line).error; };
  EXPECT_EQ(error("go"), "");
  for (const auto* line : {"go", "line 2", "station 4", "comment x", "calibrate"}) {
    EXPECT_NE(error(line), "") << line << " while logging";
  }
  EXPECT_EQ(error("pause"), "");
  for (const auto* line : {"pause", "pause now", "calibrate", "mark", "station", "station 1 2", "station x",
                           "comment ", "line 1 2 3 Q", "line 1 two", "line 1 2 3 N 5", "fly"}) {
    EXPECT_NE(error(line), "") << line << " standing by";
  }
  const auto before = test.records().size();
  EXPECT_EQ(error("line 7b 10 -2.5 E"), "");
  EXPECT_EQ(error("comment  two words"), "");
  const auto records = test.records();
  EXPECT_THAT(std::vector(records.begin() + static_cast<std::ptrdiff_t>(before), records.end()),
              ElementsAre("L7b                    ", "B      10.00           ", "AE           -2.500    ",
                          "Z15112026 10:13:07     ", "*10:13:07.250    100050", "Ctwo words       100050"));
  EXPECT_THAT(runOperatorCommand(test.session, "status").status,
              HasSubstr("state=\"Stand By\" line=\"7b\" station=10.00 readings=0"));
  runOperatorCommand(test.session, "go");
  EXPECT_TRUE(runOperatorCommand(test.session, "exit").ends);
  EXPECT_THAT(test.disk.content(), testing::EndsWith("X$PAUSED         100050\n"));
  EXPECT_EQ(summaryText(test.session), "summary readings=0 gps=0 events=4 bytes=408");
}

TEST(OperatorCommands, MarkIsForOneRecord) {
  TestSession test(Kind::tesk2);
  test.begin();
  EXPECT_EQ(runOperatorCommand(test.session, "mark").error, "");
  EXPECT_EQ(test.link.markerKeyPending, 1);
  test.record(std::string("T\x06") + std::string(12, '\x40'));
  releaseMarkAfterRecord(test.session);
  EXPECT_EQ(test.link.markerKeyPending, 1) << "framed before the key was pressed";
  test.record(std::string("T\x0E") + std::string(12, '\x40'));
  releaseMarkAfterRecord(test.session);
  EXPECT_EQ(test.link.markerKeyPending, 0);
}

TEST(ConsoleView, NoticesShowLinesAndAnswers) {
  std::vector<std::string> lines;
  ConsoleView view([&](std::string line) { lines.push_back(std::move(line)); }, true, true);
  view.show(PanelField::message, "Please Wait...");
  view.show(PanelField::value1, "C:1.00");
  EXPECT_FALSE(view.ask(Question::linkLost, {.title = "T", .text = "a\r\nb\r\n"}));
  EXPECT_TRUE(view.linkGivenUp());
  EXPECT_TRUE(view.ask(Question::exitLogging, {.title = "Confirm Exit", .text = "Exit Logging?"}));
  EXPECT_THAT(lines, ElementsAre("notice Please Wait...", "show message Please Wait...", "show value1 C:1.00",
                                 "notice T", "notice a", "notice b", "notice answered NO"));
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
