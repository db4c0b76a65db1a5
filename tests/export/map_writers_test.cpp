#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "export/cells.h"
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

}  // namespace
}  // namespace kalmira
