#include <gmock/gmock.h>
#include <poll.h>

#include <fmt/format.h>

#include "datafile/record_text.h"
#include "end_to_end/programs.h"

namespace kalmira {
namespace {

using namespace std::string_literals;
using testing::EndsWith;
using testing::HasSubstr;

// One kind's survey in Wheel mode, where every record is a reading. An interval of a minute keeps the watch
// over the link quiet, however slow the machine is.
struct KindCase {
  const char* test;
  std::string kind;
  std::vector<std::string> options;
  std::string middle;                 // of a record, sent first: the stream does not wait for us
  std::string first, second;          // as sent
  std::string shown;                  // of the first, on the panel
  std::string firstText, secondText;  // as in the file
  std::string header;
  std::string row;  // what the export says of the second, from the dipoles on
  std::size_t length = 24;
};

const std::array kCases{
    KindCase{.test = "Orla",
             .kind = "ORLA",
             .options = {},
             .middle = "34-0567\r",
             .first = "T$+0400-0800\r",
             .second = "Td-0412+0796\r",
             .shown = "value1 C:-10.00  mS/m",
             .firstText = "T$+0400-0800",
             .secondText = "Td-0412+0796",
             .header = "ORLA2   W230GRD0010   3",
             .row = ",V,1,100,10.30000,,-1.99000,"},
    // Under a short instrument 106 mS/m over salt water of 2000 mS/m are 2.6 m of ice, 113.6 mS/m are 2.5 m.
    KindCase{.test = "OrlaIce",
             .kind = "0",
             .options = {"--ice", "--set", "instrumentLength=1", "--set", "iceDisplay=1", "--set",
                         "iceQuantity=1"},
             .middle = "\r",
             .first = "TD-4240+0000\r",
             .second = "TD-4544+0670\r",
             .shown = "value3 Th: 2.60    m",
             .firstText = "TD-4240+0000",
             .secondText = "TD-4544+0670",
             .header = "ORLAS  iW230GRD001010 3",
             .row = ",H,1,100,,113.60000,,-0.50000,2.50000"},
    KindCase{.test = "Teskb",
             .kind = "teskb",
             .options = {"--set", "surveyListB=1"},
             .middle = "T$+010",
             .first = "T$+0100-0250\r",
             .second = "T\x07+1000+0012\r",
             .shown = "value1 C:25.00   mS/m",
             .firstText = "T$+0100-0250",
             .secondText = "T\x07+1000+0012",
             .header = "TESKB   W222GRD0110   3",
             .row = ",H,0,1000/1000,,-12.00000,,-28.80000"},
    KindCase{.test = "Teskdd",
             .kind = "TESKDD",
             .options = {"--set", "surveyListA=2"},
             .middle = "00\r",
             .first = "T$+0100-0250\r",
             .second = "T +0500-0250\r",
             .shown = "value2 CH:25.00",
             .firstText = "T$+0100-0250",
             .secondText = "T +0500-0250",
             .header = "TESKD   W222GRD0012   3",
             .row = ",V,0,100,,,-1.44000,0.72000"},
    KindCase{.test = "TeskSeven",
             .kind = "TESK",
             .options = {"--set", "lengthUnits=1"},
             .middle = "100\r",
             .first = "T$+0100\r",
             .second = "T\x04-0250\r",
             .shown = "value1 C:-10.00  mS/m",
             .firstText = "T$+0100",
             .secondText = "T\x04-0250",
             .header = "TESKS   W222GRD1010   3",
             .row = ",H,0,100,,25.00000,,"},
    KindCase{.test = "TeskTwelve",
             .kind = "3",
             .options = {"--tesk-x10", "--storage-class", "0"},
             .middle = "0000\r",
             .first = "T$+0100+0000\r",
             .second = "T$-0250+0000\r",
             .shown = "value1 C:-100.00 mS/m",
             .firstText = "T$+0100+0000",
             .secondText = "T$-0250+0000",
             .header = "TESKS   W222GRD0010    ",
             .row = ",V,0,100,25.00000,,,"},
    KindCase{.test = "Vardo",
             .kind = "VARDO",
             .options = {"--set", "surveyListB=4"},
             .middle = "T$+0",
             .first = "T$+0400+0000\r",
             .second = "T\x14-0400+0000\r",
             .shown = "value1 C:-10.00  mS/m",
             .firstText = "T$+0400+0000",
             .secondText = "T\x14-0400+0000",
             .header = "VARDO   W230GRD0410   3",
             .row = ",V,0,100,10.00000,,,,,"},
    KindCase{.test = "Mirka",
             .kind = "MIRKA",
             .options = {},
             .middle = "\r\r",
             .first = "T$+0004-0008\r",
             .second = "T$-0004+0012\r",
             .shown = "value1 C:-10.00",
             .firstText = "T$+0004-0008",
             .secondText = "T$-0004+0012",
             .header = "MIRKA   W210GRD0010   3",
             .row = ",V,0,100,10.00000,-3.00000"},
    KindCase{.test = "Glaco",
             .kind = "GLACO",
             .options = {},
             .middle = "23I045",
             .first = "T123I045",
             .second = "T250I007",
             .shown = "value1 Th:1.23",
             .firstText = "T123I045",
             .secondText = "T250I007",
             .header = "GLACO   W210GRD0010   3",
             .row = ",V,0,100,2.50000,7.00000"},
    // Records may hold line feeds and pairs of 255. The words of the second: conductivities 40 and 80,
    // inphase 40.
    KindCase{.test = "Tesk2",
             .kind = "TESK2",
             .options = {"--set", "tesk2Variant=2"},
             .middle = "\x02\n\xff\xff"s,
             .first = "T\x06\0\0\x84\0\xff\xff\x84\0\n\n\0\0\xff\xff"s,
             .second = "t\x02\x84\0\x84\0\x88\0\x84\0\0\n\n\0\xff\xff"s,
             .shown = "value1 C:1279.96 mS/m",
             .firstText = "T\x06\0\0\x84\0\xff\xff\x84\0\n\n\0\0"s,
             .secondText = "t\x02\x84\0\x84\0\x88\0\x84\0\0\n\n\0"s,
             .header = "TESK2   W230GRD00102    3",
             .row = ",H,0,,,80.00000,,1.15276,,40.00000,,0.28819",
             .length = 26},
};

std::string expectedFile(const KindCase& item) {
  const auto tick = [&](std::string_view text) { return withTick(item.length, text); };
  std::string calibration;
  if (item.length == 26) {
    for (const char n : std::string_view("123456")) {
      calibration += records(26, {"O"s + n + "     0.000      0.000"});
    }
  }
  return records(item.length, {item.header, "H E2E        1.000", "L1", "B       0.00", "AN            1.000",
                               "Z00000000 00:00:00"}) +
         calibration +
         records(item.length,
                 {tick("*00:00:00.000"), tick("X$STARTED"), tick(item.firstText), tick(item.secondText),
                  tick("X$PAUSED"), "L7/a", "B     100.00", "AE           -2.500", "Z00000000 00:00:00"}) +
         calibration +
         records(item.length,
                 {tick("*00:00:00.000"), tick("CFence ? by "), "S      42.50 00000000", tick("*00:00:00.000"),
                  tick("X$STARTED"), tick(item.secondText), tick("X$PAUSED")});
}

void PrintTo(const KindCase& item, std::ostream* out) {
  *out << item.test;
}

class SurveyOf : public testing::TestWithParam<KindCase> {};

TEST_P(SurveyOf, GivesItsFileByteForByteAndItsTable) {
  const auto& item = GetParam();
  const TempFolder folder;
  const Device device;
  auto options = item.options;
  options.insert(options.end(),
                 {"--name", "E2E", "--show", "--set", "surveyMode=1", "--set", "readingsInterval=60"});
  Logger logger(item.kind, device.name, folder.path(), options);
  // A TESK must be heard before there is a file. The others throw away what comes before they read.
  const auto path = logger.file([&] { ASSERT_TRUE(device.send(item.second)); });
  ASSERT_FALSE(path.empty());
  ASSERT_TRUE(device.send(item.middle));
  ::poll(nullptr, 0, 100);  // lest a bad ice record takes the next one with it
  device.wakeUp(logger, item.first, item.shown);

  ASSERT_EQ(logger.answer("go"), "ok");
  EXPECT_EQ(logger.answer("line 7"), "error not while logging: pause first");
  ASSERT_TRUE(device.send(item.first));
  ASSERT_TRUE(device.send(item.second));
  ASSERT_TRUE(logger.counted("readings", 2));
  ASSERT_EQ(logger.answer("pause"), "ok");
  EXPECT_EQ(logger.answer("pause"), "error not logging");
  ASSERT_EQ(logger.answer("line 7/a 100 -2.5 E"), "ok");
  ASSERT_EQ(logger.answer("comment Fence \xC3\xA4 by the road"), "ok");
  ASSERT_EQ(logger.answer("station 42.5"), "ok");
  ASSERT_EQ(logger.answer("go"), "ok");
  ASSERT_TRUE(device.send(item.second));
  ASSERT_TRUE(logger.counted("readings", 3));
  ASSERT_EQ(logger.answer("exit"), "ok");  // pauses first
  const auto content = expectedFile(item);
  EXPECT_EQ(logger.nextLine("summary"),
            fmt::format("summary readings=3 gps=0 events=4 bytes={}", content.size()));
  EXPECT_EQ(logger.end(), 0) << logger.errors();
  EXPECT_EQ(wiped(readFile(path), item.length), content);

  const auto table = run({KALMIRA_EXPORT, path});
  EXPECT_EQ(table.status, 0) << table.errors;
  EXPECT_EQ(std::count(table.output.begin(), table.output.end(), '\n'), 4);
  EXPECT_THAT(table.output, HasSubstr("\n7/a,42.500,1,"));
  EXPECT_THAT(table.output, EndsWith(item.row + "\n"));
}

INSTANTIATE_TEST_SUITE_P(Kinds, SurveyOf, testing::ValuesIn(kCases),
                         [](const auto& row) { return row.param.test; });

TEST(Commands, AreAnsweredOneByOne) {
  const TempFolder folder;
  const Device device;
  Logger logger("ORLA", device.name, folder.path());
  ASSERT_FALSE(logger.file().empty());
  EXPECT_EQ(logger.answer("GO"), "error there is no command \"GO\"");
  EXPECT_EQ(logger.answer("go now"), "error go takes nothing behind it");
  EXPECT_EQ(logger.answer("station here"), "error station takes one number");
  EXPECT_EQ(logger.answer("line 2 0 1 X"), "error the direction \"X\" is none of W, S, N, E");
  EXPECT_EQ(logger.answer("calibrate"), "error only the TESK2 is calibrated");
  EXPECT_EQ(logger.answer("mark"), "error only the TESK2 has a marker key");
  EXPECT_EQ(logger.answer("comment   x  "), "ok");
  logger.closeInput();
  EXPECT_THAT(logger.nextLine("summary"), HasSubstr("readings=0 gps=0 events=0"));
  EXPECT_EQ(logger.end(), 0);
}

TEST(NewLine, IsWhatTheDialogWouldProposeAndIsKeptForTheNextRun) {
  const TempFolder folder;
  const Device device;
  std::string content;
  {
    Logger logger("VARDO", device.name, folder.path(), {"--set", "modeIncrement[0]=2.5"});
    const auto path = logger.file();
    ASSERT_EQ(logger.answer("station 50"), "ok");
    ASSERT_EQ(logger.answer("line"), "ok");
    ASSERT_EQ(logger.answer("exit"), "ok");
    ASSERT_EQ(logger.end(), 0);
    content = wiped(readFile(path), 24);
  }
  EXPECT_THAT(content, HasSubstr(records24({"L1", "B       0.00", "AN            2.500"})));
  EXPECT_THAT(content, HasSubstr(records24({"L2.00", "B      50.00", "AS           -2.500"})));
  // The line is the operator's; the mode's increment was for that run only.
  Logger logger("VARDO", device.name, folder.path());
  const auto path = logger.file();
  ASSERT_EQ(logger.answer("exit"), "ok");
  EXPECT_THAT(readFile(path), HasSubstr(records24({"L2.00", "B      50.00", "AS            1.000"})));
}

// Three seconds are 33 records of 91 ms: every 33rd is a reading in Auto mode.
TEST(AutoMode, TakesEveryNthRecord) {
  const TempFolder folder;
  const Device device;
  Logger logger("ORLA", device.name, folder.path(), {"--show", "--set", "readingsInterval=3"});
  const auto path = logger.file();
  device.wakeUp(logger, "T$+0400-0800\r", "value1 C:-10.00");
  ASSERT_EQ(logger.answer("go"), "ok");
  std::string stream;
  for (int i = 1; i <= 66; ++i) stream += fmt::format("T${:+05d}+0000\r", i);
  ASSERT_TRUE(device.send(stream));
  ASSERT_TRUE(logger.counted("readings", 2));
  ASSERT_EQ(logger.answer("exit"), "ok");
  ASSERT_EQ(logger.end(), 0);
  const auto content = wiped(readFile(path), 24);
  EXPECT_EQ(content.substr(24, 24).substr(11, 7), "  0.333");
  EXPECT_THAT(content, HasSubstr(records24({withTick(24, "X$STARTED"), withTick(24, "T$+0033+0000"),
                                            withTick(24, "T$+0066+0000"), withTick(24, "X$PAUSED")})));
}

TEST(Marker, KeyMarksOneRecordOfATesk2) {
  const TempFolder folder;
  const Device device;
  const auto record = "T\x06\x80\0\x80\0\x80\0\x80\0\0\0\0\0\xff\xff"s;
  Logger logger("TESK2", device.name, folder.path(),
                {"--show", "--set", "surveyMode=1", "--set", "readingsInterval=60"});
  const auto path = logger.file();
  device.wakeUp(logger, record, "value1 C:0.00");
  ASSERT_EQ(logger.answer("go"), "ok");
  ASSERT_EQ(logger.answer("mark"), "ok");
  ASSERT_TRUE(device.send(record + record));
  ASSERT_TRUE(logger.counted("readings", 2));
  ASSERT_EQ(logger.answer("exit"), "ok");
  ASSERT_EQ(logger.end(), 0);
  const auto content = readFile(path);
  EXPECT_THAT(content, HasSubstr("T\x0e\x80\0\x80"s));
  EXPECT_THAT(run({KALMIRA_EXPORT, path}).output, testing::ContainsRegex(",V,1,,.*\n.*,V,0,,"));
}

}  // namespace
}  // namespace kalmira
