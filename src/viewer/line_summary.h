#pragma once

#include <array>
#include <limits>
#include <vector>

#include "instruments/profile_map.h"
#include "viewer/line_walk.h"

namespace kalmira {

// From the least to the largest value of a trace.
struct TraceSpan {
  float least = std::numeric_limits<float>::infinity();
  float largest = -std::numeric_limits<float>::infinity();

  bool any() const { return least <= largest; }
  void take(float value) {
    if (value < least) least = value;
    if (value > largest) largest = value;
  }
  void take(const TraceSpan& other) {
    if (other.least < least) least = other.least;
    if (other.largest > largest) largest = other.largest;
  }
};
using TraceSpans = std::array<TraceSpan, kProfilePoints>;

// What all rows of a line are between, in blocks of as many rows as keep it below three megabytes: a line of ten
// million stations is drawn without going over it again.
class LineSummary {
 public:
  struct Block {
    TraceSpans spans;
    double station = 0;  // of its first row that has one
    bool hasStation = false;
  };

  void take(const LineRow& row, bool withExtras);
  int rowsPerBlock() const { return rows_per_block_; }
  int rowCount() const { return rows_; }
  const std::vector<Block>& blocks() const { return blocks_; }
  // Of the whole line.
  TraceSpans spans() const;

 private:
  void halve();

  int rows_per_block_ = 1;
  int rows_ = 0;
  std::vector<Block> blocks_;
};

}  // namespace kalmira
