#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "export/colour_scale.h"
#include "export/database.h"
#include "export/spatial_index.h"
#include "export/table_cells.h"
#include "positions/projection.h"

// The tables that make an SQLite file a GeoPackage (OGC 12-128r18, version 1.3), and the one in which QGIS looks for a
// layer's style. False, where a function says so: see the database's problem().
namespace kalmira {

inline constexpr int kGeographic = 4326;  // EPSG code of longitudes and latitudes on WGS 84

// A layer of one kind of geometry.
struct LayerShape {
  std::string_view name;
  std::string_view title;
  std::string_view geometry;  // "POINT" or "LINESTRING"
  std::vector<Column> columns;
};

bool beginGeoPackage(Database& database);
bool createLayer(Database& database, const LayerShape& shape);
// What is known of a layer at its end: its extent, where it has a geometry, and the code of its coordinates.
bool finishLayer(Database& database, const LayerShape& shape, const std::optional<Box>& extent, int epsg);
// Tells what the zone's code means.
bool addZone(Database& database, const MapZone& zone);
// Notes of a data file, as JSON.
bool addNotes(Database& database, std::string_view json);
// Points of the layer are coloured by the column.
bool addStyle(Database& database, std::string_view layer, const Column& column,
              const std::vector<ColourClass>& classes);

}  // namespace kalmira
