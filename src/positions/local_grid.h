#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "positions/projection.h"

// The survey's own grid, for surveys without a receiver: its lines are numbered, and its stations counted.
namespace kalmira {

// The number at the beginning of a line's name: sign, digits, fraction. "12N" is 12; "L7" has none.
std::optional<double> lineNumber(std::string_view name);

struct GridPoint {
  double x = 0;
  double y = 0;
};
// On lines that run north or south x is the line's number and y the station; on those that run west or east the other
// way round. Nothing where one of them is not known.
std::optional<GridPoint> gridPoint(std::optional<double> lineNumber, char direction, std::optional<double> station);

// Where the grid lies on the earth.
struct GridPlacement {
  PlanePoint origin;
  double azimuth = 0;  // of the grid's y axis, degrees clockwise from the zone's north
  MapZone zone;

  PlanePoint at(const GridPoint& point) const;
};
// "500000,5500000,30,32N". Nothing for what is none.
std::optional<GridPlacement> parseGridPlacement(std::string_view text);

}  // namespace kalmira
