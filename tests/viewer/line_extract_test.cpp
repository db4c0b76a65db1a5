#include "viewer/line_extract.h"

#include "support/viewed_file.h"
#include "viewer/readout.h"

namespace kalmira {
namespace {

using namespace std::string_literals;

// "10.00 10100000, break, ..." from LINE1; LINE2 must have the same stations and as many rows.
std::string stationsOf(const ViewedFile& viewed) {
  const auto line1 = viewed.line1();
  const auto line2 = viewed.line2();
  EXPECT_EQ(line1.size() % kLine1Row, 0U);
  EXPECT_EQ(line1.size() / kLine1Row * kLine2Row, line2.size());
  EXPECT_EQ(line1.size() / kLine1Row, static_cast<std::size_t>(viewed.line.rowCount()));
  std::string out;
  for (std::size_t row = 0; (row + 1) * kLine1Row <= line1.size(); ++row) {
    const auto text = line1.substr(row * kLine1Row, kLine1Row);
    EXPECT_EQ(text.substr(0, 12), line2.substr(row * kLine2Row, 12));
    EXPECT_EQ(text.back(), '\n');
    EXPECT_EQ(line2[(row + 1) * kLine2Row - 1], '\n');
    out += out.empty() ? "" : ", ";
    if (line2.substr(row * kLine2Row, kLine2Row).find('.') == std::string::npos) {
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
           {"no reading", kOrla, "", ""},
           {"new station", kOrla, vertical() + newStation("     100.00") + horizontal('T') + vertical(),
            "10.00 " + V + ", " + kBreak + ", 100.00 " + H + ", 101.50 " + V},
           {"two new stations", kOrla, newStation("       5.00") + newStation("      -6.00") + vertical(),
            kBreak + ", " + kBreak + ", -6.00 " + V},
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
           {"ten characters", kOrla, newStation(" 1234567.89") + vertical(), kBreak + ", 1234567.89 " + V},
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

TEST(ScanDataFile, headerDigits) {
  using Case = std::tuple<std::string, int, bool, int>;  // readings a station, ice thickness, sea water
  for (const auto& [header, readings, ice, seaWater] :
       {Case{kOrla, 1, false, 0}, Case{kOrlaBothDipoles, 2, false, 0}, Case{"TESKS   W222GRD0220    \n", 4, false, 0},
        Case{"VARDO   W230GRD0520    \n", 6, false, 0}, Case{"ORLA2  iW230GRD00001A  \n", 1, true, 10},
        Case{"ORLA2  iW230GRD000003  \n", 1, false, 0}, Case{"ORLA2   W230GRD000013  \n", 1, false, 0}}) {
    const ViewedFile viewed(header + lineBlock());
    EXPECT_EQ(viewed.file.readingsPerStation, readings) << header;
    EXPECT_EQ(viewed.file.wantsThickness, ice) << header;
    EXPECT_EQ(viewed.file.seaWaterCase, seaWater) << header;
  }
}

TEST(ScanDataFile, filesThatAreNone) {
  for (const auto& bytes : {""s, std::string(4800, '\0'), "ORLA2"s, std::string(480, 'L')})
    EXPECT_FALSE(ViewedFile(bytes).opened);
  // A header and nothing else; records of the other length behind it.
  for (const auto& bytes : {kOrla, kOrla.substr(0, 20), kTesk2 + lineBlock() + vertical()}) {
    ViewedFile viewed(bytes);
    EXPECT_TRUE(viewed.opened);
    for (std::size_t line = 1; line <= viewed.file.lines.size(); ++line) viewed.extract(line);
    EXPECT_EQ(viewed.extract(viewed.file.lines.size() + 1).kind, ViewerErrorKind::noSuchLine);
  }
}

TEST(ScanDataFile, aFileOfLinesOnlyTakesSixteenBytesEach) {
  static_assert(sizeof(SurveyLine) == 16);
  std::string bytes = kOrla;
  for (int i = 0; i < 100000; ++i) bytes += "L                      \n";
  ViewedFile viewed(bytes);
  EXPECT_EQ(viewed.file.lines.size(), 100000U);
  EXPECT_EQ(viewed.extract(100000).kind, ViewerErrorKind::none);
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
  EXPECT_EQ(viewed.extract(2).kind, ViewerErrorKind::noSuchLine);
  EXPECT_TRUE(readStationNotes(viewed.reader, viewed.file, viewed.line, 4000).notes.empty());
  viewed.reader.open(path);
  EXPECT_EQ(viewed.extract(1).kind, ViewerErrorKind::none);
  EXPECT_EQ(viewed.line.rowCount(), 10);

  std::ofstream(path, std::ios::binary | std::ios::app) << vertical() << vertical();
  EXPECT_EQ(viewed.extract(1).kind, ViewerErrorKind::none);
  EXPECT_EQ(viewed.line.rowCount(), 12);
  std::filesystem::remove(path);
  EXPECT_EQ(viewed.extract(1).kind, ViewerErrorKind::none);
  EXPECT_EQ(viewed.line.rowCount(), 12);
}

}  // namespace
}  // namespace kalmira
