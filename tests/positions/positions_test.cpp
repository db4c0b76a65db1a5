#include <fmt/format.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <sstream>
#include <vector>

#include "gps/nmea.h"
#include "positions/survey_places.h"
#include "support/walk.h"

namespace kalmira {
namespace {

struct Found {
  std::size_t readings = 0, placed = 0;
  double farthest = 0;        // from where the instrument was, metres
  std::vector<double> empty;  // times of readings without a place
  std::vector<std::optional<Place>> places;
  std::optional<double> utcFault;  // the largest
  LeftOut leftOut;
};

Found find(const Walk& walk, bool manual = false) {
  RecordReader reader;
  EXPECT_EQ(reader.open(std::make_unique<std::istringstream>(walk.bytes())).kind, FileErrorKind::none);
  const auto scan = scanPositions(reader, walk.options, std::nullopt);
  reader.seek(kLength);
  Found found;
  std::optional<MapZone> zone = walk.zone;
  const auto place = [&](const Place* at, std::optional<double> utc) {
    found.places.push_back(at == nullptr ? std::nullopt : std::optional(*at));
    const double t = static_cast<double>(found.places.size()) * 0.1;
    const double right = kDay * 86400 + walk.start + t + walk.receiver(t);
    if (utc) found.utcFault = std::max(found.utcFault.value_or(0), std::abs(*utc - right));
  };
  PlaceFinder finder(scan, walk.options, manual, zone, {.reading = place, .moment = {}});
  Record record;
  while (reader.next(record)) {
    const auto type = recordTypeOf(record.bytes);
    found.readings += type == RecordType::reading ? 1U : 0U;
    finder.take(type, record);
  }
  finder.finish();
  EXPECT_EQ(found.places.size(), found.readings);
  for (std::size_t i = 0; i < found.places.size(); ++i) {
    const double t = static_cast<double>(i + 1) * 0.1;
    const auto& at = found.places[i];
    if (!at) {
      found.empty.push_back(t);
      continue;
    }
    ++found.placed;
    const auto was = walk.instrument ? walk.instrument(t) : walk.path(t);
    found.farthest =
        std::max(found.farthest, std::hypot(at->plane.easting - was.easting, at->plane.northing - was.northing));
    const auto again = project(walk.zone, at->at);
    EXPECT_LT(std::hypot(again.easting - at->plane.easting, again.northing - at->plane.northing), 0.001) << t;
  }
  found.leftOut = finder.leftOut();
  return found;
}

double jitter(int n) { return 0.1 + (n * 7919 % 200) / 1000.0; }  // 0.1 to 0.299 s

PlanePoint circle(double t) {
  const double turn = t * 1.4 / 20;
  return {500000 + 20 * std::sin(turn), 5500000 - 20 * std::cos(turn)};
}

TEST(Places, LieWhereTheInstrumentWas) {
  Walk straight{.delay = jitter};
  Walk round{.path = circle, .sentences_hz = 10, .delay = jitter};
  Walk south{.zone = {.number = 56, .north = false}, .drift = 8e-5, .delay = jitter};
  south.path = [](double t) { return PlanePoint{600000 - 1.1 * t, 6200000 + 0.9 * t}; };
  // The counter of the ticks begins anew between the time mark and the first sentence.
  Walk wrapping{.uptime = 4294967.25, .delay = jitter};
  Walk midnight{.start = 86400 - 100, .delay = jitter};
  Walk dateLine{.zone = {.number = 60, .north = true}, .delay = jitter};
  const auto edge = project(dateLine.zone, {10, 179.9999});
  dateLine.path = [edge](double t) { return PlanePoint{edge.easting + 1.2 * t, edge.northing + 0.2 * t}; };
  Walk pole{.zone = {.number = 0, .north = true}, .delay = jitter};
  pole.path = [](double t) { return PlanePoint{2000000 - 150 + 1.0 * t, 2000000.5}; };
  Walk restless{.delay = [](int n) { return 0.1 + (n % 50 == 0 ? 0 : n * 7919 % 900 / 1000.0); }};
  for (const auto& [name, walk, millimetres] : {std::tuple{"straight", straight, 2.0},
                                                {"circle", round, 4.0},
                                                {"south, with a fast clock", south, 5.0},
                                                {"midnight", midnight, 2.0},
                                                {"counter", wrapping, 2.0},
                                                {"date line", dateLine, 2.0},
                                                {"pole", pole, 3.0},
                                                {"heavy jitter", restless, 2.0}}) {
    const auto found = find(walk);
    EXPECT_GE(found.placed, found.readings - 12) << name;
    EXPECT_LT(found.farthest * 1000, millimetres) << name;
    EXPECT_EQ(found.leftOut.all(), 0U) << name;
    EXPECT_LT(found.utcFault.value_or(1), 0.004) << name;
  }
}

TEST(Places, DoNotFollowWhatIsNoFix) {
  Walk walk{.delay = jitter};
  walk.change = [&walk](int n, std::string text) {
    const auto at = unproject(walk.zone, walk.path(n));
    if (n == 0 || n % 40 == 7) return gga(walk.start + n, {at.latitude - 40, at.longitude + 20});
    if (n % 40 == 12) return gga(walk.start + n, at, '0');
    if (n % 40 == 17) return gga(walk.start + n + 7, at);
    if (n % 40 == 22) return gga(walk.start + n - 7, at);
    if (n % 40 == 27) return withChecksum("GPGGA,100000.00,,,,,4,12,0.8,100.0,M,18.0,M,,");
    return text;
  };
  const auto found = find(walk);
  EXPECT_GE(found.placed, found.readings - 25);
  EXPECT_LT(found.farthest, 0.002);
  EXPECT_EQ(found.leftOut.jumps, 9U);
  EXPECT_EQ(found.leftOut.noFix, 8U);
  EXPECT_EQ(found.leftOut.untimely, 15U);
  EXPECT_EQ(found.leftOut.unreadable, 7U);
}

TEST(Places, ComeThroughStallsAndClocksThatArePutRight) {
  Walk stall{.delay = [](int n) { return n >= 100 && n < 130 ? 130.2 - n + (n - 100) * 0.01 : jitter(n); }};
  auto found = find(stall);
  EXPECT_GE(found.placed, found.readings - 12) << "what was held up is made up for";
  EXPECT_LT(found.farthest, 0.002);
  for (const double jump : {-18.0, 1.0, -3600.0, 7200.0}) {
    Walk restarted{.delay = jitter, .receiver = [jump](double t) { return t < 150 ? 0 : jump; }};
    found = find(restarted);
    EXPECT_LT(found.farthest, 0.003) << jump;
    EXPECT_GE(found.placed, found.readings - 35) << jump;
    for (const double t : found.empty) EXPECT_TRUE(t < 1 || t > 298 || (t > 148 && t < 152)) << jump << ' ' << t;
  }
}

TEST(Places, AreNeverMadeUp) {
  Walk walk{.delay = jitter, .heard = [](double t) { return t < 100 || t > 108; }};
  auto found = find(walk);
  EXPECT_THAT(found.empty, testing::Contains(testing::DoubleNear(104, 0.01)));
  EXPECT_NEAR(static_cast<double>(std::ranges::count_if(found.empty, [](double t) { return t > 1 && t < 298; })), 100,
              1)
      << "99 to 109 s";
  walk.options.maxGap_s = 20;
  found = find(walk);
  EXPECT_EQ(std::ranges::count_if(found.empty, [](double t) { return t > 1 && t < 298; }), 0);
  EXPECT_NEAR(found.places.at(1030)->gap_s, 10, 1e-6);
  EXPECT_EQ(found.places.at(1030)->fix, 4);
  EXPECT_EQ(worseFix(4, 5), 5);
  EXPECT_EQ(worseFix(2, 1), 1);
  EXPECT_EQ(worseFix(5, 2), 2);
}

TEST(Places, AreTheInstrumentsWhereverItsAntennaIs) {
  // On a circle the antenna does not move where the instrument looks, by as much as it is ahead of it.
  const auto straight = [](double t) { return PlanePoint{500000 - 0.5 * t, 5500000 + 1.1 * t}; };
  for (const auto& [path, most] : {std::pair<PlanePoint (*)(double), double>{straight, 0.003}, {circle, 0.22}}) {
    Walk walk{.sentences_hz = 5};
    walk.path = [path = path](double t) {
      const auto at = path(t);
      const auto next = path(t + 0.001);
      const double turn = std::atan2(next.easting - at.easting, next.northing - at.northing);
      return PlanePoint{at.easting + 1.5 * std::sin(turn) - 0.5 * std::cos(turn),
                        at.northing + 1.5 * std::cos(turn) + 0.5 * std::sin(turn)};
    };
    walk.options.ahead_m = 1.5;
    walk.options.right_m = -0.5;
    walk.options.up_m = 2;
    walk.instrument = path;
    const auto found = find(walk);
    EXPECT_GE(found.placed, found.readings - 12);
    EXPECT_LT(found.farthest, most);
    EXPECT_NEAR(*found.places.at(1000)->altitude, 98, 1e-9);
  }
}

TEST(Places, OfManualReadingsAreThoseHeldForThem) {
  const auto sentence = [](double t, const GeoPoint& at, char quality = '4') {
    return formatGpsSentence(kLength, gga(kStart + t, at, quality), static_cast<std::uint32_t>(1000 * t + 500), '@',
                             '#');
  };
  const auto reading = [](double t) {
    return formatReading(kLength, "T$-0400+0800", static_cast<std::uint32_t>(1000 * t));
  };
  const auto bytes = records(kLength, {"ORLA2   W230GPS0020"}) + sentence(0, {50, 7}) + reading(2) + reading(60) +
                     sentence(61, {51, 7}) + sentence(100, {52, 7}, '0') + reading(101) + reading(160) + reading(200) +
                     sentence(199, {53, 7});
  RecordReader reader;
  ASSERT_EQ(reader.open(std::make_unique<std::istringstream>(bytes)).kind, FileErrorKind::none);
  const auto scan = scanPositions(reader, {}, std::nullopt);
  reader.seek(kLength);
  std::optional<MapZone> zone;
  std::vector<std::string> told;
  PlaceFinder finder(
      scan, {}, true, zone,
      {.reading =
           [&](const Place* at, std::optional<double>) {
             told.push_back(at == nullptr ? "-" : fmt::format("{:.3f} {:.1f}", at->at.latitude, at->gap_s));
           },
       .moment = {}});
  Record record;
  while (reader.next(record)) finder.take(recordTypeOf(record.bytes), record);
  finder.finish();
  EXPECT_THAT(told, testing::ElementsAre("50.000 1.5", "51.000 1.5", "-", "-", "53.000 0.5"));
}

TEST(Projection, MeetsPrintedPoints) {
  struct Case {
    GeoPoint at;
    int epsg;
    double easting, northing;
  };
  for (const auto& item : {Case{{0, 3}, 32631, 500000, 0}, Case{{0, 0}, 32631, 166021.443, 0},
                           Case{{60, 4}, 32632, 221288.770, 6661953.041}, Case{{90, 0}, 32661, 2000000, 2000000}}) {
    const auto zone = zoneOf(item.at);
    EXPECT_EQ(zone.epsg(), item.epsg);
    const auto plane = project(zone, item.at);
    EXPECT_NEAR(plane.easting, item.easting, 0.001) << item.epsg;
    EXPECT_NEAR(plane.northing, item.northing, 0.001) << item.epsg;
    const auto back = unproject(zone, plane);
    EXPECT_NEAR(back.latitude, item.at.latitude, 1e-11);
  }
  EXPECT_EQ(zoneOf({78, 10}).number, 33) << "Svalbard";
  EXPECT_EQ(zoneOf({-85, 10}).epsg(), 32761);
  EXPECT_EQ(parseZone("33n", std::nullopt)->epsg(), 32633);
  EXPECT_EQ(parseZone("33", false)->epsg(), 32733);
  for (const char* wrong : {"", "0N", "61S", "33X", "-3N", "N"}) EXPECT_FALSE(parseZone(wrong, std::nullopt)) << wrong;
  EXPECT_FALSE(parseZone("33", std::nullopt));
  EXPECT_NEAR(nearbyLength({50, 7}, {50.01, 7.01}), geodesicLength({50, 7}, {50.01, 7.01}), 0.5);
}

}  // namespace
}  // namespace kalmira
