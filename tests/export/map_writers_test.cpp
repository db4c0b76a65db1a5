#include <gmock/gmock.h>

#include <QXmlStreamReader>
#include <cstdlib>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "export/colour_scale.h"
#include "export/escaped.h"
#include "export/spool.h"
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
    walk.line = "<7&\xFFy";
    walk.also = {{8.2, formatReading(kLength, "C\xC3\xA4 > 1\\\x01", walk.tickOf(8.2))},
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

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
    text.replace(at, what.size(), by);
  return text;
}

// A table without quotes, bytes that are no text replaced.
struct Table {
  explicit Table(const std::string& csv) {
    std::istringstream lines(replaced(csv, "\xFF", kReplaced));
    for (std::string line; std::getline(lines, line);) {
      auto& row = rows.emplace_back();
      for (std::size_t from = 0, to = 0; to < line.size(); from = to + 1) {
        to = std::min(line.find(',', from), line.size());
        row.push_back(line.substr(from, to - from));
      }
    }
    names = rows.front();
    rows.erase(rows.begin());
  }
  std::string cell(const std::vector<std::string>& row, std::string_view name) const {
    const auto found = std::ranges::find(names, name);
    return found == names.end() ? "" : row.at(static_cast<std::size_t>(found - names.begin()));
  }

  std::vector<std::string> names;
  std::vector<std::vector<std::string>> rows;
};

TEST_F(Map, GeojsonHoldsTheTable) {
  const auto first = walked("a.ROR", walk());
  const auto other = file("sub/a.ROR", records24({"MIRKA   W210GRD0000", "T$-0004-0040       1500"}));
  const auto notes = R"({"project": "Dyke \"7\"", "antennaUp": 0.5, "settings": {"surveyMode": "1"}})"s;
  file("a.ROR.json", notes);
  file("sub/a.ROR.json", R"({"site": "Ä"})");
  const std::set<std::string> texts{"line", "date", "time", "dipole", "range", "utc", "file", "kind", "event", "text"};
  for (const std::vector<std::string>& arguments :
       {std::vector{first}, {first, "--wide"}, {first, "--events"}, {first, other, "--mixed"}, {other}}) {
    const Table table(exported(arguments, "t.csv"));
    std::string features;
    for (const auto& row : table.rows) {
      const auto longitude = table.cell(row, "longitude");
      const auto point = R"({"type":"Point","coordinates":[)" + longitude + "," + table.cell(row, "latitude") + "]}";
      std::string properties;
      for (std::size_t i = 0; i < row.size(); ++i) {
        const auto value = row[i].empty() ? "null" : texts.contains(table.names[i]) ? json(row[i]).dump() : row[i];
        properties += fmt::format("{}\"{}\":{}", i > 0 ? "," : "", table.names[i], value);
      }
      features += fmt::format(R"({}{{"type":"Feature","geometry":{},"properties":{{{}}}}})",
                              features.empty() ? "" : ",\n", longitude.empty() ? "null" : point, properties);
    }
    const auto text = exported(arguments, "t.GeoJSON");
    EXPECT_THAT(text, testing::StartsWith("{\"type\":\"FeatureCollection\",\"features\":[\n" + features + "\n]"));
    EXPECT_EQ(json::parse(text).at("features").size(), table.rows.size());
  }
  auto map = json::parse(exported({first, other, "--mixed"}, "t.geojson"));
  EXPECT_EQ(map["notes"], (json{{"a.ROR", json::parse(notes)}, {"a.ROR (2)", {{"site", "Ä"}}}}));
  std::filesystem::remove(path("a.ROR.json"));
  map = json::parse(exported({first, "--utm", "33"}, "t.geojson"));
  EXPECT_FALSE(map.contains("notes"));
  EXPECT_NEAR(map["features"][10]["geometry"]["coordinates"][0], 7.615, 0.001) << "degrees in any zone";
}

TEST(Escaped, IsTextWhateverTheBytes) {
  struct Case {
    std::string text, json, xml;
  };
  for (const auto& [text, inJson, inXml] :
       {Case{"a<b>&\"\\", R"("a<b>&\"\\")", R"(a&lt;b&gt;&amp;&quot;\)"},
        Case{"\1\n", R"("\u0001\u000a")", kReplaced + "\n"}, Case{"\xC3\xA4\xF0\x9F\x98\x80", "\"ä😀\"", "ä😀"},
        Case{"\xC3", '"' + kReplaced + '"', kReplaced},
        Case{"\xC0\xAFz", '"' + kReplaced + kReplaced + "z\"", kReplaced + kReplaced + "z"},
        Case{"\xED\xA0\x80", '"' + kReplaced + kReplaced + kReplaced + '"', kReplaced + kReplaced + kReplaced},
        Case{"\xEF\xBF\xBE|", '"' + kReplaced + kReplaced + kReplaced + "|\"",
             kReplaced + kReplaced + kReplaced + "|"}}) {
    std::string out;
    appendJsonText(out, text);
    EXPECT_EQ(out, inJson);
    appendXmlText(out = {}, text);
    EXPECT_EQ(out, inXml);
  }
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
  EXPECT_EQ(waypoints[0].of("name"), "\xC3\xA4 > 1\\" + kReplaced);
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

// The readings on a map, each as its row of the table, and the names of their folders.
std::multimap<std::vector<std::string>, std::string> readingsOf(const Element& document, const Table& table) {
  std::multimap<std::vector<std::string>, std::string> readings;
  const auto styles = document.all("Style");
  const auto folders = document.all("Folder");
  EXPECT_EQ(styles.size(), folders.size());
  for (std::size_t i = 0; i < folders.size(); ++i) {
    EXPECT_TRUE(folders[i].inOrder({"name", "Placemark"}));
    for (const auto& placemark : folders[i].all("Placemark")) {
      EXPECT_TRUE(placemark.inOrder({"name", "TimeStamp", "styleUrl", "ExtendedData", "Point"}));
      std::map<std::string, std::string> cells;
      const auto data = placemark.all("ExtendedData");
      for (const auto& cell : data.at(0).parts) cells[cell.attributes.at("name")] = cell.of("value");
      EXPECT_EQ(placemark.of("styleUrl"), "#" + styles.at(i).attributes.at("id"));
      EXPECT_EQ(placemark.of("name"), cells["line"] + " " + cells["station"]);
      EXPECT_EQ(placemark.all("TimeStamp").empty(), cells["utc"].empty());
      EXPECT_EQ(placemark.all("Point").at(0).of("coordinates"), cells["longitude"] + "," + cells["latitude"]);
      std::vector<std::string> row;
      for (const auto& name : table.names) row.push_back(cells[name]);
      readings.emplace(row, folders[i].of("name"));
    }
  }
  return readings;
}

TEST_F(Map, KmlHasAFolderAClassOfValues) {
  const auto first = walked("a.ROR", walk());
  auto undated = walk();
  undated.dated = false;
  const auto other = walked("sub/a.ROR", undated);
  const auto placeless = file("c.RMI", records24({"MIRKA   W210GRD0000", "T$-0004-0040       1500"}));
  file("a.ROR.json", R"({"site": "<b>"})");
  const std::string classes = "0 to 10 mS/m 10 to 20 mS/m 20 to 30 mS/m 30 to 40 mS/m 40 to 50 mS/m 50 to 60 mS/m ";
  const auto aboutOf = [](std::string_view channel) {
    return fmt::format("coloured by {}\na.ROR\nsite: <b>", channel);
  };
  struct Case {
    std::vector<std::string> arguments, chosen;
    std::string channel, about, folders;
  };
  for (const auto& [arguments, chosen, channel, about, folders] :
       {Case{{first}, {}, "cond_v", aboutOf("cond_v in mS/m"), classes + "no value "},
        Case{{first, other, "--wide"}, {}, "cond_v", aboutOf("cond_v in mS/m"), classes + "no value "},
        Case{{placeless, first, "--mixed"}, {}, "cond_v", aboutOf("cond_v in mS/m"), classes + "no value "},
        Case{{first}, {"--colour", "inph_v"}, "inph_v", aboutOf("inph_v in ppt"), "-2 ppt no value "},
        Case{{other}, {"--colour", "cond_h"}, "cond_h", "coloured by cond_h in mS/m", "no value "},
        Case{{placeless}, {}, "cond", "-", ""}}) {
    auto mapArguments = arguments;
    mapArguments.insert(mapArguments.end(), chosen.begin(), chosen.end());
    const auto document = rootOf(exported(mapArguments, "t.kml")).all("Document").at(0);
    EXPECT_TRUE(document.inOrder({"name", "description", "Style", "Folder"}));
    EXPECT_EQ(document.of("description"), about);
    std::string found;
    for (const auto& part : document.all("Folder")) found += part.of("name") + " ";
    EXPECT_EQ(found, folders);
    const Table table(exported(arguments, "t.csv"));
    auto readings = readingsOf(document, table);
    for (const auto& row : table.rows) {
      if (table.cell(row, "longitude").empty()) continue;
      const auto reading = readings.find(row);
      ASSERT_NE(reading, readings.end()) << testing::PrintToString(row);
      const auto name = reading->second;
      const auto value = table.cell(row, channel);
      const auto to = name.find(" to ");
      EXPECT_EQ(value.empty(), name == "no value");
      EXPECT_GE(parseReal(value), parseReal(name));
      EXPECT_LT(parseReal(value), to == std::string::npos ? 1 : parseReal(name.substr(to + 4)));
      readings.erase(reading);
    }
    EXPECT_TRUE(readings.empty());
  }
  EXPECT_EQ(run({first, "--colour", "thickness", "-o", path("t.kml")}), kExportUsage);
  EXPECT_THAT(said, testing::ElementsAre("--colour: there is no thickness, but cond_v, cond_h, inph_v, inph_h"));
  ExportRequest request;
  EXPECT_EQ(saidOf(exportCommandLine(request), "a --colour cond_v"), "--colour colours no csv");
}

TEST_F(Map, StaysOnTheEarthAtItsEdges) {
  Walk dateLine{.zone = {.number = 60, .north = true}, .seconds = 20};
  const auto edge = project(dateLine.zone, {10, 179.99999});
  dateLine.path = [edge](double t) { return PlanePoint{edge.easting + 1.2 * t, edge.northing}; };
  dateLine.change = [](int n, const std::string& text) { return n == 1 ? gga(kStart + 1, {10, 180}) : text; };
  Walk pole{.zone = {.number = 0, .north = false}, .seconds = 20};
  pole.path = [](double t) { return PlanePoint{2000000 - 9 + 1.0 * t, 2000000}; };
  for (const auto& walk : {dateLine, pole}) {
    const auto input = walked("e.ROR", walk);
    const auto gpx = exported({input}, "t.gpx");
    expectSound(rootOf(gpx));
    EXPECT_EQ(gpx.find("lon=\"-180.00000000\"") != std::string::npos, walk.zone.number == 60);
    const auto map = json::parse(exported({input}, "t.geojson"));
    std::size_t placed = 0;
    for (const auto& feature : map["features"]) {
      if (feature["geometry"].is_null()) continue;
      ++placed;
      const double longitude = feature["geometry"]["coordinates"][0];
      const double latitude = feature["geometry"]["coordinates"][1];
      EXPECT_TRUE(std::abs(longitude) <= 180 &&
                  (walk.zone.number == 0 ? latitude < -89.9998 : longitude * longitude > 32398));
    }
    EXPECT_GE(placed, 180U);
    std::size_t placemarks = 0;
    for (const auto& part : rootOf(exported({input}, "t.kml")).all("Document").at(0).all("Folder"))
      placemarks += part.all("Placemark").size();
    EXPECT_EQ(placemarks, placed);
  }
}

TEST_F(Map, LeavesNothingBehindWhenItCannotBeWrittenOrIsLeft) {
  Walk walk{.seconds = 300};
  walk.sentences_hz = 10;
  const auto input = walked("a.ROR", walk);
  for (const std::string out : {"t.gpx", "t.kml"}) {
    {
      const SmallFiles small(40000);
      EXPECT_EQ(run({input, "-o", path(out)}), kExportFailed);
    }
    EXPECT_THAT(said.back(), fmt::format("{}: cannot be written: temporary file in {}: File too large", out,
                                         std::filesystem::canonical(folder.path()).string()));
    goOn = [&](std::string_view name, std::uint64_t, std::uint64_t) { return name != out; };
    EXPECT_EQ(run({input, "-o", path(out)}), kExportFailed);
    EXPECT_EQ(said.back(), out + ": left before its end; nothing is written");
    goOn = [](std::string_view, std::uint64_t, std::uint64_t) { return true; };
    EXPECT_EQ(run({input, "-o", "/dev/full"}), kExportFailed);
    EXPECT_EQ(run({input, "-o", path("nowhere/" + out)}), kExportFailed);
    EXPECT_THAT(said.back(), testing::EndsWith("nowhere: No such file or directory"));
  }
  std::filesystem::remove(input);
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(Spool, GivesBackWhatItTook) {
  const TempFolder folder;
  Spool spool(folder.path());
  std::vector<std::string> pieces;
  EXPECT_TRUE(spool.each([](std::string_view) { return false; })) << "none";
  for (std::size_t i = 0; i < 300; ++i) {
    for (const std::size_t size : {i, std::size_t{0}, 1000 * i}) {
      pieces.emplace_back(size, static_cast<char>(i));
      ASSERT_TRUE(spool.add(pieces.back()));
    }
    if (i % 100 != 99) continue;
    auto next = pieces.begin();
    EXPECT_TRUE(spool.each([&](std::string_view piece) { return piece == *next++; }));
    EXPECT_EQ(next, pieces.end());
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << "it has no name";
  EXPECT_EQ(spoolFolder(folder.path() / "t.kml"), std::filesystem::canonical(folder.path()));
  ::setenv("TMPDIR", "/chosen", 1);
  EXPECT_EQ(spoolFolder("/dev/null"), "/chosen");
  ::unsetenv("TMPDIR");
  EXPECT_EQ(spoolFolder(std::nullopt), "/var/tmp");
}

// The classes of some values, as the legend has them.
std::string legendOf(const std::vector<double>& values) {
  ValueSample sample;
  for (const double value : values) sample.take(value);
  const auto classes = sample.classes();
  std::string legend;
  std::set<std::uint32_t> colours;
  for (std::size_t i = 0; i < classes.size(); ++i) {
    legend += (legend.empty() ? "" : "|") + classText(classes[i], "");
    colours.insert(classes[i].rgb);
    EXPECT_EQ(classes[i].from, i > 0 ? classes[i - 1].to : classes[i].from);
  }
  EXPECT_EQ(colours.size(), classes.size());
  EXPECT_LE(classes.size(), 8U);
  for (const double value : values) {
    if (!std::isfinite(value)) continue;
    const auto& range = classes.at(classOf(classes, value));
    EXPECT_TRUE(static_cast<float>(range.from) <= static_cast<float>(value) &&
                static_cast<float>(value) <= static_cast<float>(range.to))
        << value << " in " << classText(range, "");
  }
  return legend;
}

TEST(ColourScale, HasRoundClassesThatHoldAllValues) {
  const auto row = [](std::size_t count, double from, double step) {
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i)
      values.push_back(static_cast<double>(static_cast<float>(from + static_cast<double>(i) * step)));
    return values;
  };
  auto outliers = row(1000, 0, 0.04);
  for (const double value : {-500.5, 7e9, std::nan(""), std::numeric_limits<double>::infinity()})
    outliers.push_back(value);
  EXPECT_EQ(legendOf({}), "");
  EXPECT_EQ(legendOf({std::nan("")}), "");
  EXPECT_EQ(legendOf(row(3, 2.5, 0)), "2.5");
  EXPECT_EQ(legendOf(row(81, 0, 1)), "0 to 10|10 to 20|20 to 30|30 to 40|40 to 50|50 to 60|60 to 70|70 to 80");
  EXPECT_EQ(legendOf(row(8, 0.1, 0.1)), "0.1 to 0.2|0.2 to 0.3|0.3 to 0.4|0.4 to 0.5|0.5 to 0.6|0.6 to 0.7|0.7 to 0.8");
  EXPECT_EQ(legendOf(row(100, -12, 0.2)), "-15 to -10|-10 to -5|-5 to 0|0 to 5|5 to 10");
  EXPECT_EQ(legendOf(outliers), "-500.5 to 5|5 to 10|10 to 15|15 to 20|20 to 25|25 to 30|30 to 35|35 to 7000000000");
  EXPECT_EQ(legendOf(row(100000, 0, 10)),
            "0 to 200000|200000 to 400000|400000 to 600000|600000 to 800000|800000 to 1000000");
  EXPECT_EQ(legendOf({-3e38, 3e38}).substr(0, 2), "-3");
  EXPECT_EQ(classText({.from = -0.5, .to = 10}, "mS/m"), "-0.5 to 10 mS/m");
  // A value that prints as a limit lies above it.
  ValueSample tenths;
  for (const double value : row(8, 0.1, 0.1)) tenths.take(value);
  for (int i = 1; i < 8; ++i)
    EXPECT_EQ(classOf(tenths.classes(), static_cast<double>(static_cast<float>(i) / 10)),
              static_cast<std::size_t>(i - 1));
  std::vector<double> noise(5000);
  for (std::size_t i = 0; i < noise.size(); ++i)
    noise[i] = static_cast<double>(static_cast<float>(std::sin(static_cast<double>(i * i)) * std::pow(10, i % 7)));
  EXPECT_FALSE(legendOf(noise).empty());
}

}  // namespace
}  // namespace kalmira
