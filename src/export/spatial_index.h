#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "export/database.h"

namespace kalmira {

struct Box {
  double west = 0, east = 0, south = 0, north = 0;

  void widen(const Box& other);
};

// The R-tree over a map layer, packed as the layer's geometries come: neighbours in a survey lie beside each other, so
// every fifty of them make a node. SQLite's own way, one search of the tree for each, takes ten times as long as all
// the rest. What comes out are the three tables that its R-tree module keeps, as it documents them.
class SpatialIndex {
 public:
  // Makes the tables; `name` is the whole name of the tree.
  SpatialIndex(Database& database, const std::string& name);

  // Ids rise.
  bool add(std::int64_t id, const Box& box);
  bool finish();

 private:
  struct Cell {
    std::int64_t id = 0;  // of a row, above the leaves of a node
    Box box;
  };

  bool writeNode(std::size_t level, std::int64_t number, bool root);
  bool addTo(std::size_t level, const Cell& cell);

  Statement node_, row_, rows_, parent_;
  std::vector<std::vector<Cell>> levels_;  // the node in the making on each
  std::int64_t last_number_ = 1;           // the root's, which is written last
};

}  // namespace kalmira
