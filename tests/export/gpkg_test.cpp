#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sqlite3.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>

#include "export/export_run.h"
#include "export/gpkg_layer.h"
#include "platform/text.h"
#include "support/temp_folder.h"
#include "support/walk.h"

namespace kalmira {
namespace {

using testing::ElementsAre;
using Row = std::vector<std::string>;

// A finished database, as its rows' texts; NULL is "-".
class Opened {
 public:
  explicit Opened(const std::filesystem::path& file) {
    EXPECT_EQ(sqlite3_open_v2(file.c_str(), &handle_, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  }
  ~Opened() { sqlite3_close(handle_); }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;

  std::vector<Row> rows(const std::string& select) const {
    std::vector<Row> rows;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(handle_, select.c_str(), -1, &statement, nullptr), SQLITE_OK)
        << select << ": " << sqlite3_errmsg(handle_);
    while (sqlite3_step(statement) == SQLITE_ROW) {
      auto& row = rows.emplace_back();
      for (int i = 0; i < sqlite3_column_count(statement); ++i) {
        const auto type = sqlite3_column_type(statement, i);
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, i));
        row.push_back(type == SQLITE_NULL    ? "-"
                      : type == SQLITE_FLOAT ? fmt::format("{}", sqlite3_column_double(statement, i))
                                             : std::string(static_cast<const char*>(sqlite3_column_blob(statement, i)),
                                                           type == SQLITE_INTEGER ? 0 : size));
        if (type == SQLITE_INTEGER) row.back() = fmt::format("{}", sqlite3_column_int64(statement, i));
      }
    }
    sqlite3_finalize(statement);
    return rows;
  }
  std::string cell(const std::string& select) const { return rows(select).at(0).at(0); }

 private:
  sqlite3* handle_ = nullptr;
};

template <typename Value>
Value at(const std::string& bytes, std::size_t place) {
  Value value{};
  std::memcpy(&value, bytes.data() + place, sizeof value);
  return value;
}

// The points of a geometry, its envelope (where it has one) checked against them.
std::vector<MapPoint> pointsOf(const std::string& geometry, int epsg) {
  EXPECT_EQ(geometry.substr(0, 3), std::string("GP\0", 3));
  EXPECT_EQ(at<std::int32_t>(geometry, 4), epsg);
  const bool line = geometry[3] == 3;
  EXPECT_TRUE(line || geometry[3] == 1) << "least significant byte first";
  const std::size_t wkb = line ? 40 : 8;
  EXPECT_EQ(geometry[wkb], 1);
  EXPECT_EQ(at<std::uint32_t>(geometry, wkb + 1), line ? 2U : 1U);
  const std::size_t count = line ? at<std::uint32_t>(geometry, wkb + 5) : 1;
  const std::size_t first = wkb + (line ? 9 : 5);
  EXPECT_EQ(geometry.size(), first + 16 * count);
  std::vector<MapPoint> points;
  for (std::size_t i = 0; i < count; ++i)
    points.push_back({at<double>(geometry, first + 16 * i), at<double>(geometry, first + 16 * i + 8)});
  const auto [west, east] = std::ranges::minmax(points, {}, &MapPoint::x);
  const auto [south, north] = std::ranges::minmax(points, {}, &MapPoint::y);
  if (line) {
    EXPECT_EQ(at<double>(geometry, 8), west.x);
    EXPECT_EQ(at<double>(geometry, 16), east.x);
    EXPECT_EQ(at<double>(geometry, 24), south.y);
    EXPECT_EQ(at<double>(geometry, 32), north.y);
  }
  return points;
}

struct GeoPackageTest : testing::Test {
  // Ten minutes with ten fixes a second, a gap of a minute, a second line and a comment; the last half minute has none.
  GeoPackageTest() {
    walk.seconds = 600;
    walk.sentences_hz = 10;
    walk.delay = [](int) { return 0.05; };
    walk.options.lag_s = 0;
    walk.heard = [](double t) { return t < 480 || (t >= 540 && t < 570); };
    walk.values = [](int n) { return fmt::format("T{}{:+05}+0800", n % 2 == 0 ? '$' : '\4', -400 - n % 97); };
    walk.also = {{300.05, records(kLength, {"L8", "B      20.00", "AS            0.500"}) +
                              formatTimeMark(kLength, {.hour = 10, .minute = 5}, walk.tickOf(300.05))},
                 {100.05, formatNote(kLength, 'C', "gate \"A\"", walk.tickOf(100.05))}};
    writeFile(input, walk.bytes());
  }
  std::string made(ExportRequest request, const std::string& name) {
    request.files = {input};
    request.out = folder.path() / name;
    std::string said;
    const auto result = runExport(
        request, [&](std::string_view text) { said += std::string(text) + "\n"; },
        [](std::string_view, std::uint64_t, std::uint64_t) { return true; });
    EXPECT_EQ(result.status, kExportDone) << said;
    return *request.out;
  }

  TempFolder folder;
  Walk walk;
  std::filesystem::path input = folder.path() / "w.ROR";
};

TEST_F(GeoPackageTest, KeepsItsOwnRules) {
  const Opened file(made({}, "w.gpkg"));
  EXPECT_EQ(file.cell("PRAGMA application_id"), "1196444487");
  EXPECT_EQ(file.cell("PRAGMA integrity_check"), "ok");
  EXPECT_TRUE(file.rows("PRAGMA foreign_key_check").empty());
  for (const std::string layer : {"readings", "lines", "track", "events"}) {
    EXPECT_EQ(file.cell(fmt::format("SELECT rtreecheck('rtree_{}_geom')", layer)), "ok");
    // Each geometry in the index, and in it where it is.
    EXPECT_EQ(file.cell(fmt::format("SELECT count(*) FROM rtree_{}_geom", layer)),
              file.cell(fmt::format("SELECT count(geom) FROM {}", layer)));
    EXPECT_EQ(file.cell(fmt::format("SELECT count(*) FROM gpkg_geometry_columns g JOIN gpkg_contents c USING "
                                    "(table_name) WHERE table_name = '{}' AND g.srs_id = 4326 AND c.srs_id = 4326 AND "
                                    "data_type = 'features' AND z = 0 AND m = 0",
                                    layer)),
              "1");
    EXPECT_EQ(file.cell(fmt::format("SELECT count(*) FROM gpkg_extensions WHERE table_name = '{}' AND "
                                    "extension_name = 'gpkg_rtree_index'",
                                    layer)),
              "1");
    EXPECT_EQ(
        file.cell(fmt::format("SELECT count(*) FROM sqlite_master WHERE type = 'trigger' AND tbl_name = '{}'", layer)),
        "6");
  }
  EXPECT_EQ(file.cell("SELECT title FROM gpkg_data_columns WHERE table_name='readings' AND column_name='cond_v'"),
            "cond_v [mS/m]");
  // Where each reading is in the index: a query by place finds what the columns say.
  EXPECT_EQ(
      file.cell("SELECT count(*) FROM readings JOIN rtree_readings_geom ON id = fid WHERE longitude >= minx - 1e-7 "
                "AND longitude <= maxx + 1e-7 AND latitude >= miny - 1e-7 AND latitude <= maxy + 1e-7 AND "
                "maxx - minx < 2e-6 AND maxy - miny < 1e-5"),
      file.cell("SELECT count(longitude) FROM readings"));
  EXPECT_THAT(file.cell("SELECT styleQML FROM layer_styles WHERE f_table_name = 'readings' AND useAsDefault"),
              testing::AllOf(testing::HasSubstr("attr=\"cond_v\""), testing::HasSubstr("label=\"10 to 10.5 mS/m\"")));
  for (const auto& left : std::filesystem::directory_iterator(folder.path()))
    EXPECT_THAT(left.path().filename(), testing::AnyOf("w.ROR", "w.gpkg"));
}

TEST_F(GeoPackageTest, SaysOfReadingsAndEventsWhatTheTablesSay) {
  const Opened file(made({}, "w.gpkg"));
  for (const auto& [table, layer] :
       {std::pair{TableOf::readings, std::string("readings")}, {TableOf::events, std::string("events")}}) {
    std::istringstream text(readFile(made({.table = table}, "w.csv")));
    std::string names;
    std::getline(text, names);
    const auto rows = file.rows(fmt::format("SELECT {} FROM {} ORDER BY fid", names, layer));
    std::size_t row = 0;
    for (std::string line; std::getline(text, line); ++row) {
      ASSERT_LT(row, rows.size());
      std::istringstream cells(line + ",");
      for (const auto& stored : rows[row]) {
        std::string cell;
        std::getline(cells, cell, ',');
        if (cell.starts_with('"')) cell = "gate \"A\"";
        const auto number = wholeNumber<double>(cell);
        if (cell.empty()) cell = "-";
        ASSERT_TRUE(number ? wholeNumber<double>(stored) == number : stored == cell) << cell << " " << stored;
      }
    }
    EXPECT_EQ(row, rows.size());
  }
  EXPECT_EQ(file.rows("SELECT geom FROM readings WHERE longitude IS NULL AND geom IS NOT NULL").size(), 0U);
  for (const auto& row :
       file.rows("SELECT geom, longitude, latitude FROM readings WHERE fid % 250 = 1 AND geom NOTNULL")) {
    const auto point = pointsOf(row[0], kGeographic).at(0);
    EXPECT_NEAR(point.x, parseReal(row[1]), 1e-8);
    EXPECT_NEAR(point.y, parseReal(row[2]), 1e-8);
  }
}

TEST_F(GeoPackageTest, JoinsLinesAndStretchesWhateverTheirLength) {
  const Opened file(made({.colour = "inph_h", .positions = {.zone = 32}}, "w.gpkg"));
  EXPECT_EQ(file.cell("SELECT description FROM layer_styles WHERE f_table_name = 'readings'"), "inph_h");
  const auto lines = file.rows("SELECT line, count, start_station, end_station, length, geom, cond_v_mean FROM lines");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0][0], "7");
  EXPECT_EQ(lines[1][0], "8");
  const double pace = std::hypot(1.2, 0.7);
  for (const auto& line : lines) {
    const auto placed =
        file.cell(fmt::format("SELECT count(geom) FROM readings WHERE line = '{}' GROUP BY line", line[0]));
    const auto points = pointsOf(line[5], 32632);
    EXPECT_EQ(fmt::format("{}", points.size()), placed);
    // Metres on the plane are shorter by the scale of the middle of the zone, and a little longer outside.
    const double seconds = line[0] == "7" ? 299.8 : 270;
    EXPECT_NEAR(parseReal(line[4]), seconds * pace, 0.5) << line[0];
    EXPECT_EQ(line[6], file.cell(fmt::format("SELECT round(avg(cond_v), 6) FROM readings WHERE line = '{}'", line[0])));
  }
  const auto track = file.rows("SELECT count, geom, start_time, end_time FROM track");
  ASSERT_EQ(track.size(), 2U);
  EXPECT_EQ(track[0][0], "4800") << "more than are kept in memory";
  EXPECT_EQ(track[1][0], "300");
  EXPECT_EQ(track[0][2], "2025-05-12T10:00:00.000Z");
  const auto points = pointsOf(track[0][1], 32632);
  ASSERT_EQ(points.size(), 4800U);
  for (std::size_t i = 0; i < points.size(); i += 479) {
    EXPECT_NEAR(points[i].x, walk.path(static_cast<double>(i) / 10).easting, 0.001);
    EXPECT_NEAR(points[i].y, walk.path(static_cast<double>(i) / 10).northing, 0.001);
  }
  EXPECT_THAT(file.rows("SELECT min_x < 400001, max_y > 5500398, organization_coordsys_id FROM gpkg_contents JOIN "
                        "gpkg_spatial_ref_sys USING (srs_id) WHERE table_name = 'track'"),
              ElementsAre(Row{"1", "1", "32632"}));
}

// A grid that was put beside the earth: the readings stay, without a geometry.
TEST_F(GeoPackageTest, HasNoGeometryWhereThereIsNoPlaceOnEarth) {
  const auto grid = parseGridPlacement("1e300,0,30,32N");
  ASSERT_TRUE(grid);
  const Opened file(made({.grid = grid}, "w.gpkg"));
  EXPECT_EQ(file.cell("SELECT count(*) > 5000 FROM readings"), "1");
  EXPECT_EQ(file.cell("SELECT count(geom) FROM readings"), "0");
  EXPECT_EQ(file.cell("SELECT count(*) FROM rtree_readings_geom"), "0");
  EXPECT_EQ(file.cell("SELECT count(geom) FROM lines"), "0");
  EXPECT_EQ(file.cell("SELECT count(min_x) FROM gpkg_contents WHERE table_name = 'readings'"), "0");
}

// By other programs, where there are any.
TEST_F(GeoPackageTest, IsReadByGdal) {
  if (std::system("ogrinfo --version > /dev/null 2>&1") != 0) GTEST_SKIP() << "no ogrinfo here";
  const auto path =
      made({.table = TableOf::readings, .wide = true, .grid = parseGridPlacement("500000,0,30,32N")}, "g.gpkg");
  const auto out = folder.path() / "out";
  ASSERT_EQ(std::system(fmt::format("ogrinfo -so -al {} > {} 2>&1", path, out.string()).c_str()), 0);
  const auto said = readFile(out);
  for (const char* part : {"Layer name: readings", "Geometry: Line String", "Feature Count: 2\n",
                           "PROJCRS[\"WGS 84 / UTM zone 32N\"", "utc: DateTime", "date: Date"})
    EXPECT_THAT(said, testing::HasSubstr(part));
  EXPECT_THAT(said, testing::Not(testing::HasSubstr("Warning")));
}

// Whole nodes, one more, one less, and a tree of three storeys.
TEST(SpatialIndex, IsATreeOfItsModule) {
  for (const int count : {0, 1, 51, 52, 51 * 51, 51 * 51 + 1, 7000}) {
    const TempFolder folder;
    const auto path = folder.path() / "i.db";
    writeFile(path, "");
    Database database;
    ASSERT_TRUE(database.open(path));
    {
      SpatialIndex index(database, "t");
      for (int i = 0; i < count; ++i) {
        const double x = std::sin(i * 0.01) * 1e6 + 1.0 / 3, y = i * 0.7;
        ASSERT_TRUE(index.add(2 * i, {.west = x, .east = x + 1, .south = y, .north = y}));
      }
      ASSERT_TRUE(index.finish());
    }
    ASSERT_TRUE(database.close()) << database.problem();
    const Opened file(path);
    EXPECT_EQ(file.cell("SELECT rtreecheck('t')"), "ok") << count;
    EXPECT_EQ(file.cell("SELECT count(*) FROM t"), fmt::format("{}", count));
    const auto found = file.rows("SELECT id FROM t WHERE miny <= 35.1 AND maxy >= 34.9");
    EXPECT_EQ(found, count > 50 ? std::vector<Row>{{"100"}} : std::vector<Row>{}) << count;
  }
}

}  // namespace
}  // namespace kalmira
