#include "positions/local_grid.h"

#include <array>
#include <cmath>
#include <numbers>

#include "platform/text.h"

namespace kalmira {

std::optional<double> lineNumber(std::string_view name) {
  std::size_t end = name.starts_with('-') || name.starts_with('+') ? 1 : 0;
  const auto digits = [&] {
    const auto begin = end;
    while (end < name.size() && name[end] >= '0' && name[end] <= '9') ++end;
    return end > begin;
  };
  if (!digits()) return std::nullopt;
  if (end < name.size() && name[end] == '.') {
    const auto point = end++;
    if (!digits()) end = point;
  }
  return parseReal(name.substr(0, end));
}

std::optional<GridPoint> gridPoint(std::optional<double> lineNumber, char direction, std::optional<double> station) {
  if (!lineNumber || !station) return std::nullopt;
  const bool across = direction == 'W' || direction == 'E';
  return across ? GridPoint{*station, *lineNumber} : GridPoint{*lineNumber, *station};
}

PlanePoint GridPlacement::at(const GridPoint& point) const {
  const double turn = azimuth * std::numbers::pi / 180;
  return {origin.easting + point.x * std::cos(turn) + point.y * std::sin(turn),
          origin.northing - point.x * std::sin(turn) + point.y * std::cos(turn)};
}

std::optional<GridPlacement> parseGridPlacement(std::string_view text) {
  std::array<double, 3> numbers{};
  for (auto& number : numbers) {
    const auto comma = text.find(',');
    const auto value = wholeNumber<double>(text.substr(0, comma));
    if (!value || comma == std::string_view::npos) return std::nullopt;
    number = *value;
    text.remove_prefix(comma + 1);
  }
  const auto zone = parseZone(text, std::nullopt);
  if (!zone) return std::nullopt;
  return GridPlacement{.origin = {numbers[0], numbers[1]}, .azimuth = numbers[2], .zone = *zone};
}

}  // namespace kalmira
