#include <fmt/format.h>
#include <gmock/gmock.h>

#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <limits>
#include <random>
#include <sstream>
#include <vector>

#include "datafile/record_format.h"
#include "datafile/record_text.h"
#include "export/cells.h"
#include "export/survey_writer.h"
#include "support/export_case.h"

namespace kalmira {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

constexpr std::string_view kCommon = "line,station,repeat,date,time,tick,dipole,marker,range,";

// A line from station 10 on by 1.5, at 10:00:00.000 on 8 March 2024, which is tick 1000.
std::string lineBlock(std::size_t recordLength) {
  return records(recordLength, {"L7", "B      10.00", "AN            1.500", "Z08032024 10:00:00"}) +
         formatTimeMark(static_cast<int>(recordLength), {.hour = 10}, 1000);
}

const std::string kLast =
    ",longitude,latitude,altitude,easting,northing,epsg,fix,satellites,hdop,position_gap,utc,grid_x,grid_y,segment,"
    "file,"
    "kind\n";
// The last cells of a row without a position.
std::string placeless(std::string_view grid, int segment, std::string_view fileAndKind) {
  return fmt::format(",,,,,,,,,,,,{},{},{}\n", grid.empty() ? "," : grid, segment, fileAndKind);
}

struct Exported {
  std::string table;
  RowsResult result;
};

Exported exported(const std::string& bytes, const RowOptions& options) {
  RecordReader reader;
  EXPECT_EQ(reader.open(std::make_unique<std::istringstream>(bytes)).kind, FileErrorKind::none);
  Exported out;
  OutputFrame frame;
  takeChannels(frame, reader.header());
  const auto writer =
      makeCsvWriter(frame, TableOf::readings, [&](std::string_view text) { return out.table += text, true; });
  out.result = writeFile(reader, *writer, frame, {.name = "F", .header = reader.header(), .notes = {}}, options);
  EXPECT_TRUE(writer->finish());
  return out;
}
Exported exported(const std::string& bytes, bool teskRangeTimes10 = false) {
  return exported(bytes, {.teskRangeTimes10 = teskRangeTimes10});
}

// What the row of a reading says from "dipole" on.
struct ReadingCase {
  std::string header1, columns, reading, cells;
};

const std::string kFour = "cond_v,cond_h,inph_v,inph_h";
const std::string kSix = "cond_v10,cond_v20,cond_v40,cond_h10,cond_h20,cond_h40";
const std::string kEight = "cond1_v,cond1_h,inph1_v,inph1_h,cond2_v,cond2_h,inph2_v,inph2_h";
// Mode bytes: 64 trigger; 32 vertical (VARDO: horizontal); the range code in the lowest three bits.
const std::vector<ReadingCase> kReadings{
    {"ORLA2   W230GRD0000    \n", kFour, "T%+0640+0640", "V,0,1000,,,,"},  // odd: battery voltages
    {"ORLA2   W230GRD0001    \n", kFour, "T$-0400+0800", "V,0,100,,,2.5,"},
    // 62.5 mS/m lies between 64.58 at 3.4 m and 61.11 at 3.5 m; the last is beyond the table.
    {"ORLAS  iW230GRD000010  \n", kFour + ",thickness", "T\x04-2500+0000", "H,0,100,,62.5,,0,3.4599423"},
    {"ORLAS  iW230GRD000010  \n", kFour + ",thickness", "T\0-9999+0000"s, "H,0,1000,,2499.75,,0,"},
    {"ORLAS  iW230GRD000000  \n", kFour, "T\x04-2500+0000", "H,0,100,,62.5,,0"},
    {"TESKB   W222GRD0000    \n", kFour, "T1-1000-0025", "V,0,1000/100,3.125,,0.36,"},
    {"TESKD   W222GRD0001    \n", kFour, "T'-0012-0013", "V,0,1000,12,13,,"},
    {"TESKS   W222GRD0001    \n", kFour, "TB+1000     ", "H,1,100,,,,-2.88"},
    {"VARDO   W230GRD0520    \n", kSix, "T\"-4000+0000", "H,0,10,,,,,10,"},
    {"VARDO   W230GRD0520    \n", kSix, "T8-4000+0000", "H,0,3,,,,,,3"},
    {"GLACO   W210GRD0000    \n", "thickness,inph", "T123I456    ", "V,0,100,1.23,456"},
    // 5 x 33792 / 1024 - 160 = 5, times 8 = 40; word 32778 is 0.390625.
    {"TESK2   W230GRD00011     \n", kEight, "T\x04\x80\x0A\x84\0\x84\0\x84\0\n\n\n\n"s, "V,1,,40,,40,,0.390625,,40,"}};

TEST(Export, HasTheChannelsOfEachKind) {
  for (const auto& [header1, columns, reading, cells] : kReadings) {
    const std::size_t length = header1.size();
    // The first of its line, at station 10.
    const auto table =
        exported(header1 + lineBlock(length) + formatReading(static_cast<int>(length), reading, 2234)).table;
    const auto name = instrumentOf(findInstrumentByHeader(header1)->kind).name;
    EXPECT_EQ(table, std::string(kCommon) + columns + kLast + "7,10.000,1,2024-03-08,10:00:01.234,2234," + cells +
                         placeless("7.000,10.000", 1, fmt::format("F,{}", name)));
  }
}

// The file does not tell that a TESK's ranges are ten times as large: whoever exports it does.
TEST(Export, TakesTheRangesTimesTenOfATeskAlone) {
  const auto row = [](const std::string& header1, const std::string& reading) {
    const auto table = exported(header1 + lineBlock(24) + formatReading(24, reading, 2234), true).table;
    const auto from = table.rfind(",2234,");
    return table.substr(from, table.find(",,,,,,,,,", from) - from);
  };
  EXPECT_EQ(row("TESKS   W222GRD0001    \n", "T$-0123     "), ",2234,V,0,1000,123");
  EXPECT_EQ(row("TESKB   W222GRD0000    \n", "T$-0400+0800"), ",2234,V,0,100/100,-80,,1.152");
}

TEST(Export, AppliesTheLastCalibrationBeforeAReading) {
  const std::string reading = formatReading(26, std::string("T\x04\x80\0\x84\0\x84\0\x84\0\0\0\0\0", 14), 2000);
  const std::string bytes = "TESK2   W230GRD00001     \n" + lineBlock(26) +
                            records(26, {"O1     0.500      9.000", "O2     0.250      9.000",
                                         "O5     2.000      9.000", "O6    -1.000      9.000"}) +
                            reading + records(26, {"O1     0.000      0.500", "O3     7.000      0.000"}) + reading;
  EXPECT_EQ(exported(bytes).table, std::string(kCommon) +
                                       "cond1_v,cond1_h,inph1_v,inph1_h,cond2_v,cond2_h,inph2_v,inph2_h" + kLast +
                                       "7,10.000,1,2024-03-08,10:00:01.000,2000,V,1,,42,,0.65276,,-1,,0.038190007," +
                                       placeless("7.000,10.000", 1, "F,TESK2") +
                                       "7,11.500,1,2024-03-08,10:00:01.000,2000,V,1,,42,,1.15276,,-1,,0.038190007," +
                                       placeless("7.000,11.500", 1, "F,TESK2"));
}

const std::string kSurvey = records24({
    "GLACO   W210GRD0020",
    "H 030809A            1",
    "LN,1",
    "B     100.00",
    "AW           -0.125",
    "Z31122023 23:59:58",
    "*23:59:58.5004294966796",
    "X$STARTED    4294966796",
    "T100I001     4294966695",  // received before the mark was written
    "T200I002     4294967295",
    "2300I003           1000",  // behind the counter's wrap and midnight
    "CFence             1100",
    "@$GPGGA,,,,,,0,,,,,,,*6",
    "#6",
    "!                  1150",
    "S       7.00 00000270",
    "*00:00:02.700      1700",
    "T400I004           1800",
    "T5..I.x5           xxxx",
    "T600I006           2800",
});
const std::string kSurveyTable =
    "line,station,repeat,date,time,tick,dipole,marker,range,thickness,inph" + kLast +
    "\"N,1\",100.000,1,2023-12-31,23:59:58.399,4294966695,V,0,100,1,1" + placeless("", 1, "F,GLACO") +
    "\"N,1\",99.875,1,2023-12-31,23:59:58.999,4294967295,V,0,100,2,2" + placeless("", 1, "F,GLACO") +
    "\"N,1\",99.875,2,2024-01-01,00:00:00.000,1000,V,0,100,3,3" + placeless("", 1, "F,GLACO") +
    "\"N,1\",7.000,1,2024-01-01,00:00:02.800,1800,V,0,100,4,4" + placeless("", 1, "F,GLACO") +
    "\"N,1\",6.875,1,,,,V,0,100,0.05,0" + placeless("", 1, "F,GLACO") +
    "\"N,1\",6.750,1,2024-01-01,00:00:03.800,2800,V,0,100,6,6" + placeless("", 1, "F,GLACO");

TEST(Export, FollowsStationsAndTime) {
  const auto all = exported(kSurvey);
  EXPECT_EQ(all.table, kSurveyTable);
  EXPECT_EQ(all.result.readings, 6U);
  EXPECT_EQ(all.result.timelessReadings, 1U);
  EXPECT_EQ(all.result.unreadableRecords, 0U);
}

TEST(Export, OfAFileCutAnywhereIsTheBeginningOfTheWholeExport) {
  for (std::size_t length = 15; length < kSurvey.size(); ++length) {
    const auto part = exported(kSurvey.substr(0, length));
    ASSERT_TRUE(kSurveyTable.starts_with(part.table)) << length;
    ASSERT_EQ(part.table.back(), '\n');
    // Every reading whose record is whole is there: the six stand at records 9 to 11, 18, 19 and 20.
    std::uint64_t whole = 0;
    for (const std::size_t record : {9U, 10U, 11U, 18U, 19U, 20U}) whole += length >= record * 24 ? 1 : 0;
    ASSERT_EQ(part.result.readings, whole) << length;
  }
}

TEST(Export, LeavesCellsEmptyWithoutALineBlockAndCountsRecordsThatSayNothing) {
  const auto table = exported("GLACO   W210GRD0000    \n" + formatReading(24, "T100I001", 5)).table;
  EXPECT_EQ(table.substr(table.find('\n') + 1), ",,1,,,5,V,0,100,1,1" + placeless("", 1, "F,GLACO"));
  const auto damaged = exported("GLACO   W210GRD0000    \n" + records24({"L1", "B      1O.00", "AN", "Z99", "*"}));
  EXPECT_EQ(damaged.result.unreadableRecords, 4U);
}

// A part of a file has the places that the whole gives it, also those between fixes outside of it.
TEST(Export, OfAStretchIsThatPartOfTheWholeExport) {
  std::string bytes =
      records24({"MIRKA   W210GPS0000", "L1", "B       0.00", "AN            1.000", "*10:00:00.000      1000"});
  const auto fix = [&](int second) {
    const auto body =
        fmt::format("GNGGA,0900{}.00,5000.000{},N,00900.0000,E,4,09,0.8,100.0,M,,M,,", second, second % 10);
    unsigned sum = 0;
    for (const char c : body) sum ^= static_cast<unsigned char>(c);
    bytes +=
        formatGpsSentence(24, fmt::format("${}*{:02X}", body, sum), static_cast<unsigned>(second) * 1000, '@', '#');
  };
  fix(10);
  const auto begin = bytes.size();
  bytes += records24({"L2", "B       0.00", "AN            1.000", "*10:00:09.500     10500"}) +
           formatReading(24, "T$-0004-0040", 10500);
  const auto end = bytes.size();
  fix(11);
  fix(12);
  const auto rowsOf = [&](const FileStretch& stretch) {
    RecordReader scanner;
    EXPECT_EQ(scanner.open(std::make_unique<std::istringstream>(bytes)).kind, FileErrorKind::none);
    const auto scan = scanPositions(scanner, {}, std::nullopt);
    const auto out = exported(bytes, {.stretch = stretch, .scan = &scan});
    EXPECT_EQ(out.result.readings, 1U);
    return out.table;
  };
  const auto whole = rowsOf({});
  EXPECT_THAT(whole, testing::HasSubstr(",9.00000000,50.0000"));
  EXPECT_EQ(rowsOf({.begin = begin, .end = end}), whole);
}

TEST(CsvText, WritesNumbersWholeAndWithoutANegativeZero) {
  struct Row {
    double value;
    int decimals;
    std::string_view text;
  };
  for (const auto& [value, decimals, text] :
       {Row{0.390625, 5, "0.39063"}, Row{0.999996, 5, "1.00000"}, Row{-0.000004, 5, "0.00000"}, Row{-0.0, 3, "0.000"},
        Row{-12.5, 0, "-13"}, Row{0.05, 3, "0.050"}, Row{-1e20, 2, "-100000000000000000000.00"},
        Row{std::numeric_limits<double>::infinity(), 3, ""}, Row{std::numeric_limits<double>::quiet_NaN(), 3, ""}}) {
    std::string cell;
    appendReal(cell, value, decimals);
    EXPECT_EQ(cell, text);
  }
}

TEST(CsvText, QuotesTexts) {
  std::string row(100, '|');
  char* at = row.data();
  for (const auto* text : {"12N", "a b", "", "a,b", "5\"", " a"}) at = putText(at + 1, text);
  EXPECT_EQ(row.substr(0, static_cast<std::size_t>(at - row.data())), "|12N|a b||\"a,b\"|\"5\"\"\"|\" a\"");
}

// Against the general conversions, over all magnitudes.
template <typename Real>
void expectShortest(Real value) {
  std::array<char, kCellRoom> ours{}, theirs{};
  const char* const end = putShortest(ours.data(), value);
  const auto general = std::to_chars(theirs.data(), theirs.data() + theirs.size(), value, std::chars_format::fixed);
  Real again = 0;
  EXPECT_EQ(std::from_chars(ours.data(), end, again).ptr, end);
  EXPECT_EQ(again, value) << ours.data();
  EXPECT_EQ(end - ours.data(), general.ptr - theirs.data()) << ours.data() << " " << theirs.data();
}
TEST(CsvText, NumbersAreThoseOfTheGeneralConversions) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 20000; ++i) {
    const auto units = static_cast<double>(static_cast<std::int64_t>(random()) >> (i % 64));
    const double value = units / std::pow(10, i % 10);
    expectShortest(value);
    expectShortest(static_cast<float>(value));
    if (std::abs(units) >= 1e15) continue;
    std::string cell;
    appendReal(cell, value, i % 10);
    EXPECT_EQ(cell, fmt::format("{:.{}f}", units == 0 ? 0.0 : value, i % 10));
  }
}

const std::string kSurvey24 = records24({
    "ORLA2   W230GRD0220",
    "H A",
    "L12",
    "B     100.00",
    "AN            2.500",
    "Z08032024 10:00:00",
    "*10:00:00.000      1000",
    "X$STARTED          1100",
    "T$-0400+0800       1200",
    "2\4-0800+0400       1250",
    "3$-0440+0800       1260",
    "T$-0400+0800       1300",
    "CFence, old        1300",
    "S     120.00 10000100",
    "*10:00:01.000      2000",
    "T$-0400+0800       2100",
    "2\4-0800+0400       2150",
    "X$PAUSED           2300",
    "L7",
    "AN            2.500",
    "*10:00:02.000      3000",
    "T$-0400+0800       3100",
});

const std::string kWhole = records24({"MIRKA   W210GRD0000", "H A", "L1", "B       0.00", "AN            1.000",
                                      "Z08032024 10:00:00", "*10:00:00.000      1000", "T$-0004-0040       1500"});
const std::string kRow =
    "1,0.000,1,2024-03-08,10:00:00.500,1500,V,0,100,10,10" + placeless("1.000,0.000", 1, "a.RMI,MIRKA");
const std::string kTable = "line,station,repeat,date,time,tick,dipole,marker,range,cond,inph" + kLast + kRow;

TEST_F(ExportCommand, SaysWhatWasWrongWithAFileAndGivesWhatItCan) {
  struct Case {
    std::string bytes;
    int status;
    std::string said;
  };
  const auto torn = "ends in the middle of a record; its last ";
  for (const auto& [bytes, status, wanted] :
       {Case{"", kExportFailed, "is empty; nothing exported"},
        Case{"MIRKA", kExportFailed, "is too short to be a data file; nothing exported"},
        Case{std::string(1000, '\0'), kExportFailed,
             "is no data file: no instrument's header stands at its start; nothing exported"},
        Case{kWhole + "T$-00", kExportDone, torn + "5 bytes were left out|x: 1 reading exported"s},
        Case{kWhole.substr(0, 191), kExportFailed, torn + "23 bytes were left out|x: 0 readings exported"s},
        Case{kWhole.substr(0, 20), kExportFailed,
             "the first record is damaged; its settings are taken as far as they can be read|x: 0 readings exported"},
        Case{kWhole.substr(0, 168), kExportDone, "holds no reading"},
        Case{kWhole + std::string(24, '\0'), kExportDone, "24 damaged bytes were left out|x: 1 reading exported"},
        Case{kWhole.substr(0, 144) + kWhole.substr(168), kExportDone,
             "1 reading without a time: no time mark before them, or no readable tick"}}) {
    EXPECT_EQ(run({file("x", bytes), "-o", path("t.csv")}), status);
    EXPECT_EQ(fmt::format("{}", fmt::join(said, "|")), "x: " + wanted);
  }
}

TEST_F(ExportCommand, JoinsFilesOfOneKindUnderOneHeaderAndGoesOnAfterABadOne) {
  EXPECT_EQ(run({path("none"), "-o", path("t.csv")}), kExportFailed);
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  const auto other = file("o.IOR", records24({"GLACO   W210GRD0000", "T100I001           1500"}));
  const auto whole = file("a.RMI", kWhole);
  EXPECT_EQ(run({path("none"), folder.path().string(), whole, whole, "-o", path("t.csv")}), kExportFailed);
  EXPECT_EQ(content("t.csv"), kTable + kRow);
  EXPECT_THAT(said, ElementsAre("none: cannot be opened: No such file or directory; nothing exported",
                                folder.path().string() + ": is a folder; nothing exported"));
  EXPECT_EQ(run({whole, other, "-o", path("u.csv")}), kExportUsage);
  EXPECT_THAT(said,
              ElementsAre("o.IOR: is of GLACO, the files before it are of MIRKA; --mixed puts both into one table"));
  EXPECT_FALSE(std::filesystem::exists(path("u.csv")));
  EXPECT_EQ(run({whole, other, "--mixed", "-o", path("u.csv")}), kExportDone);
  EXPECT_THAT(content("u.csv"), testing::HasSubstr(",1500,V,0,100,10,10,,"));
  EXPECT_THAT(content("u.csv"), testing::HasSubstr(",1500,V,0,100,,1,1,"));
}

TEST_F(ExportCommand, PlacesReadingsByTheirSentencesOrByTheSurveysOwnGrid) {
  const auto sentence = [](std::string_view body, std::uint32_t tick) {
    unsigned sum = 0;
    for (const char c : body) sum ^= static_cast<unsigned char>(c);
    return formatGpsSentence(24, fmt::format("${}*{:02X}", body, sum), tick, '@', '#');
  };
  const auto fix = [&](int second, std::string_view longitude, int quality, std::string_view height,
                       std::uint32_t tick) {
    return sentence(fmt::format("GNRMC,0900{}.00,A,,,,,,,080324,,,A", second), tick - 50) +
           sentence(fmt::format("GNGGA,0900{}.00,5000.0000,N,{},E,{},{:02},0.{},{},M,,M,,", second, longitude, quality,
                                second, second - 2, height),
                    tick);
  };
  const auto bytes = records24({"MIRKA   W210GPS0000", "H A", "L12N", "B       0.00", "AN            1.000",
                                "Z08032024 10:00:00", "*10:00:00.000      1000"}) +
                     fix(10, "00859.9990", 4, "100.0", 1100) + formatReading(24, "T$-0004-0040", 1500) +
                     records24({"X$PAUSED           1700"}) + fix(11, "00900.0010", 5, "102.0", 2100) +
                     formatReading(24, "T$-0004-0040", 2500);
  const auto input = file("g.RMI", bytes);
  const auto row = [&](std::vector<std::string> arguments, int index) {
    arguments.insert(arguments.end(), {input, "-o", path("t.csv")});
    EXPECT_EQ(run(arguments), kExportDone);
    std::istringstream table(content("t.csv"));
    std::string line;
    for (int i = 0; i <= index + 1; ++i) std::getline(table, line);
    return line.substr(line.find(",10,10,") + 7);
  };
  EXPECT_EQ(
      row({"--gps-lag", "0.1"}, 0),
      "9.00000000,50.00000000,101.000,500000.000,5538630.703,32632,5,10,0.9,1.000,2024-03-08T09:00:10.500Z,12.000,"
      "0.000,1,g.RMI,MIRKA");
  EXPECT_THAT(said, ElementsAre(path("g.RMI").substr(path("").size()) + ": 1 reading without a position"));
  file("g.RMI.json", R"({"gpsLag": 0.1, "antennaUp": 0.5, "site": 7})");
  EXPECT_THAT(row({}, 0), testing::StartsWith("9.00000000,50.00000000,100.500,500000.000,5538630.703,"));
  EXPECT_THAT(said, testing::Contains(testing::StartsWith("g.RMI: the notes beside it: ")));
  EXPECT_THAT(row({"--gps-lag", "0", "--antenna", "0,0,1"}, 0), testing::HasSubstr(",99.800,"));
  std::filesystem::remove(path("g.RMI.json"));
  EXPECT_EQ(row({}, 1), ",,,,,,,,,,2024-03-08T09:00:11.400Z,12.000,1.000,2,g.RMI,MIRKA");
  EXPECT_THAT(row({"--utm", "33", "--antenna", "0,0,1.5"}, 0),
              testing::HasSubstr(",99.300,70134.259,5555901.573,32633,"));
  EXPECT_THAT(row({"--grid", "500000,5500000,90,32N"}, 1),
              testing::MatchesRegex("9.000.*,49.65.*,,500001.000,5499988.000,32632,,,,,2024.*"));
  EXPECT_EQ(optionsOf(exportCommandLine, "a --antenna 1,2,3").positions.up_m, 3);
  for (const char* wrong : {"--utm 61", "--utm x", "--gps-lag 11", "--max-gap -1", "--antenna 1,2", "--antenna 1,2,3,4",
                            "--grid 1,2,3,32", "--grid 1,2,32N"}) {
    ExportRequest request;
    EXPECT_THAT(saidOf(exportCommandLine(request), std::string("a ") + wrong), testing::HasSubstr(" wants ")) << wrong;
  }
}

TEST_F(ExportCommand, TellsOfEventsWithTheirTimeAndPlace) {
  const auto input = file("e.ROR", kSurvey24);
  ASSERT_EQ(run({input, "--events", "-o", path("e.csv")}), kExportDone);
  const auto at = [](std::string_view event, std::string_view line, std::string_view station, std::string_view time,
                     std::string_view tick, int segment) {
    const auto date = time.empty() ? "" : "2024-03-08";
    return fmt::format("e.ROR,ORLA,{},{},{},{},{},{},,,,,,,,{}\n", event, line, station, date, time, tick, segment);
  };
  EXPECT_EQ(content("e.csv"),
            "file,kind,event,text,line,station,date,time,tick,utc,longitude,latitude,altitude,easting,northing,epsg,"
            "segment\n" +
                at("line,12", "12", "100.000", "10:00:00.000", "1000", 1) +
                at("event,$STARTED", "12", "100.000", "10:00:00.100", "1100", 1) +
                at("comment,\"Fence, old\"", "12", "102.500", "10:00:00.300", "1300", 1) +
                at("station,120.00", "12", "120.000", "10:00:01.000", "2000", 1) +
                at("event,$PAUSED", "12", "120.000", "10:00:01.300", "2300", 1) +
                at("line,7", "7", "", "10:00:02.000", "3000", 1));
}

// Two readings of both dipoles, the first of them repeated.
TEST_F(ExportCommand, PutsAStationIntoOneRowAndWritesBlocksOfLines) {
  const auto input = file("e.ROR", kSurvey24);
  ASSERT_EQ(run({input, "--wide", "-o", path("e.csv")}), kExportDone);
  const auto row = [](std::string_view cells, std::string_view grid, int segment) {
    return fmt::format("{}{}", cells, placeless(grid, segment, "e.ROR,ORLA"));
  };
  EXPECT_EQ(content("e.csv"),
            std::string(kCommon) + "cond_v,cond_h,inph_v,inph_h" + kLast +
                row("12,100.000,1,2024-03-08,10:00:00.200,1200,V,0,100,11,20,-2,-1", "12.000,100.000", 1) +
                row("12,102.500,1,2024-03-08,10:00:00.300,1300,V,0,100,10,,-2,", "12.000,102.500", 1) +
                row("12,120.000,1,2024-03-08,10:00:01.100,2100,V,0,100,10,20,-2,-1", "12.000,120.000", 1) +
                row("7,,1,2024-03-08,10:00:02.100,3100,V,0,100,10,,-2,", "", 2));
  file("e.ROR.json", R"({"project": "Dyke", "kind": "ORLA"})");
  ASSERT_EQ(run({input, "--wide", "-o", path("e.XYZ")}), kExportDone);
  EXPECT_EQ(content("e.XYZ"),
            "/ grid_x grid_y altitude station cond_v cond_h inph_v inph_h\n/ project: Dyke\n"
            "Line 12\n12.000 100.000 * 100.000 11 20 -2 -1\n12.000 102.500 * 102.500 10 * -2 *\n"
            "12.000 120.000 * 120.000 10 20 -2 -1\nLine 7\n* * * * 10 * -2 *\n");
  ASSERT_EQ(run({input, "--format", "xyz", "--grid", "500000,5500000,0,32N", "-o", path("e.txt")}), kExportDone);
  EXPECT_THAT(content("e.txt"), testing::HasSubstr("\n500012.000 5500100.000 * 100.000 10 * -2 *\n"));
}

TEST_F(ExportCommand, ReplacesAnEarlierTableButNeverADataFile) {
  const auto input = file("a.RMI", kWhole);
  file("t.csv", "an earlier table");
  EXPECT_EQ(run({input, "-o", path("t.csv")}), kExportDone);
  EXPECT_EQ(content("t.csv"), kTable);
  EXPECT_FALSE(std::filesystem::exists(path("t.csv.new")));

  const auto damaged = file("b.RMI", "\1\2\3");
  EXPECT_EQ(run({input, damaged, "-o", path("./b.RMI")}), kExportFailed);
  EXPECT_EQ(content("b.RMI"), "\1\2\3");
  EXPECT_EQ(run({input, "-o", file("c.RMI", kWhole + "more")}), kExportFailed);
  EXPECT_THAT(said, ElementsAre("c.RMI: is a data file, which is never overwritten"));
  EXPECT_EQ(content("c.RMI"), kWhole + "more");
}

TEST_F(ExportCommand, TellsThatTheTableCouldNotBeWritten) {
  const auto input = file("a.RMI", kWhole);
  for (const auto& [to, why] : {std::pair{std::string("/dev/full"), "No space left on device"},
                                {path("nowhere/t.csv"), "No such file or directory"},
                                {folder.path().string(), "Is a directory"}}) {
    EXPECT_EQ(run({input, "-o", to}), kExportFailed);
    EXPECT_THAT(said, ElementsAre(testing::EndsWith(fmt::format(": cannot be written: {}", why))));
  }
}

TEST_F(ExportCommand, LeavesNothingBehindWhenItIsLeftAndTellsOfAFileThatIsCutMeanwhile) {
  std::string many;
  for (int i = 0; i < 20000; ++i) many += kWhole.substr(168);
  const auto input = file("a.RMI", kWhole + many);
  file("t.csv", "an earlier table");
  goOn = [](std::string_view name, std::uint64_t done, std::uint64_t total) {
    EXPECT_EQ(name, "a.RMI");
    EXPECT_EQ(total, 192 + 480000U);
    return done < 300000;
  };
  EXPECT_EQ(run({input, "-o", path("t.csv")}), kExportFailed);
  EXPECT_THAT(said, ElementsAre(testing::MatchesRegex("a.RMI: was read up to byte 3.* only; nothing is written")));
  EXPECT_EQ(content("t.csv"), "an earlier table");
  EXPECT_FALSE(std::filesystem::exists(path("t.csv.new")));

  goOn = [&](std::string_view, std::uint64_t done, std::uint64_t) {
    if (done > 300000) std::filesystem::resize_file(input, 200000);
    return true;
  };
  EXPECT_EQ(run({input, "-o", path("t.csv")}), kExportDone);
  EXPECT_THAT(said.at(0), testing::StartsWith("a.RMI: has become shorter while it was read"));
}

}  // namespace
}  // namespace kalmira
