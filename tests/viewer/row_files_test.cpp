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

std::string stationField(double station) {
  TempFolder folder;
  const auto rows = rowFilesOf(folder.path(), 2);
  RowWriter writer;
  EXPECT_EQ(writer.open(rows).kind, ViewerErrorKind::none);
  writer.appendRow(station, {});
  EXPECT_EQ(writer.finish().kind, ViewerErrorKind::none);
  EXPECT_EQ(readFile(rows.line1).size(), kLine1Row);
  return readFile(rows.line2).substr(0, 12);
}

TEST(RowFiles, numbersAreRoundedByTheirExactValue) {
  EXPECT_EQ(stationField(0.125), "        0.12");
  EXPECT_EQ(stationField(0.375), "        0.38");
  EXPECT_EQ(stationField(1.005), "        1.00");
  EXPECT_EQ(stationField(-0.001), "       -0.00");
  EXPECT_EQ(stationField(-99999998.996), "-99999999.00");
  EXPECT_EQ(stationField(-123456789.0), "-123456789.0");
  EXPECT_EQ(stationField(1e300), "999999999999");
  EXPECT_EQ(stationField(-std::numeric_limits<double>::infinity()), "-99999999999");
  EXPECT_EQ(stationField(std::nan("")), "        0.00");
  std::mt19937 random(7);
  std::uniform_real_distribution<double> values(-1e5, 1e5);
  TempFolder folder;
  const auto rows = rowFilesOf(folder.path(), 2);
  RowWriter writer;
  writer.open(rows);
  std::string expected;
  for (int i = 0; i < 20000; ++i) {
    const double value = i % 2 == 0 ? values(random) : std::round(values(random) * 1000) / 1000;
    writer.appendRow(value, {});
    expected += fmt::format("{:12.2f} 0 0 0 0 0 0 0 0\n", value);
  }
  writer.finish();
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

struct LoadedPoint {
  bool valid;
  double station;
  int flag;
  float value;
};

void expectPoints(const std::vector<StationPoint>& points, const std::vector<LoadedPoint>& expected) {
  ASSERT_EQ(points.size(), expected.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(points[i].valid, expected[i].valid);
    EXPECT_EQ(points[i].station, expected[i].station);
    EXPECT_EQ(points[i].channels.present[0], expected[i].flag);
    EXPECT_EQ(points[i].channels.value[0], expected[i].value);
  }
}

const LoadedPoint kCleared{false, 0, 0, 0};
const LoadedPoint kFirst{true, 10, 1, 10};
const LoadedPoint kBreakPoint{false, -1, 0, -9999};

TEST(LoadLineRows, everyRowKeepsItsColumn) {
  ViewedFile viewed(kOrla + lineBlock() + vertical() + records24({"S     100.00 10000000"}) + vertical());
  ASSERT_EQ(viewed.extract().kind, ViewerErrorKind::none);
  const LoadedPoint last{true, 100, 1, 10};
  std::vector<StationPoint> points;
  const auto load = [&](int firstRow) {
    return LoadLineRows(viewed.rows, viewed.file, viewed.line, 0, 3, firstRow, points);
  };
  load(1);
  expectPoints(points, {kFirst, kBreakPoint, kBreakPoint, kBreakPoint});
  load(5);
  expectPoints(points, {kBreakPoint, last, kCleared, kCleared});
  load(0);
  expectPoints(points, {kCleared, kFirst, kBreakPoint, kBreakPoint});
  load(-9);
  expectPoints(points, {kCleared, kCleared, kCleared, kCleared});
  LoadLineRows(viewed.rows, viewed.file, viewed.line, 1, 2, 6, points);
  expectPoints(points, {kCleared, last, kCleared, kCleared});

  std::filesystem::resize_file(viewed.rows.line1, 5 * kLine1Row + 10);
  load(5);
  expectPoints(points, {kBreakPoint, kCleared, kCleared, kCleared});
  std::filesystem::remove(viewed.rows.line2);
  EXPECT_TRUE(load(1).line2Missing);
  expectPoints(points, {kCleared, kCleared, kCleared, kCleared});
  std::filesystem::remove(viewed.rows.line1);
  const auto outcome = load(1);
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
