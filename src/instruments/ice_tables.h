#pragma once

#include <array>

namespace kalmira {

inline constexpr int kIceTableEntries = 71;
using IceTable = std::array<double, kIceTableEntries>;  // mS/m at thickness index / 10 m, strictly falling
using IceTableFamily = std::array<IceTable, 11>;        // by sea-water case

extern const IceTableFamily kShortOrlaIceTables;
extern const IceTableFamily kStandardOrlaIceTables;

}  // namespace kalmira
