#include "viewer/line_summary.h"

namespace kalmira {
namespace {

// Several times as many as a screen has columns, even at the last doubling.
constexpr std::size_t kMostBlocks = 16384;

void takeSpans(TraceSpans& into, const TraceSpans& from) {
  for (std::size_t i = 0; i < into.size(); ++i) into[i].take(from[i]);
}

}  // namespace

void LineSummary::take(const LineRow& row, bool withExtras) {
  if (rows_ == static_cast<int>(blocks_.size()) * rows_per_block_) {
    if (blocks_.size() == kMostBlocks) halve();
    blocks_.emplace_back();
  }
  ++rows_;
  if (row.isBreak) return;
  auto& block = blocks_.back();
  for (std::size_t slot = 0; slot < kSlots; ++slot) {
    if (row.channels.present[slot] != 0) block.spans[slot].take(row.channels.value[slot]);
  }
  constexpr std::size_t kThicknessTrace = 4;
  if (row.hasThickness) block.spans[kThicknessTrace].take(row.thickness);
  for (std::size_t i = 0; withExtras && i < row.extras.size(); ++i) block.spans[kSlots + i].take(row.extras[i]);
  if (block.hasStation) return;
  block.station = row.station;
  block.hasStation = true;
}

void LineSummary::halve() {
  for (std::size_t i = 0; i < blocks_.size() / 2; ++i) {
    auto merged = blocks_[2 * i];
    const auto& second = blocks_[2 * i + 1];
    takeSpans(merged.spans, second.spans);
    if (!merged.hasStation && second.hasStation) merged.station = second.station;
    merged.hasStation = merged.hasStation || second.hasStation;
    blocks_[i] = merged;
  }
  blocks_.resize(blocks_.size() / 2);
  rows_per_block_ *= 2;
}

TraceSpans LineSummary::spans() const {
  TraceSpans all;
  for (const auto& block : blocks_) takeSpans(all, block.spans);
  return all;
}

}  // namespace kalmira
