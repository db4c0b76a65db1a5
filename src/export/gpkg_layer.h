#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "export/gpkg_schema.h"

// Rows and geometries of a GeoPackage's layers.
namespace kalmira {

struct MapPoint {
  double x = 0, y = 0;
};

// A layer that is being written: a row at a time, the cells of its columns (see table_cells.h), then the geometry,
// which ends it. It stands last in the table, where SQLite need not hold a long one in memory.
class LayerRows {
 public:
  LayerRows(Database& database, LayerShape shape);

  const LayerShape& shape() const { return shape_; }
  std::int64_t rows() const { return rows_; }

  bool endWithout();
  bool endWithPoint(const MapPoint& point, int epsg);
  // With room for a geometry of that many bytes, to be written when the row stands.
  bool endWithRoom(std::uint64_t bytes, const Box& box);
  bool finish(int epsg);

  // A cell.
  void none() { statement_.null(); }
  void text(std::string_view cell) { statement_.text(cell); }
  void integer(std::int64_t value) { statement_.integer(value); }
  void real(double value, int decimals);
  void shortest(double value);
  void shortest(float value);
  void range(int first, int second);
  void date(std::int64_t day);
  void timeOfDay(std::uint32_t ms);
  void utc(double moment);

 private:
  std::string& fresh();
  bool endRow(const std::optional<Box>& box);

  Database& database_;
  LayerShape shape_;
  Statement statement_;
  SpatialIndex index_;
  std::string geometry_;
  std::array<std::string, 6> texts_;  // of the row's cells that are made up here
  std::size_t next_text_ = 0;
  std::int64_t rows_ = 0;
  std::optional<Box> extent_;
};

// A line string in the making, however long: its points wait in a temporary table, which SQLite keeps in memory or,
// when there are many, in a file of its own.
class LineInMaking {
 public:
  explicit LineInMaking(Database& database, std::string_view name);

  bool add(const MapPoint& point);
  std::uint64_t points() const { return points_; }
  // Ends the layer's row with the line, and begins anew. A line string has two points at least: of fewer the row has
  // none.
  bool endRow(LayerRows& layer, int epsg);

 private:
  bool writeInto(const LayerRows& layer, int epsg);

  Database& database_;
  std::string name_;
  Statement keep_;
  std::string piece_;        // points as they will stand in the geometry
  std::int64_t pieces_ = 0;  // that wait in the table
  std::uint64_t points_ = 0;
  Box box_;
};

}  // namespace kalmira
