#include "viewer/line_extract.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/viewed_file.h"
#include "viewer/readout.h"
#include "viewer/row_files.h"

namespace kalmira {
namespace {

using namespace std::string_literals;

// "10.00 10100000, break, ..." from LINE1; LINE2 must have the same stations and as many rows.
std::string stationsOf(const ViewedFile& viewed) {
  const auto line1 = viewed.line1(), line2 = viewed.line2();
  const auto rows = static_cast<std::size_t>(viewed.line.rowCount());
  EXPECT_EQ(line1.size(), rows * kLine1Row);
  EXPECT_EQ(line2.size(), rows * kLine2Row);
  std::string out;
  for (std::size_t row = 0; row < rows; ++row) {
    const auto text = line1.substr(row * kLine1Row, kLine1Row), values = line2.substr(row * kLine2Row, kLine2Row);
    EXPECT_EQ(text.substr(0, 12), values.substr(0, 12));
    EXPECT_TRUE(text.back() == '\n' && values.back() == '\n');
    out += out.empty() ? "" : ", ";
    if (values.find('.') == std::string::npos) {
      out += "break";
      continue;
    }
    out += text.substr(text.find_first_not_of(' '), 12 - text.find_first_not_of(' ')) + ' ';
    for (std::size_t flag = 13; flag < 28; flag += 2) out += text[flag];
  }
  return out;
}

const std::string kBreak = "break, break, break, break";
const std::string V = "10100000", H = "01010000", both = "11110000";

std::string newStation(std::string_view station) { return records24({"S" + std::string(station) + " 10000000"}); }

TEST(ExtractLine, rowsOfStations) {
  struct Case {
    std::string what, header, records, rows;
  };
  for (const auto& item : std::initializer_list<Case>{
           {"one a reading", kOrla, vertical() + vertical('t'), "10.00 " + V + ", 11.50 " + V},
           {"new station", kOrla, vertical() + newStation("     100.00") + horizontal('T') + vertical(),
            "10.00 " + V + ", " + kBreak + ", 100.00 " + H + ", 101.50 " + V},
           {"both dipoles", kOrlaBothDipoles, vertical() + horizontal('2') + horizontal('T') + vertical('2'),
            "10.00 " + both + ", 11.50 " + both},
           {"a station not whole bears the next one's number", kOrlaBothDipoles,
            vertical() + vertical() + horizontal('2'), "11.50 " + V + ", 11.50 " + both},
           {"the last station, not whole, is lost", kOrlaBothDipoles, vertical() + horizontal('2') + vertical(),
            "10.00 " + both},
           {"not whole before a new station", kOrlaBothDipoles,
            vertical() + newStation("     100.00") + vertical() + horizontal('2'),
            kBreak + ", 100.00 " + V + ", 100.00 " + both},
           {"a repeat that nobody expects", kOrla, vertical() + horizontal('2') + vertical(),
            "10.00 " + V + ", 11.50 " + H + ", 11.50 " + V},
           {"a repeat without a first reading", kOrlaBothDipoles, horizontal('2') + horizontal('2') + vertical(),
            "8.50 " + H + ", 8.50 " + H},
           {"other records", kOrla,
            records24({"Cgate                 1", "X$PAUSED              1"}) +
                formatGpsSentence(24, "$GPGGA,1", 5, '@', '#') + vertical() +
                records24({"B     999.00", "AN            7.000"}) + vertical(),
            "10.00 " + V + ", 11.50 " + V},
           {"until the next line", kOrla, vertical() + lineBlock("L8") + vertical(), "10.00 " + V},
           {"station that is no number", kOrla, newStation("        abc") + vertical(), kBreak + ", 0.00 " + V},
           {"too wide", kOrla, newStation("-9999999999") + vertical(), kBreak + ", -9999999999 " + V},
           {"cut in a record", kOrla, vertical() + vertical().substr(0, 23), "10.00 " + V},
           {"zero bytes", kOrla, vertical() + std::string(48, '\0') + vertical(), "10.00 " + V + ", 11.50 " + V},
           {"bytes lost", kOrla, vertical() + vertical().substr(9) + vertical(), "10.00 " + V + ", 11.50 " + V}}) {
    SCOPED_TRACE(item.what);
    ViewedFile viewed(item.header + lineBlock() + item.records);
    EXPECT_EQ(viewed.extract().kind, ViewerErrorKind::none);
    EXPECT_EQ(stationsOf(viewed), item.rows);
  }
}

TEST(ExtractLine, bytesOfRows) {
  ViewedFile viewed(kOrla + lineBlock() + vertical() + newStation("     100.00"));
  ASSERT_EQ(viewed.extract().kind, ViewerErrorKind::none);
  const std::string break1 = "          -1 0 0 0 0 0 0 0 0\n";
  const std::string break2 =
      "          -1       -9999       -9999       -9999       -9999       -9999       -9999       -9999"
      "       -9999\n";
  EXPECT_EQ(viewed.line1(), "       10.00 1 0 1 0 0 0 0 0\n" + break1 + break1 + break1 + break1);
  EXPECT_EQ(viewed.line2(),
            "       10.00       10.00        0.00       -2.00        0.00        0.00        0.00        0.00"
            "        0.00\n" +
                break2 + break2 + break2 + break2);
}

// Offsets of cond. 1 and inphase 1; auxiliary words 3108 (1000 - 50) and 0.
TEST(ExtractLine, tesk2TakesTheFactorsOfTheFile) {
  const auto reading = formatReading(26, "T\x04\x80\0\x80\0\x80\0\x80\0\x0C\x24\0\0"s, 1000);
  const auto lineStart = records(26, {"L1", "B       0.00", "AN            1.000", "Z08032024 10:00:00",
                                      "O1     1.000      9.000", "O5    12.500      9.000"});
  ViewedFile viewed(kTesk2 + lineStart + reading + records(26, {"O5    20.000     12.500"}) + reading);
  ASSERT_EQ(viewed.extract().kind, ViewerErrorKind::none);
  ASSERT_EQ(viewed.line.rowCount(), 2);
  const auto first = viewed.point(1);
  EXPECT_EQ(first.channels.present, (std::array{1, 0, 1, 0, 1, 0, 1, 0}));
  EXPECT_EQ(first.channels.value[0], 12.5F);
  EXPECT_EQ(first.channels.value[2], -1.0F);
  EXPECT_TRUE(first.hasExtras);
  EXPECT_EQ(first.extras, (std::array{950.0F, -50.0F}));
  EXPECT_EQ(viewed.point(2).channels.value[0], 20.0F);
}

TEST(ScanDataFile, linesInFileOrder) {
  ViewedFile viewed(kOrla + records24({"HBENCH"}) + lineBlock("L7") + vertical() + lineBlock("LAB CD") +
                    lineBlock("L12345678") + lineBlock("L\xE9"));
  ASSERT_TRUE(viewed.opened);
  std::vector<std::string> names;
  for (const auto& line : viewed.file.lines) names.push_back(lineNameOf(line));
  EXPECT_EQ(names, (std::vector<std::string>{"7", "AB", "12345678", "?"}));
  EXPECT_EQ(viewed.file.lines[0].offset, 48U);
  EXPECT_EQ(viewed.file.lines[1].offset, 48U + 6 * 24);
  EXPECT_EQ(viewed.extract(2).kind, ViewerErrorKind::none);
  EXPECT_EQ(viewed.line.rowCount(), 0);
  EXPECT_EQ(viewed.extract(5).kind, ViewerErrorKind::noSuchLine);
  EXPECT_EQ(viewed.extract(0).kind, ViewerErrorKind::noSuchLine);
}

// The header alone, and records of another length than its own.
TEST(ScanDataFile, filesThatHoldNoLine) {
  for (const auto& bytes : {""s, "ORLA2"s, kOrla, kOrla.substr(0, 20), kTesk2 + lineBlock() + vertical()}) {
    ViewedFile viewed(bytes);
    EXPECT_EQ(viewed.opened, bytes.size() > 5);
    if (!viewed.opened) continue;
    for (std::size_t line = 1; line <= viewed.file.lines.size(); ++line) viewed.extract(line);
    EXPECT_EQ(viewed.extract(viewed.file.lines.size() + 1).kind, ViewerErrorKind::noSuchLine);
  }
}

TEST(ExtractLine, aFileThatShrinksGrowsOrVanishes) {
  TempFolder folder;
  const auto path = folder.path() / "A.ROR";
  // More than the reader keeps of the file.
  std::string firstLine = kOrla + lineBlock();
  for (int i = 0; i < 4000; ++i) firstLine += vertical();
  writeFile(path, firstLine + lineBlock("L8") + vertical());
  ViewedFile viewed("");
  ASSERT_EQ(viewed.reader.open(path).kind, FileErrorKind::none);
  ASSERT_EQ(ScanDataFile(viewed.reader, viewed.file).kind, FileErrorKind::none);
  EXPECT_EQ(viewed.extract(1).kind, ViewerErrorKind::none);
  EXPECT_TRUE(readStationNotes(viewed.reader, viewed.file, viewed.line, 1).notes.empty());

  std::filesystem::resize_file(path, firstLine.size() - std::size_t{24} * 3990);
  const auto error = viewed.extract(2);
  EXPECT_EQ(error.kind, ViewerErrorKind::cannotRead);
  EXPECT_EQ(error.text.substr(0, error.text.find(':')), "The data file has become shorter while it was read");
  EXPECT_TRUE(readStationNotes(viewed.reader, viewed.file, viewed.line, 4000).notes.empty());
  viewed.reader.open(path);
  EXPECT_EQ(viewed.extract(1).kind, ViewerErrorKind::none);
  EXPECT_EQ(viewed.line.rowCount(), 10);

  std::ofstream(path, std::ios::binary | std::ios::app) << vertical() << vertical();
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(viewed.extract(1).kind, ViewerErrorKind::none);
    EXPECT_EQ(viewed.line.rowCount(), 12);
    std::filesystem::remove(path);  // what is open can be read on
  }
}

TEST(RowFiles, numbersAreRoundedByTheirExactValue) {
  const TempFolder folder;
  const auto rows = rowFilesOf(folder.path(), 2);
  RowWriter writer;
  ASSERT_EQ(writer.open(rows).kind, ViewerErrorKind::none);
  std::vector<std::pair<double, std::string>> numbers{{-123456789.0, "-123456789.0"},
                                                      {1e300, "999999999999"},
                                                      {-std::numeric_limits<double>::infinity(), "-99999999999"},
                                                      {std::nan(""), "        0.00"}};
  for (const double value : {0.125, 0.375, 1.005, -0.001, -99999998.996}) numbers.emplace_back(value, "");
  std::mt19937 random(7);
  std::uniform_real_distribution<double> values(-1e5, 1e5);
  for (int i = 0; i < 20000; ++i) numbers.emplace_back(i % 2 == 0 ? values(random) : i * 0.005, "");
  std::string expected;
  for (const auto& [value, text] : numbers) {
    writer.appendRow(value, {});
    expected += (text.empty() ? fmt::format("{:12.2f}", value) : text) + " 0 0 0 0 0 0 0 0\n";
  }
  EXPECT_EQ(writer.finish().kind, ViewerErrorKind::none);
  EXPECT_EQ(readFile(rows.line1), expected);
}

TEST(RowFiles, thatCannotBeWritten) {
  ViewedFile viewed(kOrla + lineBlock() + vertical());
  writeFile(viewed.folder.path() / "Storage", "in the way");
  auto error = viewed.extract();
  EXPECT_EQ(error.kind, ViewerErrorKind::cannotWrite);
  EXPECT_NE(error.text.find("LINE1.RXX"), std::string::npos) << error.text;

  viewed.rows = rowFilesOf(viewed.folder.path(), 2);
  std::filesystem::create_directories(viewed.rows.line2.parent_path());
  std::filesystem::create_symlink("/dev/full", viewed.rows.line2);
  error = viewed.extract();
  EXPECT_EQ(error.kind, ViewerErrorKind::cannotWrite);
  EXPECT_NE(error.text.find("No space left"), std::string::npos) << error.text;
}

TEST(LoadLineRows, everyRowKeepsItsColumn) {
  ViewedFile viewed(kOrla + lineBlock() + vertical() + records24({"S     100.00 10000000"}) + vertical());
  ASSERT_EQ(viewed.extract().kind, ViewerErrorKind::none);
  LoadOutcome outcome;
  // "-" a cleared point, "x" a break, else the station and its first value.
  const auto load = [&](int firstRow, int firstColumn = 0, int lastColumn = 3) {
    static std::vector<StationPoint> points;
    outcome = LoadLineRows(viewed.rows, viewed.file, viewed.line, firstColumn, lastColumn, firstRow, points);
    std::string out;
    for (const auto& point : points) {
      const auto value = point.channels.value[0];
      EXPECT_EQ(point.channels.present[0], point.valid ? 1 : 0);
      out += point.valid                             ? fmt::format("{:g}:{:g} ", point.station, value)
             : point.station == -1 && value == -9999 ? "x "
                                                     : "- ";
    }
    return out;
  };
  EXPECT_EQ(load(1), "10:10 x x x ");
  EXPECT_EQ(load(5), "x 100:10 - - ");
  EXPECT_EQ(load(0), "- 10:10 x x ");
  EXPECT_EQ(load(-9), "- - - - ");
  EXPECT_EQ(load(6, 1, 2), "- 100:10 - - ");
  std::filesystem::resize_file(viewed.rows.line1, 5 * kLine1Row + 10);
  EXPECT_EQ(load(5), "x - - - ");
  std::filesystem::remove(viewed.rows.line2);
  EXPECT_EQ(load(1), "- - - - ");
  EXPECT_TRUE(outcome.line2Missing && !outcome.line1Missing);
  std::filesystem::remove(viewed.rows.line1);
  load(1);
  EXPECT_TRUE(outcome.line1Missing && outcome.line2Missing);
}

// Case 0 of the short instrument: 62.5 mS/m lies between 64.58 at 3.4 m and 61.11 at 3.5 m.
TEST(LoadLineRows, iceThicknessOfHorizontalReadings) {
  ViewedFile viewed(kOrlaIce + lineBlock() + formatReading(24, "T\x04-2500+0000", 1) +
                    formatReading(24, "T$-2500+0000", 1) + formatReading(24, "T\x04-0040+0000", 1));
  ASSERT_EQ(viewed.extract().kind, ViewerErrorKind::none);
  const auto inside = viewed.point(1);
  EXPECT_TRUE(inside.hasThickness);
  EXPECT_NEAR(inside.thickness, 3.45994F, 1e-4F);
  EXPECT_EQ(inside.channels.present[4], 1);
  EXPECT_FALSE(viewed.point(2).hasThickness);
  EXPECT_EQ(viewed.point(3).thickness, -99.0F);
  EXPECT_EQ(viewed.point(3).channels.present[4], 0);
}

std::vector<std::string> notesOf(ViewedFile& viewed, int row) {
  std::vector<std::string> texts;
  for (const auto& note : readStationNotes(viewed.reader, viewed.file, viewed.line, row).notes)
    texts.push_back(noteText(note));
  return texts;
}

using Texts = std::vector<std::string>;

TEST(StationNotes, whatStandsBetweenTwoStations) {
  const auto note = [](char tag, std::string_view text, std::uint32_t tick) { return formatNote(24, tag, text, tick); };
  ViewedFile viewed(kOrla + lineBlock() + note('X', "$STARTED", 1500) + vertical('T', 2000) + note('C', "gate", 62000) +
                    note('X', "$PAUSED", 63000) + formatReading(24, "Td-0400+0800", 65000) +  // with the trigger held
                    note('C', "turn", 66000) + records24({"S     100.00 10020350"}) +
                    formatTimeMark(24, {.hour = 10, .minute = 2, .second = 3}, 124000) + note('C', "fence", 125000) +
                    vertical('T', 126000) + vertical('T', 127000) + lineBlock("L8") + note('C', "other line", 1));
  ASSERT_EQ(viewed.extract().kind, ViewerErrorKind::none);
  ASSERT_EQ(viewed.line.rowCount(), 8);
  EXPECT_EQ(notesOf(viewed, 1),
            (Texts{"10:00:00 Event: $STARTED", "10:01:01 Comment: gate", "10:01:02 Event: $PAUSED"}));
  EXPECT_EQ(notesOf(viewed, 2), (Texts{"10:01:04 Mark", "10:01:05 Comment: turn"}));
  for (int row = 3; row <= 6; ++row)
    EXPECT_EQ(notesOf(viewed, row), (Texts{"10:02:03 New station 100.00", "10:02:04 Comment: fence"}));
  for (const int row : {0, 7, 8, 9}) EXPECT_EQ(notesOf(viewed, row), Texts{});
}

TEST(StationNotes, thousandsOfThemAreCut) {
  std::string bytes = kOrla + lineBlock() + vertical();
  for (int i = 0; i < 5000; ++i) bytes += formatNote(24, 'C', "again", 1);
  ViewedFile viewed(bytes + formatReading(24, "T%+0640+0640", 1));
  ASSERT_EQ(viewed.extract().kind, ViewerErrorKind::none);
  const auto notes = readStationNotes(viewed.reader, viewed.file, viewed.line, 1);
  EXPECT_TRUE(notes.more);
  EXPECT_EQ(notes.notes.size(), 40U);
  EXPECT_FALSE(notes.batteryLevels);
  EXPECT_TRUE(readStationNotes(viewed.reader, viewed.file, viewed.line, 2).batteryLevels);
}

TEST(Readout, fieldsOfEachKind) {
  using namespace std::string_literals;
  struct Case {
    std::string header, reading;
    Texts fields;
  };
  for (const auto& item : std::initializer_list<Case>{
           {kOrla, "T$-0400+0800", {"C V: 10.00 mS/m", "I V: -2.00 ppt"}},
           {"ORLA2   W230GRD0001    \n", "T$-0400+0800", {"I V: 2.50 ppt"}},
           {kOrlaIce, "T\x04-2500+0000", {"C H: 62.50 mS/m", "I H: 0.00 ppt", "Th: 11.35 ft"}},
           {"ORLAS  iW230GRD000010  \n", "T\x04-2500+0000", {"C H: 62.50 mS/m", "I H: 0.00 ppt", "Th: 3.46 m"}},
           {kOrlaIce, "T\x04-0040+0000", {"C H: 1.00 mS/m", "I H: 0.00 ppt", "Th: out of range"}},
           {"VARDO   W230GRD0000    \n", "T\x02-0400+0000", {"C V20: 1.00 mS/m"}},
           {"GLACO   W210GRD0000    \n", "T123I045    ", {"Th: 1.23 m", "I: 45.00 ppt"}},
           {kTesk2,
            "T\x02\x80\0\x80\0\x80\0\x84\0\x0C\x24\0\0"s,
            {"C1 H: 0.00 mS/m", "I1 H: 1.15 ppt", "C2 H: 0.00 mS/m", "I2 H: 0.00 ppt", "T: 950.00", "t: -50.00"}},
           {"TESK2   W230GRD00011     \n",
            "T\x02\x80\0\x80\0\x80\0\x84\0\x0C\x24\0\0"s,
            {"C1 H: 0.00 mS/m", "I1 H: 40.00", "C2 H: 0.00 mS/m", "I2 H: 0.00", "T: 950.00", "t: -50.00"}}}) {
    SCOPED_TRACE(item.header + item.reading);
    const std::size_t length = item.header.size();
    ViewedFile viewed(item.header + lineBlock("L7", length) +
                      formatReading(static_cast<int>(length), item.reading, 3726000));
    ASSERT_EQ(viewed.extract().kind, ViewerErrorKind::none);
    Texts expected{"Stn: 10.00", "Time: 11:02:05"};
    expected.insert(expected.end(), item.fields.begin(), item.fields.end());
    Texts texts;
    for (const auto& field : readoutFields(viewed.file, viewed.line, 1, viewed.point(1)))
      texts.push_back(readoutText(field));
    EXPECT_EQ(texts, expected);
    EXPECT_TRUE(readoutFields(viewed.file, viewed.line, 2, viewed.point(2)).empty());
  }
}

TEST(Readout, scaleStatus) {
  Settings settings;
  settings.conductivityMaximum = 40.0F;
  settings.inphaseMinimum = -20.0F;
  for (const auto& [header, text] :
       std::initializer_list<std::pair<std::string, std::string>>{{kOrla, "C:0/40  I:-20/10"},
                                                                  {"ORLA2   W230GRD0001    \n", "I:-20/10"},
                                                                  {kOrlaIce, "T:9.0/10.0  I:-20/10"},
                                                                  {"TESKD   W222GRD0002    \n", "C:0/40"},
                                                                  {"TESKS   W222GRD0021    \n", "I:-20/10"},
                                                                  {"VARDO   W230GRD0000    \n", "C:0/40"},
                                                                  {"GLACO   W210GRD0000    \n", "T:0.0/40.0  I:-20/10"},
                                                                  {kTesk2, "C:0/40  I:-20/10"}})
    EXPECT_EQ(scaleStatusText(ViewedFile(header).file, settings), text);
}

}  // namespace
}  // namespace kalmira
