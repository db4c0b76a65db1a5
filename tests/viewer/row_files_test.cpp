#include "viewer/row_files.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/viewed_file.h"

namespace kalmira {
namespace {

TEST(RowFiles, folderOfTheStorageClass) {
  EXPECT_EQ(rowFilesOf("/r", 0).line1, "/r/C_DRIVE/KALINI/LINE1.RXX");
  EXPECT_EQ(rowFilesOf("/r", 1).line2, "/r/Storage/KALINI/LINE2.RXX");
  EXPECT_EQ(rowFilesOf("/r", 2).line1, "/r/KALINI/LINE1.RXX");
  EXPECT_EQ(rowFilesOf("/r", 3).line2, "/r/KALINI/LINE2.RXX");
}

TEST(RowFiles, numbersAreRoundedByTheirExactValue) {
  const TempFolder folder;
  const auto rows = rowFilesOf(folder.path(), 2);
  RowWriter writer;
  ASSERT_EQ(writer.open(rows).kind, ViewerErrorKind::none);
  std::string expected;
  const auto write = [&](double value, const std::string& text) {
    writer.appendRow(value, {});
    expected += text + " 0 0 0 0 0 0 0 0\n";
  };
  for (const auto& [value, text] : {std::pair{0.125, "        0.12"},
                                    {0.375, "        0.38"},
                                    {1.005, "        1.00"},
                                    {-0.001, "       -0.00"},
                                    {-99999998.996, "-99999999.00"},
                                    {-123456789.0, "-123456789.0"},
                                    {1e300, "999999999999"},
                                    {-std::numeric_limits<double>::infinity(), "-99999999999"},
                                    {std::nan(""), "        0.00"}}) {
    write(value, text);
  }
  std::mt19937 random(7);
  std::uniform_real_distribution<double> values(-1e5, 1e5);
  for (int i = 0; i < 20000; ++i) {
    const double value = i % 2 == 0 ? values(random) : std::round(values(random) * 1000) / 1000;
    write(value, fmt::format("{:12.2f}", value));
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

}  // namespace
}  // namespace kalmira
