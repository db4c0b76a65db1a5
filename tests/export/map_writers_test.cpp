#include <gmock/gmock.h>

#include <QXmlStreamReader>
#include <nlohmann/json.hpp>

#include "export/cells.h"
#include "platform/text.h"
#include "support/export_case.h"
#include "support/walk.h"

namespace kalmira {
namespace {

using namespace std::string_literals;
using nlohmann::json;
using testing::HasSubstr;

const std::string kReplaced = "\xEF\xBF\xBD";  // what stands in place of what is no text

struct Map : ExportCommand {
  // Half a minute with two readings a second: three battery readings, two breaks, a comment and a line that damage has
  // reached.
  static Walk walk() {
    Walk walk{.seconds = 30, .delay = [](int n) { return 0.1 + n % 3 * 0.05; }};
    walk.heard = [](double t) { return t < 12 || t > 19; };
    walk.readings_hz = 2;
    walk.values = [](int n) {
      if (n % 20 == 0) return "T%+0640+0640"s;
      return fmt::format("T$-{:04}+0800", 40 * n);
    };
    walk.line = "<7&\"\xFFy";
    walk.also = {{8.2, formatReading(kLength, "C\xC3\xA4 > \"1\\\x01\"", walk.tickOf(8.2))},
                 {20.2, formatReading(kLength, "X$PAUSED", walk.tickOf(20.2))}};
    return walk;
  }
  std::string walked(const std::string& name, const Walk& walk) const { return file(name, walk.bytes()); }
  std::string exported(std::vector<std::string> arguments, const std::string& out, int status = kExportDone) {
    arguments.insert(arguments.end(), {"-o", path(out)});
    EXPECT_EQ(run(arguments), status) << testing::PrintToString(said);
    return content(out);
  }
};

// The properties of all features as the table that they were made of.
struct TableOfProperties : json::json_sax_t {
  bool null() override { return cell(""); }
  bool boolean(bool) override { return false; }
  bool number_integer(json::number_integer_t value) override { return cell(fmt::format("{}", value)); }
  bool number_unsigned(json::number_unsigned_t value) override { return cell(fmt::format("{}", value)); }
  bool number_float(json::number_float_t, const std::string& text) override { return cell(text); }
  bool string(std::string& value) override {
    std::string text;
    appendText(text, value);
    return cell(text);
  }
  bool binary(json::binary_t&) override { return false; }
  bool key(std::string& name) override {
    if (properties) names += (names.empty() ? "" : ",") + name;
    properties = properties || name == "properties";
    return true;
  }
  bool start_object(std::size_t) override { return true; }
  bool end_object() override {
    if (properties) table += (table.empty() ? names + "\n" : "") + row.substr(1) + "\n";
    properties = false;
    row.clear();
    return true;
  }
  bool start_array(std::size_t) override { return true; }
  bool end_array() override { return true; }
  bool parse_error(std::size_t at, const std::string&, const json::exception&) override {
    ADD_FAILURE() << at;
    return false;
  }
  bool cell(const std::string& text) {
    if (properties) row += "," + text;
    return true;
  }

  bool properties = false;
  std::string names, row, table;
};

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
    text.replace(at, what.size(), by);
  return text;
}

TEST_F(Map, GeojsonHoldsTheTable) {
  const auto first = walked("a.ROR", walk());
  const auto other = file("sub/a.ROR", records24({"MIRKA   W210GRD0000", "T$-0004-0040       1500"}));
  const auto notes = R"({"project": "Dyke \"7\"", "antennaUp": 0.5, "settings": {"surveyMode": "1"}})"s;
  file("a.ROR.json", notes);
  file("sub/a.ROR.json", R"({"site": "Ä"})");
  for (const std::vector<std::string>& arguments :
       {std::vector{first}, {first, "--wide"}, {first, "--events"}, {first, other, "--mixed"}, {other}}) {
    const auto text = exported(arguments, "t.GeoJSON");
    TableOfProperties rows;
    EXPECT_TRUE(json::sax_parse(text, &rows));
    const auto table = replaced(exported(arguments, "t.csv"), "\xFF", kReplaced);
    EXPECT_EQ(rows.table, table);
    const auto map = json::parse(text);
    EXPECT_EQ(map.at("type"), "FeatureCollection");
    std::size_t lines = 0;
    for (std::size_t at = 0; (at = text.find("\n{\"type\":\"Feature\"", at)) != std::string::npos; ++at) ++lines;
    EXPECT_EQ(lines, map["features"].size());
    for (const auto& feature : map["features"]) {
      const auto& properties = feature.at("properties");
      const auto point = json{{"type", "Point"}, {"coordinates", {properties["longitude"], properties["latitude"]}}};
      EXPECT_EQ(feature.at("geometry"), properties["longitude"].is_null() ? json() : point);
    }
  }
  auto map = json::parse(exported({first, other, "--mixed"}, "t.geojson"));
  EXPECT_EQ(map["notes"], (json{{"a.ROR", json::parse(notes)}, {"a.ROR (2)", {{"site", "Ä"}}}}));
  std::filesystem::remove(path("a.ROR.json"));
  map = json::parse(exported({first, "--utm", "33"}, "t.geojson"));
  EXPECT_FALSE(map.contains("notes"));
  EXPECT_NEAR(map["features"][10]["geometry"]["coordinates"][0], 7.615, 0.001) << "degrees in any zone";
}

// An element of XML with all that is in it.
struct Element {
  std::string name, text;
  std::map<std::string, std::string> attributes;
  std::vector<Element> parts;

  std::vector<Element> all(std::string_view wanted) const {
    std::vector<Element> found;
    std::ranges::copy_if(parts, std::back_inserter(found), [=](const Element& part) { return part.name == wanted; });
    return found;
  }
  std::string of(std::string_view wanted) const {
    const auto found = all(wanted);
    return found.empty() ? "-" : found[0].text;
  }
  // Whether nothing but these parts are in it, in this order.
  bool inOrder(std::vector<std::string_view> names) const {
    std::size_t at = 0;
    for (const auto& part : parts) {
      while (at < names.size() && names[at] != part.name) ++at;
    }
    return at < names.size() || parts.empty();
  }
};

Element elementOf(QXmlStreamReader& xml) {
  Element element;
  element.name = xml.name().toString().toStdString();
  for (const auto& attribute : xml.attributes())
    element.attributes[attribute.name().toString().toStdString()] = attribute.value().toString().toStdString();
  while (!xml.atEnd() && xml.readNext() != QXmlStreamReader::EndElement) {
    if (xml.isStartElement()) element.parts.push_back(elementOf(xml));
    if (xml.isCharacters()) element.text += xml.text().toString().toStdString();
  }
  return element;
}
Element rootOf(const std::string& text) {
  QXmlStreamReader xml(QByteArray::fromStdString(text));
  EXPECT_TRUE(xml.readNextStartElement());
  auto root = elementOf(xml);
  while (!xml.atEnd()) xml.readNext();
  EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString() << " in line " << xml.lineNumber();
  return root;
}

// The schema's order.
void expectSound(const Element& gpx) {
  EXPECT_EQ(gpx.attributes.at("version"), "1.1");
  EXPECT_TRUE(gpx.inOrder({"metadata", "wpt", "trk"}));
  const auto expectPoint = [](const Element& point) {
    EXPECT_TRUE(point.inOrder({"ele", "time", "name", "type", "fix", "sat", "hdop"}));
    const auto longitude = wholeNumber<double>(point.attributes.at("lon"));
    const auto latitude = wholeNumber<double>(point.attributes.at("lat"));
    ASSERT_TRUE(longitude && latitude);
    EXPECT_TRUE(*longitude >= -180 && *longitude < 180 && std::abs(*latitude) <= 90);
  };
  for (const auto& point : gpx.all("wpt")) expectPoint(point);
  for (const auto& track : gpx.all("trk")) {
    EXPECT_TRUE(track.inOrder({"name", "desc", "trkseg"}));
    for (const auto& segment : track.all("trkseg")) {
      EXPECT_FALSE(segment.parts.empty());
      for (const auto& point : segment.all("trkpt")) expectPoint(point);
    }
  }
}

TEST_F(Map, GpxHasTracksOfTheFixesAndEventsAsWaypoints) {
  auto walk = Map::walk();
  walk.change = [same = walk](int n, const std::string& text) {
    return n < 3 ? gga(same.start + n, unproject(same.zone, same.path(n)), '1') : text;
  };
  const auto first = walked("a.ROR", walk);
  file("a.ROR.json", R"({"project": "<Dyke>", "antennaUp": 0.5})");
  walk.dated = false;
  walk.also.clear();
  const auto other = walked("b.ROR", walk);
  const auto placeless = file("c.ROR", records24({"ORLA2   W230GRD0000", "T$-0400+0800       1500"}));
  const auto gpx = rootOf(exported({first, placeless, other}, "t.gpx"));
  expectSound(gpx);
  EXPECT_EQ(gpx.all("metadata").at(0).of("name"), "a.ROR and 2 more");
  const auto waypoints = gpx.all("wpt");
  ASSERT_EQ(waypoints.size(), 2U);
  EXPECT_EQ(waypoints[0].of("name"), "\xC3\xA4 > \"1\\" + kReplaced + "\"");
  EXPECT_EQ(waypoints[0].of("type"), "comment");
  EXPECT_EQ(waypoints[1].of("time"), "2025-05-12T10:00:20.100Z");
  const auto tracks = gpx.all("trk");
  ASSERT_EQ(tracks.size(), 2U);
  EXPECT_EQ(tracks[0].of("desc"), "project: <Dyke>\nantennaUp: 0.5");
  EXPECT_EQ(tracks[1].of("desc"), "-");
  for (const auto& track : tracks) {
    const auto segments = track.all("trkseg");
    ASSERT_EQ(segments.size(), 2U);
    EXPECT_EQ(segments[0].parts.size(), 12U);
    EXPECT_EQ(segments[1].parts.size(), 10U);
    for (std::size_t i = 0; i < 12; ++i) {
      const auto& point = segments[0].parts[i];
      const auto at = unproject(walk.zone, walk.path(static_cast<double>(i)));
      EXPECT_NEAR(*wholeNumber<double>(point.attributes.at("lat")), at.latitude, 2e-8);
      EXPECT_NEAR(*wholeNumber<double>(point.attributes.at("lon")), at.longitude, 2e-8);
      EXPECT_EQ(point.of("ele") + point.of("sat") + point.of("hdop"), "100.000120.8") << "of the antenna";
      EXPECT_EQ(point.of("fix"), i < 3 ? "-" : "dgps");
      EXPECT_EQ(point.of("time"), track.of("name") == "b.ROR" ? "-" : fmt::format("2025-05-12T10:00:{:02}.000Z", i));
    }
  }
  const auto grid = rootOf(exported(
      {placeless, walked("d.ROR", {.seconds = 3, .line = "7N", .also = walk.also}), "--grid", "500000,5500000,0,32N"},
      "t.gpx"));
  expectSound(grid);
  EXPECT_TRUE(grid.all("trk").empty());
  EXPECT_EQ(grid.all("wpt").size(), 1U) << "the line";
  EXPECT_EQ(rootOf(exported({placeless}, "t.gpx")).parts.size(), 1U);
  EXPECT_THAT(said, testing::ElementsAre("c.ROR: holds no positions: nothing of it is in the output",
                                         HasSubstr("without a time")));
}

}  // namespace
}  // namespace kalmira
