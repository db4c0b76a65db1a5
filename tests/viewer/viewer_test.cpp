#include <fmt/format.h>

#include <cmath>

#include "support/viewed_file.h"
#include "viewer/line_extract.h"
#include "viewer/navigation.h"
#include "viewer/plot_points.h"
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
           {"other records", kOrla,
            records24({"Cgate                 1", "X$PAUSED              1"}) +
                formatGpsSentence(24, "$GPGGA,1", 5, '@', '#') + vertical() +
                records24({"B     999.00", "AN            7.000"}) + vertical(),
            "10.00 " + V + ", 11.50 " + V},
           {"until the next line", kOrla, vertical() + lineBlock("L8") + vertical(), "10.00 " + V},
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
  for (const std::size_t none : {0U, 5U}) EXPECT_EQ(viewed.extract(none).kind, ViewerErrorKind::noSuchLine);
}

TEST(ScanDataFile, filesThatHoldNoLine) {
  for (const auto& bytes : {""s, "ORLA2"s, kOrla, kOrla.substr(0, 20), kTesk2 + lineBlock() + vertical()}) {
    ViewedFile viewed(bytes);
    EXPECT_EQ(viewed.opened, bytes.size() > 5);
    if (!viewed.opened) continue;
    for (std::size_t line = 1; line <= viewed.file.lines.size(); ++line) viewed.extract(line);
    EXPECT_EQ(viewed.extract(viewed.file.lines.size() + 1).kind, ViewerErrorKind::noSuchLine);
  }
}

TEST(ExtractLine, aFileThatShrinksOrGrows) {
  TempFolder folder;
  const auto path = folder.path() / "A.ROR";
  std::string firstLine = kOrla + lineBlock();
  for (int i = 0; i < 4000; ++i) firstLine += vertical();  // more than the reader keeps of the file
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
  EXPECT_EQ(viewed.extract(1).kind, ViewerErrorKind::none);
  EXPECT_EQ(viewed.line.rowCount(), 12);
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
    outcome = LoadLineRows(viewed.reader, viewed.file, viewed.line, firstColumn, lastColumn, firstRow, points);
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
  EXPECT_EQ(load(-9), "- - - - ");
  EXPECT_EQ(load(6, 1, 2), "- 100:10 - - ");
  std::filesystem::resize_file(viewed.rows.line1, 5 * kLine1Row + 10);
  EXPECT_EQ(load(5), "x - - - ");
  std::filesystem::remove(viewed.rows.line2);
  EXPECT_EQ(load(1), "- - - - ");
  EXPECT_TRUE(outcome.line2Missing && !outcome.line1Missing);
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

TEST(Readout, fieldsOfEachKind) {
  struct Case {
    std::string header, reading;
    Texts fields;
  };
  for (const auto& item : std::initializer_list<Case>{
           {kOrla, "T$-0400+0800", {"C V: 10.00 mS/m", "I V: -2.00 ppt"}},
           {"ORLA2   W230GRD0001    \n", "T$-0400+0800", {"I V: 2.50 ppt"}},
           {kOrlaIce, "T\x04-2500+0000", {"C H: 62.50 mS/m", "I H: 0.00 ppt", "Th: 11.35 ft"}},
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
    for (const auto& field :
         readoutFields(viewed.file, placeOfRow(viewed.reader, viewed.file, viewed.line, 1), viewed.point(1)))
      texts.push_back(readoutText(field));
    EXPECT_EQ(texts, expected);
  }
}

// Writes down what is drawn of the traces.
class TraceCanvas final : public ChartCanvas {
 public:
  void clear() override { drawn.clear(); }
  void scrollLeft(int) override { ADD_FAILURE(); }
  void eraseColumns(int, int) override { ADD_FAILURE(); }
  void gridPiece(int, int, int, int) override {}
  void line(int x1, int y1, int x2, int y2, int colour, int width) override {
    drawn.push_back(fmt::format("{}:{} {},{}-{},{}", colour, width, x1, y1, x2, y2));
  }
  void point(int x, int y, int colour, int width) override {
    drawn.push_back(fmt::format("{}:{} {},{}", colour, width, x, y));
  }
  std::vector<std::string> drawn;
};

using Drawn = std::vector<std::string>;

StationPoint stationPoint(std::size_t slot, float value) {
  StationPoint point{.valid = true, .station = 1, .channels = {}};
  point.channels.present[slot] = 1;
  point.channels.value[slot] = value;
  return point;
}

TEST(StationPlot, gapsStayGapsAndWhatIsOffTheScaleIsMarked) {
  Settings settings;
  for (std::size_t i = 0; i < kTraces; ++i) settings.traceColour[i] = static_cast<int>(i);
  settings.traceWidth.fill(1);
  settings.traceWidth[2] = 3;
  const ViewedFile viewed(kOrla);
  // 10 pixels a mS/m, 5 a ppt.
  auto two = stationPoint(0, 6);
  two.channels.present[2] = 1;
  const std::vector<StationPoint> points{
      stationPoint(0, 5), two, stationPoint(0, 6), StationPoint{}, stationPoint(2, 0), stationPoint(0, 7),
      stationPoint(0, 8)};
  TraceCanvas canvas;
  const auto setup = plotSetup(viewed.file, settings, 102, 100);
  PlotView view{.firstRow = 4, .rows = 7, .columns = 100};
  DrawStationPlot(canvas, setup, view, points);
  EXPECT_EQ(canvas.drawn,
            (Drawn{"0:1 1,50", "0:1 1,50-2,40", "2:3 2,50", "0:1 2,40-3,40", "2:3 5,50", "0:1 6,30", "0:1 6,30-7,20"}));
  view.columnsPerRow = 10;
  settings.traceShown[0] = 0;
  DrawStationPlot(canvas, plotSetup(viewed.file, settings, 102, 100), view, points);
  EXPECT_EQ(canvas.drawn, (Drawn{"2:3 16,50", "2:3 46,50"}));

  std::vector<StationPoint> far(60, stationPoint(0, 10.1F));
  far[0] = stationPoint(0, 10), far[30] = stationPoint(0, 0), far[31] = stationPoint(2, -11);
  std::string marks;
  for (const auto& mark : offScaleMarks(setup, PlotView{.rows = 60, .columns = 100}, far, 5))
    marks += fmt::format("{}{}{} ", mark.column, mark.above ? '^' : 'v', mark.colour);
  EXPECT_EQ(marks, "2^0 22^0 32v2 33^0 53^0 ") << "where it leaves, and on as long as it is away";
}

TEST(StationLabels, areAsFarApartAsTheirTextsAreWide) {
  std::vector<StationTick> ticks;
  for (int i = 0; i < 100; ++i) ticks.push_back({1 + i, i < 50 ? i : 1e6 * i});
  std::string texts;
  const auto labels = stationLabels(
      ticks, 100, [](const std::string& text) { return static_cast<int>(text.size()) * 3; }, 4);
  for (const auto& label : labels) texts += fmt::format("{}@{} ", label.text, label.left);
  EXPECT_EQ(texts, "0.00@0 22.00@16 41.00@35 69000000.00@54 ");
}

TEST(FittedSettings, holdTheShownTracesWithinRoundEnds) {
  struct Case {
    std::string header;
    std::vector<std::pair<std::size_t, TraceSpan>> spans;
    std::array<float, 6> ends;  // first scale, inphase, ice
  };
  const Settings usual;
  for (const auto& item : std::initializer_list<Case>{
           {kOrla, {}, {0, 10, -10, 10, 9, 10}},
           {kOrla, {{0, {12, 47.5F}}, {1, {20, 80}}, {2, {-0.2F, 0.3F}}}, {10, 50, -1, 1, 9, 10}},
           {kOrla, {{0, {30, 30}}, {3, {-2500, 1200}}}, {29, 31, -3000, 1500, 9, 10}},
           {kOrlaIce, {{1, {5, 60}}, {4, {0.02F, 3.42F}}}, {0, 10, -10, 10, 0, 4}},
           {"GLACO   W210GRD0000    \n", {{0, {1.2F, 4.1F}}}, {1, 4.5F, -10, 10, 9, 10}}}) {
    SCOPED_TRACE(item.header);
    const ViewedFile viewed(item.header);
    TraceSpans spans;
    for (const auto& [trace, span] : item.spans) spans[trace] = span;
    auto settings = usual;
    settings.traceShown[1] = 0;
    const auto fitted = fittedSettings(viewed.file, spans, settings);
    const std::array ends{fitted.conductivityMinimum, fitted.conductivityMaximum, fitted.inphaseMinimum,
                          fitted.inphaseMaximum,      fitted.iceMinimum,          fitted.iceMaximum};
    for (std::size_t i = 0; i < ends.size(); ++i) EXPECT_FLOAT_EQ(ends[i], item.ends[i]) << i;
  }
}

// A line of many readings, stations 10 on by 1.5; every thousandth begins with a comment.
TEST(LongLine, isKnownWithoutBeingRead) {
  constexpr int kRows = 40000;
  std::string bytes = kOrla + lineBlock();
  for (int i = 0; i < kRows; ++i) {
    if (i % 1000 == 999) bytes += formatNote(24, 'C', fmt::format("row {}", i), 1000);
    bytes += formatReading(24, fmt::format("T${:+05}+0800", -(i % 4000)), 1000);
  }
  ViewedFile viewed(bytes);
  ASSERT_EQ(viewed.extract().kind, ViewerErrorKind::none);
  EXPECT_EQ(viewed.line.rowCount(), kRows);
  EXPECT_LT(viewed.line1().size(), kRows * kLine1Row) << "written as far as it is looked at";
  EXPECT_LE(viewed.line.summary.blocks().size(), 16384U);
  const auto spans = viewed.line.summary.spans();
  EXPECT_FLOAT_EQ(spans[0].least, 0);
  EXPECT_FLOAT_EQ(spans[0].largest, 99.975F);
  EXPECT_FALSE(spans[1].any());
  const auto overview = lineOverview(viewed.line.summary, 10);
  EXPECT_FLOAT_EQ(overview.spans[9][0].largest, 99.975F);
  for (const int row : {1, 1025, 20001, kRows}) {
    const auto point = viewed.point(row);
    EXPECT_EQ(point.station, 10 + 1.5 * (row - 1));
    EXPECT_NEAR(point.channels.value[0], (row - 1) % 4000 / 40.0, 0.006);
    EXPECT_EQ(placeOfRow(viewed.reader, viewed.file, viewed.line, row).timeOfDayMs, 36000000U);
  }
  EXPECT_EQ(viewed.line1().size(), kRows * kLine1Row);
  EXPECT_EQ(notesOf(viewed, 39999), Texts{"10:00:00 Comment: row 39999"});
  EXPECT_EQ(notesOf(viewed, 39998), Texts{});
}

TEST(GrowingFile, goesOnWhereItStood) {
  TempFolder folder;
  const auto path = folder.path() / "A.ROR";
  const auto grow = [&path](const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::app) << bytes;
  };
  grow(kOrlaBothDipoles + lineBlock() + vertical());
  ViewedFile viewed("");
  ASSERT_EQ(viewed.reader.open(path).kind, FileErrorKind::none);
  ASSERT_EQ(ScanDataFile(viewed.reader, viewed.file).kind, FileErrorKind::none);
  ASSERT_EQ(viewed.extract().kind, ViewerErrorKind::none);
  struct Step {
    std::string bytes;
    bool rows, lines;
    int count;
  };
  for (const auto& step : {Step{horizontal('2'), true, false, 1}, Step{"", false, false, 1},
                           Step{vertical() + horizontal('2').substr(0, 9), false, false, 1},
                           Step{horizontal('2').substr(9), true, false, 2},
                           Step{lineBlock("L8") + vertical() + horizontal('2'), false, true, 2}}) {
    grow(step.bytes);
    EXPECT_EQ(extendScan(viewed.reader, viewed.file), step.lines);
    EXPECT_EQ(extendLine(viewed.reader, viewed.file, viewed.line), step.rows);
    EXPECT_EQ(viewed.line.rowCount(), step.count);
    EXPECT_EQ(viewed.line.summary.rowCount(), step.count);
  }
  EXPECT_EQ(viewed.point(2).station, 11.5);
  EXPECT_EQ(viewed.line1().size(), 2 * kLine1Row);
}

constexpr int kPlotWidth = 102;  // 100 points in view

Navigation opened(int totalRows) {
  Navigation state;
  setPlotWidth(state, kPlotWidth);
  fileOpened(state, totalRows);
  return state;
}

TEST(Navigation, commands) {
  struct Walk {
    int totalRows;
    std::string commands;  // by number
    int firstRow, lastRow, bar;
  };
  for (const auto& walk :
       {Walk{500, "4", 81, 180, 50}, Walk{500, "44444", 401, 500, 50}, Walk{500, "444444", 401, 500, 50},
        Walk{450, "44444", 351, 450, 50}, Walk{500, "41", 1, 100, 50}, Walk{500, "1", 1, 100, 50},
        Walk{500, "5", 401, 500, 50}, Walk{500, "51", 321, 420, 50}, Walk{500, "50", 1, 100, 50},
        // At the end of the line the view stays; one that is shorter than the step is not moved at all.
        Walk{60, "4", 1, 60, 50},
        // Shorter than the view: its end is brought to the right edge, from row 0 on by "end".
        Walk{100, "5", 1, 100, 50}, Walk{99, "5", 0, 99, 50}, Walk{98, "5", 1, 98, 50}, Walk{90, "4", -9, 90, 50},
        Walk{81, "4", -18, 81, 50}, Walk{80, "4", 1, 80, 50}, Walk{90, "41", 1, 90, 50}, Walk{500, "223", 1, 100, 49},
        Walk{500, std::string(60, '3'), 1, 100, 100}, Walk{500, std::string(60, '2'), 1, 100, 1},
        Walk{52, "33333", 1, 52, 52}, Walk{500, "43", 81, 180, 51}}) {
    SCOPED_TRACE(walk.commands + " on " + std::to_string(walk.totalRows));
    auto state = opened(walk.totalRows);
    for (const char command : walk.commands) moveView(state, static_cast<ViewCommand>(command - '0'));
    EXPECT_EQ(state.firstRow, walk.firstRow);
    EXPECT_EQ(state.lastRow, walk.lastRow);
    EXPECT_EQ(state.bar, walk.bar);
  }
}

// Lines of 40, 100 and 5000 stations on 100 columns, zoomed step by step; the bar stands on row 20.
TEST(PlotView, zoomsByPixelsAStationAndFollowsTheBar) {
  struct Case {
    int totalRows;
    std::string steps;  // "+" and "-", ">" a page right, "r" the bar 70 to the right
    std::string view;   // rows, pixels a station
  };
  for (const auto& item : {Case{40, "", "1-40 2.5"}, Case{40, "-", "1-40 2.5"}, Case{40, "+", "8-32 4"},
                           Case{40, "+-", "1-40 2.5"}, Case{100, "", "1-100 1"}, Case{100, "+", "1-50 2"},
                           Case{5000, "", "1-100 1"}, Case{5000, "-", "1-5000 0.02"}, Case{5000, "--", "1-5000 0.02"},
                           Case{5000, "-+", "1-100 1"}, Case{5000, "+", "1-50 2"}, Case{5000, "+++++++", "19-21 32"},
                           Case{5000, "+r", "41-90 2"}, Case{5000, "+>", "81-130 2"}, Case{5000, "->+", "81-180 1"}}) {
    SCOPED_TRACE(fmt::format("{} {}", item.totalRows, item.steps));
    auto state = opened(item.totalRows);
    for (state.bar = 1; state.bar < 20;) moveView(state, ViewCommand::barRight);
    Zoom zoom;
    auto view = plotView(state, zoom);
    for (const char step : item.steps) {
      if (step == '+') zoomIn(state, zoom);
      if (step == '-') zoomOut(state, zoom);
      if (step == '>') moveView(state, ViewCommand::pageRight);
      for (int i = 0; step == 'r' && i < 70; ++i) moveView(state, ViewCommand::barRight);
      view = plotView(state, zoom);
    }
    EXPECT_EQ(fmt::format("{}-{} {:g}", view.firstRow, view.lastRow(), view.columnsPerRow), item.view);
    EXPECT_EQ(state.pointsInView, 100);
    for (int row = view.firstRow; !view.summed() && row <= view.lastRow(); ++row)
      EXPECT_EQ(view.rowAt(view.columnOf(row)), row);
  }
}

}  // namespace
}  // namespace kalmira
