// Sentences at any ticks with any times: a line comes of them whose pieces follow each other, and what stands on it is
// finite and no later than its sentence came.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "positions/clock_line.h"

using namespace kalmira;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

struct Sentence {
  double tick_s = 0, timeOfDay_s = 0;
};

// Five bytes a sentence: milliseconds since the one before, and how late it is or, now and then, what its clock makes
// of the time.
std::vector<Sentence> sentencesOf(const std::uint8_t* data, std::size_t size) {
  std::vector<Sentence> sentences;
  double tick = 1000, fault = 0;
  for (; size >= 5; data += 5, size -= 5) {
    std::uint16_t step = 0;
    std::int16_t late = 0;
    std::memcpy(&step, data, 2);
    std::memcpy(&late, data + 2, 2);
    tick += step / (data[4] % 8 == 0 ? 1.0 : 1000.0);
    if (data[4] % 16 == 1) fault += late;
    const double time = tick + fault - std::abs(late) / 10000.0;
    sentences.push_back({tick, time - 86400 * std::floor(time / 86400)});
  }
  return sentences;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto sentences = sentencesOf(data, size);
  ClockFitter fitter;
  std::uint64_t order = 0;
  for (const auto& [tick, time] : sentences) {
    fitter.take(++order, tick, time);
    if (order % 7 == 3) fitter.takeDate(tick, time, 20000 + static_cast<std::int64_t>(tick / 86400));
  }
  const auto line = fitter.finish();
  require(line.pieces().empty() == sentences.empty() && std::isfinite(line.latest()) && line.latest() >= 0);
  for (std::size_t i = 0; i < line.pieces().size(); ++i) {
    const auto& piece = line.pieces()[i];
    require(std::isfinite(piece.offset) && std::abs(piece.slope) < 0.001 && piece.firstTick_s <= piece.lastTick_s);
    require(i == 0 || line.pieces()[i - 1].firstOrder < piece.firstOrder);
  }
  order = 0;
  for (const auto& [tick, time] : sentences) {
    const auto* piece = line.pieceOf(++order);
    require(line.pieceNear(tick, order) != nullptr);
    const auto utc = piece == nullptr ? std::nullopt : ClockLine::utcOf(*piece, tick, time);
    require(!utc || (std::isfinite(*utc) && piece->tickAt(*utc) <= tick + 1));
  }
  return 0;
}
