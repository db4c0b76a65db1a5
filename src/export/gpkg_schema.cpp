#include "export/gpkg_schema.h"

#include <fmt/format.h>

#include <iterator>

namespace kalmira {
namespace {

constexpr std::string_view kGeographicText =
    R"(GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563,AUTHORITY["EPSG","7030"]],AUTHORITY["EPSG","6326"]],PRIMEM["Greenwich",0,AUTHORITY["EPSG","8901"]],UNIT["degree",0.0174532925199433,AUTHORITY["EPSG","9122"]],AUTHORITY["EPSG","4326"]])";

constexpr std::string_view kCoreTables = R"(
PRAGMA application_id = 1196444487;
PRAGMA user_version = 10300;
CREATE TABLE gpkg_spatial_ref_sys (
  srs_name TEXT NOT NULL, srs_id INTEGER NOT NULL PRIMARY KEY, organization TEXT NOT NULL,
  organization_coordsys_id INTEGER NOT NULL, definition TEXT NOT NULL, description TEXT);
CREATE TABLE gpkg_contents (
  table_name TEXT NOT NULL PRIMARY KEY, data_type TEXT NOT NULL, identifier TEXT UNIQUE, description TEXT DEFAULT '',
  last_change DATETIME NOT NULL DEFAULT (strftime('%Y-%m-%dT%H:%M:%fZ','now')),
  min_x DOUBLE, min_y DOUBLE, max_x DOUBLE, max_y DOUBLE, srs_id INTEGER,
  CONSTRAINT fk_gc_r_srs_id FOREIGN KEY (srs_id) REFERENCES gpkg_spatial_ref_sys(srs_id));
CREATE TABLE gpkg_geometry_columns (
  table_name TEXT NOT NULL, column_name TEXT NOT NULL, geometry_type_name TEXT NOT NULL, srs_id INTEGER NOT NULL,
  z TINYINT NOT NULL, m TINYINT NOT NULL,
  CONSTRAINT pk_geom_cols PRIMARY KEY (table_name, column_name), CONSTRAINT uk_gc_table_name UNIQUE (table_name),
  CONSTRAINT fk_gc_tn FOREIGN KEY (table_name) REFERENCES gpkg_contents(table_name),
  CONSTRAINT fk_gc_srs FOREIGN KEY (srs_id) REFERENCES gpkg_spatial_ref_sys (srs_id));
CREATE TABLE gpkg_extensions (
  table_name TEXT, column_name TEXT, extension_name TEXT NOT NULL, definition TEXT NOT NULL, scope TEXT NOT NULL,
  CONSTRAINT ge_tce UNIQUE (table_name, column_name, extension_name));
CREATE TABLE gpkg_data_columns (
  table_name TEXT NOT NULL, column_name TEXT NOT NULL, name TEXT, title TEXT, description TEXT, mime_type TEXT,
  constraint_name TEXT,
  CONSTRAINT pk_gdc PRIMARY KEY (table_name, column_name), CONSTRAINT gdc_tn UNIQUE (table_name, name));
CREATE TABLE gpkg_data_column_constraints (
  constraint_name TEXT NOT NULL, constraint_type TEXT NOT NULL, value TEXT, min NUMERIC, min_is_inclusive BOOLEAN,
  max NUMERIC, max_is_inclusive BOOLEAN, description TEXT,
  CONSTRAINT gdcc_ntv UNIQUE (constraint_name, constraint_type, value));
CREATE TABLE gpkg_metadata (
  id INTEGER CONSTRAINT m_pk PRIMARY KEY ASC NOT NULL, md_scope TEXT NOT NULL DEFAULT 'dataset',
  md_standard_uri TEXT NOT NULL, mime_type TEXT NOT NULL DEFAULT 'text/xml', metadata TEXT NOT NULL DEFAULT '');
CREATE TABLE gpkg_metadata_reference (
  reference_scope TEXT NOT NULL, table_name TEXT, column_name TEXT, row_id_value INTEGER,
  timestamp DATETIME NOT NULL DEFAULT (strftime('%Y-%m-%dT%H:%M:%fZ','now')), md_file_id INTEGER NOT NULL,
  md_parent_id INTEGER, CONSTRAINT crmr_mfi_fk FOREIGN KEY (md_file_id) REFERENCES gpkg_metadata(id),
  CONSTRAINT crmr_mpi_fk FOREIGN KEY (md_parent_id) REFERENCES gpkg_metadata(id));
INSERT INTO gpkg_extensions VALUES
  ('gpkg_data_columns', NULL, 'gpkg_schema', 'http://www.geopackage.org/spec130/#extension_schema', 'read-write'),
  ('gpkg_data_column_constraints', NULL, 'gpkg_schema', 'http://www.geopackage.org/spec130/#extension_schema',
   'read-write'),
  ('gpkg_metadata', NULL, 'gpkg_metadata', 'http://www.geopackage.org/spec130/#extension_metadata', 'read-write'),
  ('gpkg_metadata_reference', NULL, 'gpkg_metadata', 'http://www.geopackage.org/spec130/#extension_metadata',
   'read-write');
INSERT INTO gpkg_spatial_ref_sys VALUES
  ('Undefined cartesian', -1, 'NONE', -1, 'undefined', 'undefined cartesian coordinates'),
  ('Undefined geographic', 0, 'NONE', 0, 'undefined', 'undefined geographic coordinates');
CREATE TABLE layer_styles (
  id INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, f_table_catalog TEXT, f_table_schema TEXT, f_table_name TEXT,
  f_geometry_column TEXT, styleName TEXT, styleQML TEXT, styleSLD TEXT, useAsDefault BOOLEAN, description TEXT,
  owner TEXT, ui TEXT, update_time DATETIME DEFAULT (strftime('%Y-%m-%dT%H:%M:%fZ','now')));
INSERT INTO gpkg_contents (table_name, data_type, identifier) VALUES ('layer_styles', 'attributes', 'layer_styles');
)";

// They keep the index right when somebody else changes the layer; {0} is its table. The functions are whoever's
// changes it.
constexpr std::string_view kTriggers = R"(
CREATE TRIGGER "rtree_{0}_geom_insert" AFTER INSERT ON "{0}"
  WHEN (NEW."geom" NOT NULL AND NOT ST_IsEmpty(NEW."geom"))
BEGIN INSERT OR REPLACE INTO "rtree_{0}_geom" VALUES (NEW."fid", ST_MinX(NEW."geom"), ST_MaxX(NEW."geom"),
  ST_MinY(NEW."geom"), ST_MaxY(NEW."geom")); END;
CREATE TRIGGER "rtree_{0}_geom_update1" AFTER UPDATE OF "geom" ON "{0}"
  WHEN OLD."fid" = NEW."fid" AND (NEW."geom" NOTNULL AND NOT ST_IsEmpty(NEW."geom"))
BEGIN INSERT OR REPLACE INTO "rtree_{0}_geom" VALUES (NEW."fid", ST_MinX(NEW."geom"), ST_MaxX(NEW."geom"),
  ST_MinY(NEW."geom"), ST_MaxY(NEW."geom")); END;
CREATE TRIGGER "rtree_{0}_geom_update2" AFTER UPDATE OF "geom" ON "{0}"
  WHEN OLD."fid" = NEW."fid" AND (NEW."geom" ISNULL OR ST_IsEmpty(NEW."geom"))
BEGIN DELETE FROM "rtree_{0}_geom" WHERE id = OLD."fid"; END;
CREATE TRIGGER "rtree_{0}_geom_update3" AFTER UPDATE ON "{0}"
  WHEN OLD."fid" != NEW."fid" AND (NEW."geom" NOTNULL AND NOT ST_IsEmpty(NEW."geom"))
BEGIN DELETE FROM "rtree_{0}_geom" WHERE id = OLD."fid";
  INSERT OR REPLACE INTO "rtree_{0}_geom" VALUES (NEW."fid", ST_MinX(NEW."geom"), ST_MaxX(NEW."geom"),
  ST_MinY(NEW."geom"), ST_MaxY(NEW."geom")); END;
CREATE TRIGGER "rtree_{0}_geom_update4" AFTER UPDATE ON "{0}"
  WHEN OLD."fid" != NEW."fid" AND (NEW."geom" ISNULL OR ST_IsEmpty(NEW."geom"))
BEGIN DELETE FROM "rtree_{0}_geom" WHERE id IN (OLD."fid", NEW."fid"); END;
CREATE TRIGGER "rtree_{0}_geom_delete" AFTER DELETE ON "{0}" WHEN OLD."geom" NOT NULL
BEGIN DELETE FROM "rtree_{0}_geom" WHERE id = OLD."fid"; END;
)";

std::string_view typeText(ColumnType type) {
  switch (type) {
    case ColumnType::text: return "TEXT";
    case ColumnType::integer: return "INTEGER";
    case ColumnType::real: return "REAL";
    case ColumnType::date: return "DATE";
    case ColumnType::moment: return "DATETIME";
  }
  return "TEXT";
}

bool insert(Database& database, std::string_view statement, std::initializer_list<std::string_view> texts,
            std::initializer_list<double> numbers = {}) {
  Statement row(database, statement);
  for (const auto text : texts) row.text(text);
  for (const double number : numbers) row.real(number);
  return row.run();
}

bool addReferenceSystem(Database& database, std::string_view name, int epsg, std::string_view definition) {
  return insert(database, fmt::format("INSERT INTO gpkg_spatial_ref_sys VALUES (?1, {0}, 'EPSG', {0}, ?2, ?1)", epsg),
                {name, definition});
}

std::string pointLayer(std::size_t number, std::uint32_t rgb) {
  return fmt::format(
      R"(<symbol type="marker" name="{}" alpha="1"><layer class="SimpleMarker" enabled="1" pass="0" locked="0"><prop k="color" v="{},{},{},255"/><prop k="name" v="circle"/><prop k="outline_style" v="no"/><prop k="size" v="2.4"/><prop k="size_unit" v="MM"/></layer></symbol>)",
      number, rgb >> 16 & 0xFF, rgb >> 8 & 0xFF, rgb & 0xFF);
}

}  // namespace

bool beginGeoPackage(Database& database) {
  return database.run(std::string(kCoreTables)) && addReferenceSystem(database, "WGS 84", kGeographic, kGeographicText);
}

bool createLayer(Database& database, const LayerShape& shape) {
  auto statement = fmt::format("CREATE TABLE \"{}\" (fid INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL", shape.name);
  for (const auto& column : shape.columns) statement += fmt::format(", \"{}\" {}", column.name, typeText(column.type));
  return database.run(fmt::format("{}, geom {})", statement, shape.geometry));
}

bool finishLayer(Database& database, const LayerShape& shape, const std::optional<Box>& extent, int epsg) {
  constexpr std::string_view kContents =
      "INSERT INTO gpkg_contents (table_name, data_type, identifier, description, srs_id{0}) "
      "VALUES (?1, 'features', ?1, ?2, {2}{1})";
  const bool listed =
      extent ? insert(database, fmt::format(kContents, ", min_x, min_y, max_x, max_y", ", ?3, ?4, ?5, ?6", epsg),
                      {shape.name, shape.title}, {extent->west, extent->south, extent->east, extent->north})
             : insert(database, fmt::format(kContents, "", "", epsg), {shape.name, shape.title});
  if (!listed) return false;
  for (const auto& column : shape.columns) {
    const auto title =
        column.unit.empty() ? std::string(column.name) : fmt::format("{} [{}]", column.name, column.unit);
    const bool told = insert(database,
                             "INSERT INTO gpkg_data_columns (table_name, column_name, title, description) "
                             "VALUES (?, ?, ?, ?)",
                             {shape.name, column.name, title, column.content.empty() ? column.unit : column.content});
    if (!told) return false;
  }
  return database.run(fmt::format("INSERT INTO gpkg_geometry_columns VALUES ('{0}', 'geom', '{1}', {2}, 0, 0);"
                                  "INSERT INTO gpkg_extensions VALUES ('{0}', 'geom', 'gpkg_rtree_index', "
                                  "'http://www.geopackage.org/spec130/#extension_rtree', 'write-only');",
                                  shape.name, shape.geometry, epsg) +
                      fmt::format(kTriggers, shape.name));
}

bool addZone(Database& database, const MapZone& zone) {
  const char half = zone.north ? 'N' : 'S';
  if (zone.number == 0) {
    const auto name = fmt::format("WGS 84 / UPS {}", zone.north ? "North" : "South");
    return addReferenceSystem(
        database, name, zone.epsg(),
        fmt::format(R"(PROJCS["{}",{},PROJECTION["Polar_Stereographic"],PARAMETER["latitude_of_origin",{}],)"
                    R"(PARAMETER["central_meridian",0],PARAMETER["scale_factor",0.994],)"
                    R"(PARAMETER["false_easting",2000000],PARAMETER["false_northing",2000000],)"
                    R"(UNIT["metre",1,AUTHORITY["EPSG","9001"]],AUTHORITY["EPSG","{}"]])",
                    name, kGeographicText, zone.north ? 90 : -90, zone.epsg()));
  }
  const auto name = fmt::format("WGS 84 / UTM zone {}{}", zone.number, half);
  return addReferenceSystem(
      database, name, zone.epsg(),
      fmt::format(R"(PROJCS["{}",{},PROJECTION["Transverse_Mercator"],PARAMETER["latitude_of_origin",0],)"
                  R"(PARAMETER["central_meridian",{}],PARAMETER["scale_factor",0.9996],)"
                  R"(PARAMETER["false_easting",500000],PARAMETER["false_northing",{}],)"
                  R"(UNIT["metre",1,AUTHORITY["EPSG","9001"]],AXIS["Easting",EAST],AXIS["Northing",NORTH],)"
                  R"(AUTHORITY["EPSG","{}"]])",
                  name, kGeographicText, 6 * zone.number - 183, zone.north ? 0 : 10000000, zone.epsg()));
}

bool addNotes(Database& database, std::string_view json) {
  return insert(database,
                "INSERT INTO gpkg_metadata (md_scope, md_standard_uri, mime_type, metadata) "
                "VALUES ('dataset', 'https://www.rfc-editor.org/rfc/rfc8259', 'application/json', ?)",
                {json}) &&
         database.run(
             "INSERT INTO gpkg_metadata_reference (reference_scope, md_file_id) "
             "SELECT 'geopackage', max(id) FROM gpkg_metadata");
}

bool addStyle(Database& database, std::string_view layer, const Column& column,
              const std::vector<ColourClass>& classes) {
  std::string ranges;
  std::string symbols;
  for (std::size_t i = 0; i < classes.size(); ++i) {
    ranges += fmt::format(R"(<range render="true" symbol="{}" lower="{}" upper="{}" label="{}"/>)", i, classes[i].from,
                          classes[i].to, classText(classes[i], column.unit));
    symbols += pointLayer(i, classes[i].rgb);
  }
  const auto style = fmt::format(
      R"(<qgis version="3.22" styleCategories="Symbology"><renderer-v2 type="graduatedSymbol" attr="{}" )"
      R"(graduatedMethod="GraduatedColor" symbollevels="0"><ranges>{}</ranges><symbols>{}</symbols></renderer-v2></qgis>)",
      column.name, ranges, symbols);
  return insert(database,
                "INSERT INTO layer_styles (f_table_catalog, f_table_schema, f_table_name, f_geometry_column, "
                "styleName, styleQML, useAsDefault, description) VALUES ('', '', ?1, 'geom', ?2, ?3, 1, ?2)",
                {layer, column.name, style});
}

}  // namespace kalmira
