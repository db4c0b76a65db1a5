#include <fmt/format.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <numbers>
#include <numeric>
#include <regex>
#include <sstream>
#include <thread>

#include "datafile/record_text.h"
#include "end_to_end/programs.h"
#include "platform/text.h"
#include "sim/world.h"

namespace kalmira {
namespace {

using namespace std::string_literals;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

struct Recording : Survey {
  explicit Recording(const std::string& more = "") : Survey("ORLA", more) { EXPECT_EQ(logger.answer("go"), "ok"); }
  bool readings(int from, int to) {
    for (int i = from; i <= to; ++i) EXPECT_TRUE(send(fmt::format("T${:+05d}-0800\r", i)));
    return logger.counted("readings", to);
  }
};

std::string readingRecords(int from, int to) {
  std::string out;
  for (int i = from; i <= to; ++i) out += records24({withTick(24, fmt::format("T${:+05d}-0800", i))});
  return out;
}

const std::string kStarted = records24({withTick(24, "X$STARTED")});
const std::string kPaused = records24({withTick(24, "X$PAUSED")});

TEST(Signal, LosesNoRecordAndPausesBeforeTheEndWhereItCan) {
  for (const int number : {SIGKILL, SIGTERM, SIGINT}) {
    const bool killed = number == SIGKILL;
    Recording survey;
    ASSERT_TRUE(survey.readings(1, 25));
    survey.logger.signal(number);
    EXPECT_EQ(survey.logger.end(), killed ? 128 + SIGKILL : 0);
    EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 25) + (killed ? "" : kPaused)));
    EXPECT_EQ(survey.logger.output().ends_with("summary readings=25 gps=0 events=2 bytes=816\n"), !killed);
  }
}

// Asked after six silent periods, and answered no.
TEST(Version, IsToldWithTheCommitWhereItIsKnown) {
  const auto outcome = run(KALMIRA_LOG, "--version");
  const std::regex form("kalmira-log \\d+\\.\\d+\\.\\d+( \\([0-9a-f]{4,40}\\+?\\))?\n");
  EXPECT_TRUE(std::regex_match(outcome.output, form)) << outcome.output;
  EXPECT_EQ(outcome.status, 0);
}

TEST(Silence, EndsTheSurveyWithStatusOneWhenToldSo) {
  Recording survey("--set readingsInterval=1 --on-silence exit");
  ASSERT_TRUE(survey.readings(1, 1));
  for (const auto* line : {"Please Wait...", "No Connection/Instrument OFF", "answered NO"})
    survey.logger.nextLine(std::string("notice ") + line);
  EXPECT_EQ(survey.logger.end(), 1);
  EXPECT_THAT(survey.content(),
              EndsWith(readingRecords(1, 1) + records24({withTick(24, "X$CONN BREAK"), withTick(24, "X$CONN END")})));
}

// A service: from its first reading to the signal, with a silence that nobody answers for.
TEST(Silence, AServiceWaitsAndTellsWhenTheInstrumentIsBack) {
  const TempFolder folder;
  const Device device;
  Logger logger("ORLA", device.name, folder.path(), "--set surveyMode=1 --no-input");
  const auto send = [&] { device.send(kOrlaRecord); };
  const auto path = logger.file(send);
  const auto back = "notice The instrument sends again after ";
  EXPECT_NE(logger.nextLine("notice Please Wait...", [] {}), "");
  EXPECT_NE(logger.nextLine("notice answered YES", [] {}), "");
  EXPECT_NE(logger.nextLine(back, send), "");
  logger.signal(SIGTERM);
  EXPECT_EQ(logger.end(), 0);
  EXPECT_THAT(readFile(path), HasSubstr("X$CONN BREAK"));
  EXPECT_THAT(readFile(path), HasSubstr("X$PAUSED"));
}

TEST(Notes, StandBesideTheDataFile) {
  Survey survey("ORLA", "--gps {gps} --set lineName=12 --note site=Moor --note gpsLag=0.25 --note operator=");
  const auto notes = survey.path.string() + ".json";
  ASSERT_TRUE(survey.receiver.send("$GPRMC,100000.00,A,6001.1000,N,02458.2000,E,0.1,0.0,150999,,*31\r\n"));
  const auto known = [&] { return readFile(notes).find("\"clockDifference\": ") != std::string::npos; };
  for (int i = 0; i < kPatienceMs / 20 && !known(); ++i) ::poll(nullptr, 0, 20);
  EXPECT_EQ(survey.logger.answer("go"), "ok");
  survey.logger.leave();
  const auto text = readFile(notes);
  for (const auto* part : {"\"site\": \"Moor\"", "\"gpsLag\": 0.25", "\"version\": \"", "\"kind\": \"ORLA\"",
                           "\"created\": \"2", "\"utcOffset\": ", "\"lineName\": \"12\"", "\"clockDifference\": "}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
  EXPECT_THAT(text, Not(HasSubstr("teskRangeTimes10")));
  EXPECT_FALSE(std::filesystem::exists(survey.folder.path() / "Storage/KALINI/NOTES.json"));
}

// How large a file a running program may make.
void limitFiles(const Logger& logger, rlim_t bytes) {
  rlimit limit{};
  ASSERT_EQ(::prlimit(logger.process(), RLIMIT_FSIZE, nullptr, &limit), 0);
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  ASSERT_EQ(::prlimit(logger.process(), RLIMIT_FSIZE, &limit, nullptr), 0);
}

TEST(FullDisk, KeepsTheRecordsUntilThereIsRoomOrSavesThemElsewhere) {
  for (const bool roomAgain : {true, false}) {
    Recording survey;
    ASSERT_TRUE(survey.readings(1, 2));
    // Room for three records and ten bytes.
    limitFiles(survey.logger, std::filesystem::file_size(survey.path) + 82);
    for (int i = 3; i <= 7; ++i) ASSERT_TRUE(survey.send(fmt::format("T${:+05d}-0800\r", i)));
    survey.logger.nextLine("notice Disk full");
    ASSERT_TRUE(survey.logger.counted("readings", 7));
    EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 5)));
    const auto rest = survey.folder.path() / (survey.path.filename().string() + ".REST");
    if (roomAgain) {
      limitFiles(survey.logger, RLIM_INFINITY);
      ASSERT_TRUE(survey.readings(8, 8));
      survey.logger.leave();
      EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 8) + kPaused));
      EXPECT_FALSE(std::filesystem::exists(rest));
    } else {
      survey.logger.leave(3);
      EXPECT_THAT(survey.logger.output(), HasSubstr("They were saved as " + rest.string()));
      // Put together they are the survey.
      EXPECT_THAT(survey.content(), EndsWith(kStarted + readingRecords(1, 5)));
      const auto saved = wiped(std::string(24, ' ') + readFile(rest), 24).substr(24);
      EXPECT_EQ(saved, readingRecords(6, 7) + kPaused);
    }
  }
}

TEST(Start, FailsWithTheKindsTextAndTheReasonBehindIt) {
  const TempFolder folder;
  const Device device;
  const auto root = folder.path().string();
  const auto fails = [&](const char* kind, const std::string& port, const std::string& errors, const char* more = "") {
    Logger logger(kind, port, folder.path(), more);
    EXPECT_EQ(logger.end(), 1) << errors;
    EXPECT_THAT(logger.errors(), StartsWith(errors));
    EXPECT_EQ(logger.output().find("file "), std::string::npos);
  };
  fails("TESKDD", root + "/none", "Cannot open TESKD port\nThere is no device " + root + "/none");
  fails("GLACO", root, "Cannot open GLACO port\n" + root + " is a folder");
  fails("MIRKA", "/dev/null", "Cannot open MIRKA port\n/dev/null is a file, not a serial port");
  fails("ORLA", device.name, "Same Port Assigned\n", ("--gps " + device.name).c_str());
  fails("TESK", device.name, "Instrument OFF or Disconnected\n");
  const auto mine = folder.path() / "Storage/DATAORLA/MINE.ROR";
  writeFile(mine, "a day's work");
  fails("ORLA", device.name, "The file already exisits. Please enter another name\n", "--name MINE");
  EXPECT_EQ(readFile(mine), "a day's work");
  {
    // A receiver that is not there is told, and the survey goes on; the end of the commands ends it.
    Logger first("ORLA", device.name, folder.path(), "--gps /dev/kalmira-none");
    EXPECT_FALSE(first.file().empty());
    fails("TESKB", device.name,
          fmt::format("Cannot open TESKB port\n{} is held by {} (process {})", device.name, nameOf(first.process()),
                      first.process()));
    first.closeInput();
    EXPECT_EQ(first.end(), 3) << "it was asked for and never gave anything";
    EXPECT_THAT(first.errors(), StartsWith("Cannot open GPS port\nThere is no device /dev/kalmira-none"));
  }
  std::filesystem::remove_all(folder.path() / "Storage");
  writeFile(folder.path() / "Storage", "in the way");
  fails("VARDO", device.name, "File not created. Potential disk problem.");
}

struct Stream {
  const char* kind;
  bool killed = false;
};
void PrintTo(const Stream& stream, std::ostream* out) { *out << stream.kind << stream.killed; }
class Simulated : public testing::TestWithParam<Stream> {};

// Every record that gets into the file stays whole, whatever its bytes were on the line and however it ends.
TEST_P(Simulated, GivesWholeRecordsOnly) {
  const auto& stream = GetParam();
  const std::size_t length = stream.kind == std::string("TESK2") ? 26 : 24;
  const TempFolder folder;
  Program sim(KALMIRA_SIM,
              std::string("--seconds 100 --kind ") + stream.kind +
                  (stream.killed ? " --rate 200" : " --rate 100 --noise 0.05 --gps-rate 20 --bad-checksum 0.2"));
  const auto instrument = sim.nextLine("instrument ").substr(11);
  Logger logger(stream.kind, instrument, folder.path(),
                "--set surveyMode=1 --set readingsInterval=60 --gps " + sim.nextLine("gps ").substr(4) +
                    (stream.killed ? "" : " --seconds 1"));
  const auto path = logger.file();
  if (stream.killed) {
    ASSERT_EQ(logger.answer("go"), "ok");
    ASSERT_TRUE(logger.counted("readings", 60));
    logger.signal(SIGKILL);
  }
  // The noise may leave no sentence whole: a receiver that gave nothing.
  ASSERT_THAT(logger.end(), stream.killed ? testing::AnyOf(128 + SIGKILL, -1) : testing::AnyOf(0, 3))
      << logger.errors();
  const auto content = readFile(path);
  ASSERT_EQ(content.size() % length, 0U);
  for (auto at = length; at <= content.size(); at += length) ASSERT_EQ(content[at - 1], '\n') << at;
  const int readings = countRecords(content, length, "Tt");
  EXPECT_GE(readings, 5) << "a loaded machine may start late";
  EXPECT_EQ(countRecords(content, length, "!"), countRecords(content, length, "@?"));
  EXPECT_EQ(countRecords(content, length, "?") > 0, !stream.killed);
  const auto table = run(KALMIRA_EXPORT, path);
  EXPECT_EQ(table.status, 0) << table.errors;
  EXPECT_EQ(std::count(table.output.begin(), table.output.end(), '\n'), readings + 1);
}

// One kind a framing.
INSTANTIATE_TEST_SUITE_P(Streams, Simulated,
                         testing::Values(Stream{"MIRKA"}, Stream{"GLACO"}, Stream{"TESK2"}, Stream{"TESK2", true}),
                         [](const auto& row) {
                           return row.param.kind + std::string(row.param.killed ? "Killed" : "");
                         });

struct KindCase {
  const char* test;
  std::string options;
  std::string middle;         // of a record, sent first: the stream does not wait for us
  std::string first, second;  // as sent
  std::string shown;          // of the first, on the panel
  std::string header;
  std::string row;      // what the export says of the second, from the dipoles on
  std::size_t end = 1;  // bytes of a record that stay on the wire
  const char* kind = test;
};

const std::array kCases{
    KindCase{"ORLA", "", "34-0567\r", "T$+0400-0800\r", "Td-0412+0796\r", "value1 C:-10.00  mS/m",
             "ORLA2   W230GRD0010   3", ",V,1,100,10.3,,-1.99,"},
    // Under a short instrument 106 mS/m over salt water of 2000 mS/m are 2.6 m of ice, 113.6 mS/m are 2.5 m.
    KindCase{"OrlaIce", "--ice --set instrumentLength=1 --set iceDisplay=1 --set iceQuantity=1", "\r", "TD-4240+0000\r",
             "TD-4544+0670\r", "value3 Th: 2.60    m", "ORLAS  iW230GRD001010 3", ",H,1,100,,113.6,,-0.5,2.5", 1, "0"},
    KindCase{"teskb", "--set surveyListB=1", "T$+010", "T$+0100-0250\r", "T\x07+1000+0012\r", "value1 C:25.00   mS/m",
             "TESKB   W222GRD0110   3", ",H,0,1000/1000,,-12,,-28.8"},
    KindCase{"TESKDD", "--set surveyListA=2", "00\r", "T$+0100-0250\r", "T +0500-0250\r", "value2 CH:25.00",
             "TESKD   W222GRD0012   3", ",V,0,100,,,-1.44,0.72"},
    KindCase{"TESK", "--set lengthUnits=1", "100\r", "T$+0100\r", "T\x04-0250\r", "value1 C:-10.00  mS/m",
             "TESKS   W222GRD1010   3", ",H,0,100,,25,,"},
    // The notes beside its file say that its ranges are ten times as large.
    KindCase{"TeskTwelve", "--tesk-x10 --storage-class 0", "0000\r", "T$+0100+0000\r", "T$-0250+0000\r",
             "value1 C:-100.00 mS/m", "TESKS   W222GRD0010    ", ",V,0,1000,250,,,", 1, "3"},
    KindCase{"VARDO", "--set surveyListB=4", "T$+0", "T$+0400+0000\r", "T\x14-0400+0000\r", "value1 C:-10.00  mS/m",
             "VARDO   W230GRD0410   3", ",V,0,100,10,,,,,"},
    KindCase{"MIRKA", "", "\r\r", "T$+0004-0008\r", "T$-0004+0012\r", "value1 C:-10.00", "MIRKA   W210GRD0010   3",
             ",V,0,100,10,-3"},
    KindCase{"GLACO", "", "23I045", "T123I045", "T250I007", "value1 Th:1.23", "GLACO   W210GRD0010   3",
             ",V,0,100,2.5,7", 0},
    // Records may hold line feeds and pairs of 255. The second: conductivities 40 and 80, inphase 40.
    KindCase{"TESK2", "--set tesk2Variant=2", "\x02\n\xff\xff"s, "T\x06\0\0\x84\0\xff\xff\x84\0\n\n\0\0\xff\xff"s,
             "t\x02\x84\0\x84\0\x88\0\x84\0\0\n\n\0\xff\xff"s, "value1 C:1279.96 mS/m", "TESK2   W230GRD00102    3",
             ",H,0,,,80,,1.15276,,40,,0.28819", 2},
};

void PrintTo(const KindCase& item, std::ostream* out) { *out << item.test; }

class SurveyOf : public testing::TestWithParam<KindCase> {};

TEST_P(SurveyOf, GivesItsFileByteForByteAndItsTable) {
  const auto& item = GetParam();
  // A TESK must be heard before there is a file. The others throw away what comes before they read.
  Survey survey(item.kind, "--name E2E " + item.options, "", "", item.second);
  auto& logger = survey.logger;
  ASSERT_TRUE(survey.send(item.middle));
  ::poll(nullptr, 0, 100);  // lest a bad ice record takes the next one with it
  survey.instrument.wakeUp(logger, item.first, item.shown);
  ASSERT_EQ(logger.answer("go"), "ok");
  EXPECT_EQ(logger.answer("line 7"), "error not while logging: pause first");
  ASSERT_TRUE(survey.send(item.first) && survey.send(item.second));
  ASSERT_TRUE(logger.counted("readings", 2));
  ASSERT_EQ(logger.answer("pause"), "ok");
  EXPECT_EQ(logger.answer("pause"), "error not logging");
  ASSERT_EQ(logger.answer("line 7/a 100 -2.5 E"), "ok");
  ASSERT_TRUE(logger.answer("comment Fence \xC3\xA4 by the road").starts_with("ok Fence ? by"));
  ASSERT_EQ(logger.answer("station 42.5"), "ok");
  ASSERT_EQ(logger.answer("go"), "ok");
  ASSERT_TRUE(survey.send(item.second));
  ASSERT_TRUE(logger.counted("readings", 3));
  ASSERT_EQ(logger.answer("exit"), "ok");  // pauses first

  const std::size_t length = item.header.size() + 1;
  const auto text = [&](const std::string& sent) { return sent.substr(0, sent.size() - item.end); };
  std::string factors;
  for (int n = 1; length == 26 && n <= 6; ++n) factors += records(26, {fmt::format("O{}     0.000      0.000", n)});
  const auto expected =
      bytesOf({.header = item.header,
               .firstPiece = {withTick(length, text(item.first)), withTick(length, text(item.second))},
               .lastReading = text(item.second),
               .comment = "CFence ? by ",
               .length = length,
               .calibration = factors});
  EXPECT_EQ(logger.nextLine("summary"), fmt::format("summary readings=3 gps=0 events=4 bytes={}", expected.size()));
  EXPECT_EQ(logger.end(), 0) << logger.errors();
  EXPECT_EQ(survey.content(), expected);
  const auto table = run(KALMIRA_EXPORT, survey.path);
  EXPECT_EQ(table.status, 0) << table.errors;
  EXPECT_EQ(std::count(table.output.begin(), table.output.end(), '\n'), 4);
  EXPECT_THAT(table.output, HasSubstr("\n7/a,42.500,1,"));
  EXPECT_THAT(table.output.substr(table.output.find_last_of('\n', table.output.size() - 2)),
              HasSubstr(item.row + ",,,,,,,,,,,,"));
}

INSTANTIATE_TEST_SUITE_P(Kinds, SurveyOf, testing::ValuesIn(kCases), [](const auto& row) { return row.param.test; });

// Three seconds are 33 records of 91 ms: every 33rd is a reading in Auto mode.
TEST(AutoMode, TakesEveryNthRecord) {
  Survey survey("ORLA", "--set surveyMode=0 --set readingsInterval=3");
  ASSERT_EQ(survey.logger.answer("go"), "ok");
  std::string stream;
  for (int i = 1; i <= 66; ++i) stream += fmt::format("T${:+05d}+0000\r", i);
  ASSERT_TRUE(survey.send(stream));
  ASSERT_TRUE(survey.logger.counted("readings", 2));
  survey.logger.leave();
  EXPECT_EQ(survey.content().substr(24, 24).substr(11, 7), "  0.333");
  EXPECT_THAT(survey.content(), HasSubstr(records24({withTick(24, "X$STARTED"), withTick(24, "T$+0033+0000"),
                                                     withTick(24, "T$+0066+0000"), withTick(24, "X$PAUSED")})));
}

// A receiver's sentences are cut into records of 22 bytes a piece.
TEST(Gps, WritesEverySentenceAsItComesOutsideManualMode) {
  Survey survey("ORLA", "--gps {gps}");
  // A receiver is heard once its fix is shown.
  survey.receiver.wakeUp(survey.logger, "$GPGSA,A,3,10,07,05,02,29,04,08,13,,,,,1.72,1.03,1.38*0A\r\n", "pdop");
  ASSERT_EQ(survey.logger.answer("go"), "ok");
  ASSERT_TRUE(survey.receiver.send("$GPGGA,101308.00,5057.90,N,00659.10,E,1,08,1.1,50.0,M,46.0,M,,*5D\r\n"));
  ASSERT_TRUE(survey.logger.counted("gps", 1));
  ASSERT_TRUE(survey.send(kOrlaRecord));
  ASSERT_TRUE(survey.logger.counted("readings", 1));
  // A wrong checksum, none, text of another kind, a short sentence that is right.
  ASSERT_TRUE(survey.receiver.send("$GPGSA,A,3*00\r\n$GPRMC,101309.00,A,5057.90,N\r\nhello Jo\xFF\r\n$A*41\r\n"));
  ASSERT_TRUE(survey.logger.counted("gps", 5));
  survey.logger.leave();
  const std::string tick = withTick(24, "!");
  EXPECT_THAT(survey.content(), testing::StartsWith("ORLA2   W230GPS"));
  EXPECT_THAT(survey.content(),
              EndsWith(records24({withTick(24, "X$STARTED"), "@$GPGGA,101308.00,5057.", "#90,N,00659.10,E,1,08,1",
                                  "#.1,50.0,M,46.0,M,,*5D", tick, withTick(24, "T$+0400-0800"), "?$GPGSA,A,3*00",
                                  "\"$GPGSA,A,3*00", tick, "?$GPRMC,101309.00,A,505", "\"7.90,N", tick, "?hello Jo?",
                                  "\"hello Jo?", tick, "@$A*41", "#$A*41", tick, withTick(24, "X$PAUSED")})));
}

// The simulator knows where it walks: 1.2 m/s to the north-east from a fixed place and moment, over ground that is a
// function of the way alone. A position that were a second off would meet other ground.
TEST(Export, PutsEachReadingWhereTheWalkWas) {
  constexpr double kSeconds = 14, kMetresPerDegree = 111320, kStartLatitude = 59.4125, kStartLongitude = 24.7361;
  const TempFolder folder;
  Program sim(KALMIRA_SIM, fmt::format("--kind MIRKA --gps-rate 30 --bad-checksum 0.1 --seconds {}", kSeconds + 20));
  const auto instrument = sim.nextLine("instrument ").substr(11);
  Logger logger(
      "MIRKA", instrument, folder.path(),
      fmt::format("--set readingsInterval=0.091 --gps {} --seconds {}", sim.nextLine("gps ").substr(4), kSeconds));
  const auto path = logger.file();
  EXPECT_EQ(logger.end(), 0) << logger.errors();
  const auto outcome = run(KALMIRA_EXPORT, path.string());
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.errors, HasSubstr("with a wrong checksum"));
  std::istringstream table(outcome.output);
  std::string row;
  std::getline(table, row);
  double farthest = 0;
  std::vector<double> here, beside;  // differences of the ground
  while (std::getline(table, row)) {
    std::vector<std::string> cells;
    std::istringstream line(row);
    for (std::string cell; std::getline(line, cell, ',');) cells.push_back(cell);
    if (cells.at(11).empty()) continue;
    const double east =
        (parseReal(cells[11]) - kStartLongitude) * kMetresPerDegree * std::cos(kStartLatitude * std::numbers::pi / 180);
    const double north = (parseReal(cells[12]) - kStartLatitude) * kMetresPerDegree;
    ASSERT_THAT(cells.at(21), testing::StartsWith("2025-05-12T08:00:"));
    const double way = sim::kWalk_mPerS * parseReal(cells[21].substr(17));
    farthest = std::max(farthest, std::hypot(east - way / std::numbers::sqrt2, north - way / std::numbers::sqrt2));
    const double along = (east + north) / std::numbers::sqrt2;
    for (auto [list, off] : {std::pair{&here, 0.0}, {&beside, 1.2}}) {
      const auto ground = sim::groundResponse(1, along + off, 4, true);
      list->push_back(std::abs(ground.inphase - parseReal(cells[10])));
    }
  }
  ASSERT_GT(here.size(), 50U);
  EXPECT_LT(farthest, 0.4) << "the receiver's own noise is up to 0.25 m";
  const auto mean = [](const std::vector<double>& list) {
    return std::accumulate(list.begin(), list.end(), 0.0) / static_cast<double>(list.size());
  };
  EXPECT_LT(3 * mean(here), mean(beside)) << mean(here);
}

TEST(LargeFile, CanBeLeftAtAnyTimeAndLeavesNothingBehind) {
  const TempFolder folder;
  const auto file = folder.path() / "a.ROR", out = folder.path() / "out";
  // Enough rows that a table has begun, and then more zeros than anybody waits for.
  std::string records = records24({"ORLA2   W230GRD0000"});
  for (int i = 0; i < 5000; ++i) records += records24({"T$-0400+0800      83150"});
  writeFile(file, records);
  std::filesystem::resize_file(file, 10'000'000'000);
  for (const auto& [program, option] : {std::pair{KALMIRA_CHECK, " --repair "}, {KALMIRA_EXPORT, " -o "}}) {
    Program writing(program, file.string() + option + out.string());
    for (int waited = 0; waited < kPatienceMs && !std::filesystem::exists(out.string() + ".new"); waited += 10) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    writing.signal(SIGINT);
    EXPECT_EQ(writing.end(), 1);
    EXPECT_THAT(writing.output() + writing.errors(), HasSubstr("was read up to byte "));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    // What has nothing to tidy up ends by the signal itself.
    Program reading(program, file.string());
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    reading.signal(SIGINT);
    EXPECT_EQ(reading.end(), 128 + SIGINT);
  }
}

}  // namespace
}  // namespace kalmira
