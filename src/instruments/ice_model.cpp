#include "instruments/ice_model.h"

#include <algorithm>

namespace kalmira {
namespace {

constexpr std::size_t kMiddle = 35;
constexpr std::size_t kLast = kIceTableEntries - 1;

// The first i whose interval, entry i down to entry i + 1, holds the conductivity. When none does, the end of the
// searched half.
std::size_t findInterval(const IceTable& table, double conductivity) {
  const bool thin = conductivity > table[kMiddle];
  const std::size_t end = thin ? kMiddle : kLast;
  for (std::size_t i = thin ? 0 : kMiddle; i < end; ++i) {
    if (table[i] >= conductivity && conductivity >= table[i + 1]) return i;
  }
  return end;
}

}  // namespace

void LoadIceTable(int seaWaterCase, bool orlaModelOption, IceModel& model) {
  if (seaWaterCase < 0 || seaWaterCase >= kSeaWaterCases) return;
  const auto& family = orlaModelOption ? kShortOrlaIceTables : kStandardOrlaIceTables;
  const IceTable& table = family[static_cast<std::size_t>(seaWaterCase)];
  model.seaWaterCase = seaWaterCase;
  model.orlaModelOption = orlaModelOption;
  model.iceTable = table;
  model.upperLimit = table.front();
  model.lowerLimit = table.back();
  // The standard instrument's tables begin with the single-precision value of the limit, while the limit is tested in
  // double precision: a reading between the two passes the test and is extrapolated.
  if (!orlaModelOption) model.iceTable.front() = static_cast<float>(table.front());
}

float IceThickness(double conductivity, const IceModel& model, Channels* channels) {
  if (model.seaWaterCase < 0 || model.seaWaterCase >= kSeaWaterCases) return kIceBelowTable;
  if (conductivity > model.upperLimit) return kIceAboveTable;
  // Turned round, so that a reading that is no number ends here too.
  if (!(conductivity >= model.lowerLimit)) return kIceBelowTable;
  // There is no interval behind the last entry: the last one serves.
  const std::size_t i = std::min(findInterval(model.iceTable, conductivity), kLast - 1);
  const double from = model.iceTable[i];
  const double to = model.iceTable[i + 1];
  const double steps = static_cast<double>(i) + (conductivity - from) / (to - from);
  const auto thickness = static_cast<float>(steps / 10.0);
  if (channels != nullptr) {
    channels->value[4] = thickness;
    channels->present[4] = 1;
  }
  return thickness;
}

}  // namespace kalmira
