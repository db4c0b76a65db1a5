#include "viewer/readout.h"

#include "support/viewed_file.h"

namespace kalmira {
namespace {

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
  EXPECT_EQ(notesOf(viewed, 7), Texts{});
  EXPECT_EQ(notesOf(viewed, 8), Texts{});
  EXPECT_EQ(notesOf(viewed, 0), Texts{});
  EXPECT_EQ(notesOf(viewed, 9), Texts{});
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
