#include "positions/projection.h"

#include <GeographicLib/Geodesic.hpp>
#include <GeographicLib/PolarStereographic.hpp>
#include <GeographicLib/TransverseMercator.hpp>
#include <GeographicLib/UTMUPS.hpp>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/text.h"

namespace kalmira {
namespace {

using GeographicLib::PolarStereographic;
using GeographicLib::TransverseMercator;

constexpr double kFalseEasting = 500000;
constexpr double kFalseNorthing = 10000000;  // of the southern half
constexpr double kPolarFalse = 2000000;
constexpr int kZones = 60;
constexpr int kPole = 61;

double middleOf(const MapZone& zone) { return 6.0 * zone.number - 183.0; }

// Metres that a degree is long at that latitude, northwards and eastwards.
struct DegreeLengths {
  double north = 0;
  double east = 0;
};

DegreeLengths degreesAt(double latitude) {
  constexpr double kEquator_m = 6378137.0;
  constexpr double kSquaredEccentricity = 0.00669437999014;
  constexpr double kRadian = std::numbers::pi / 180;
  const double sine = std::sin(latitude * kRadian);
  const double flat = 1 - kSquaredEccentricity * sine * sine;
  const double across = kEquator_m / std::sqrt(flat);
  return {across * (1 - kSquaredEccentricity) / flat * kRadian, across * std::sqrt(1 - sine * sine) * kRadian};
}

}  // namespace

int MapZone::epsg() const { return (north ? 32600 : 32700) + (number == 0 ? kPole : number); }

MapZone zoneOf(const GeoPoint& place) {
  return {.number = GeographicLib::UTMUPS::StandardZone(place.latitude, place.longitude), .north = place.latitude >= 0};
}

std::optional<MapZone> parseZone(std::string_view text, std::optional<bool> north) {
  const char letter = text.empty() ? ' ' : text.back();
  if (letter == 'N' || letter == 'n' || letter == 'S' || letter == 's') {
    north = letter == 'N' || letter == 'n';
    text.remove_suffix(1);
  }
  const auto number = wholeNumber<int>(text);
  if (!number || *number < 1 || *number > kZones || !north) return std::nullopt;
  return MapZone{.number = *number, .north = *north};
}

PlanePoint project(const MapZone& zone, const GeoPoint& place) {
  double x = 0;
  double y = 0;
  if (zone.number == 0) {
    PolarStereographic::UPS().Forward(zone.north, place.latitude, place.longitude, x, y);
    return {x + kPolarFalse, y + kPolarFalse};
  }
  TransverseMercator::UTM().Forward(middleOf(zone), place.latitude, place.longitude, x, y);
  return {x + kFalseEasting, y + (zone.north ? 0 : kFalseNorthing)};
}

GeoPoint unproject(const MapZone& zone, const PlanePoint& place) {
  GeoPoint point;
  if (zone.number == 0) {
    PolarStereographic::UPS().Reverse(zone.north, place.easting - kPolarFalse, place.northing - kPolarFalse,
                                      point.latitude, point.longitude);
    return point;
  }
  TransverseMercator::UTM().Reverse(middleOf(zone), place.easting - kFalseEasting,
                                    place.northing - (zone.north ? 0 : kFalseNorthing), point.latitude,
                                    point.longitude);
  return point;
}

double geodesicLength(const GeoPoint& from, const GeoPoint& to) {
  double length = 0;
  GeographicLib::Geodesic::WGS84().Inverse(from.latitude, from.longitude, to.latitude, to.longitude, length);
  return length;
}

double nearbyLength(const GeoPoint& from, const GeoPoint& to) {
  const auto [north, east] = degreesAt((from.latitude + to.latitude) / 2);
  const double northward = (to.latitude - from.latitude) * north;
  const double eastward = wrappedLongitude(to.longitude - from.longitude) * east;
  return std::sqrt(northward * northward + eastward * eastward);
}

GeoPoint movedBy(const GeoPoint& from, double east_m, double north_m) {
  const auto [north, east] = degreesAt(from.latitude);
  return {std::clamp(from.latitude + north_m / north, -90.0, 90.0),
          wrappedLongitude(from.longitude + east_m / std::max(east, 1.0))};
}

double wrappedLongitude(double longitude) {
  while (longitude > 180) longitude -= 360;
  while (longitude < -180) longitude += 360;
  return longitude;
}

}  // namespace kalmira
