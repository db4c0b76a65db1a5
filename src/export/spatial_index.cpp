#include "export/spatial_index.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace kalmira {
namespace {

// Of a two-dimensional tree on pages of 4096 bytes or more: 51 cells of 24 bytes behind 4 bytes.
constexpr std::size_t kCells = 51;
constexpr std::size_t kNodeBytes = 4 + kCells * 24;

std::string morePairs() {
  std::string pairs;
  for (std::size_t i = 1; i < kCells; ++i) pairs += ", (?, ?)";
  return pairs;
}

template <typename Integer>
void putBytes(std::string& data, Integer value) {
  for (int shift = 8 * (static_cast<int>(sizeof value) - 1); shift >= 0; shift -= 8)
    data += static_cast<char>((value >> shift) & 0xFF);
}

void putCoordinate(std::string& data, double value, bool upwards) {
  auto single = static_cast<float>(value);
  const float beyond = upwards ? std::numeric_limits<float>::infinity() : -std::numeric_limits<float>::infinity();
  if (upwards ? static_cast<double>(single) < value : static_cast<double>(single) > value)
    single = std::nextafter(single, beyond);
  putBytes(data, std::bit_cast<std::uint32_t>(single));
}

}  // namespace

void Box::widen(const Box& other) {
  west = std::min(west, other.west);
  east = std::max(east, other.east);
  south = std::min(south, other.south);
  north = std::max(north, other.north);
}

SpatialIndex::SpatialIndex(Database& database, const std::string& name)
    : node_(database,
            (database.run(fmt::format("CREATE VIRTUAL TABLE \"{}\" USING rtree(id, minx, maxx, miny, maxy)", name)),
             fmt::format("INSERT OR REPLACE INTO \"{}_node\" VALUES (?, ?)", name))),
      row_(database, fmt::format("INSERT INTO \"{}_rowid\" VALUES (?, ?)", name)),
      rows_(database, fmt::format("INSERT INTO \"{}_rowid\" VALUES (?, ?){}", name, morePairs())),
      parent_(database, fmt::format("INSERT INTO \"{}_parent\" VALUES (?, ?)", name)),
      levels_(1) {}

bool SpatialIndex::add(std::int64_t id, const Box& box) { return addTo(0, {id, box}); }

bool SpatialIndex::addTo(std::size_t level, const Cell& cell) {
  if (level == levels_.size()) levels_.emplace_back();
  if (levels_[level].size() == kCells && !writeNode(level, ++last_number_, false)) return false;
  levels_[level].push_back(cell);
  return true;
}

bool SpatialIndex::writeNode(std::size_t level, std::int64_t number, bool root) {
  auto& cells = levels_[level];
  std::string data;
  putBytes(data, static_cast<std::uint16_t>(root ? level : 0));
  putBytes(data, static_cast<std::uint16_t>(cells.size()));
  Cell whole{.id = number, .box = cells.empty() ? Box{} : cells.front().box};
  // Whole leaves are nearly all there is to do: their rows go in together.
  const bool wholeLeaf = level == 0 && cells.size() == kCells;
  auto& inside = wholeLeaf ? rows_ : level == 0 ? row_ : parent_;
  for (const auto& cell : cells) {
    putBytes(data, static_cast<std::uint64_t>(cell.id));
    putCoordinate(data, cell.box.west, false);
    putCoordinate(data, cell.box.east, true);
    putCoordinate(data, cell.box.south, false);
    putCoordinate(data, cell.box.north, true);
    whole.box.widen(cell.box);
    inside.integer(cell.id);
    inside.integer(number);
    if (!wholeLeaf && !inside.run()) return false;
  }
  if (wholeLeaf && !rows_.run()) return false;
  data.resize(kNodeBytes, '\0');
  cells.clear();
  node_.integer(number);
  node_.blob(data);
  return node_.run() && (root || addTo(level + 1, whole));
}

bool SpatialIndex::finish() {
  for (std::size_t level = 0; level + 1 < levels_.size(); ++level) {
    if (!writeNode(level, ++last_number_, false)) return false;
  }
  return writeNode(levels_.size() - 1, 1, true);
}

}  // namespace kalmira
