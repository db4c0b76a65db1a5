#pragma once

#include <optional>
#include <string_view>

// Places on the earth (WGS 84) and on the plane of a map. Lengths are metres, angles degrees. Nothing here throws or is
// bound to a thread.
namespace kalmira {

struct GeoPoint {
  double latitude = 0;
  double longitude = 0;
};

struct PlanePoint {
  double easting = 0;
  double northing = 0;
};

// A zone of the universal transverse Mercator grid, or with number 0 of the polar stereographic one.
struct MapZone {
  int number = 0;  // 1 to 60, 0 for a pole
  bool north = true;

  // 32601 to 32660, 32701 to 32760; 32661 and 32761 for the poles.
  int epsg() const;
  bool operator==(const MapZone&) const = default;
};

// The zone that a place lies in, by the usual rules: the wider zones of Norway and Svalbard, the poles beyond 84
// degrees north and 80 south.
MapZone zoneOf(const GeoPoint& place);
// "33N" or "7S"; `north` is what holds where the letter is missing, nothing: it must not be. Nothing for what is no
// zone.
std::optional<MapZone> parseZone(std::string_view text, std::optional<bool> north);

PlanePoint project(const MapZone& zone, const GeoPoint& place);
GeoPoint unproject(const MapZone& zone, const PlanePoint& place);

// The shortest way over the ellipsoid.
double geodesicLength(const GeoPoint& from, const GeoPoint& to);
// The same for places up to a few kilometres apart, within a thousandth and many times as fast.
double nearbyLength(const GeoPoint& from, const GeoPoint& to);

// The place some metres away, up to a few hundred.
GeoPoint movedBy(const GeoPoint& from, double east_m, double north_m);

// A longitude brought to -180 up to 180.
double wrappedLongitude(double longitude);

}  // namespace kalmira
