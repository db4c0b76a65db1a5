#pragma once

#include <array>

#include "instruments/reading.h"

namespace kalmira {

inline constexpr int kIceTableEntries = 71;
using IceTable = std::array<double, kIceTableEntries>;  // mS/m at thickness index / 10 m, strictly falling
using IceTableFamily = std::array<IceTable, 11>;        // by sea-water case

extern const IceTableFamily kShortOrlaIceTables;
extern const IceTableFamily kStandardOrlaIceTables;

// Ice thickness from the apparent conductivity of ice over sea water: inverse interpolation in tables of conductivities
// that were computed from a layered-earth model for thicknesses of 0 to 7 m.

inline constexpr int kSeaWaterCases = 11;  // 2000 to 3000 mS/m in steps of 100

struct IceModel {
  int seaWaterCase = -1;              // 0 to kSeaWaterCases - 1; -1: no table is loaded
  bool orlaModelOption = false;       // the short instrument has a family of tables of its own
  std::array<double, 71> iceTable{};  // mS/m at thickness index / 10 m, strictly falling
  double upperLimit = 0;              // a conductivity above it is out of the table
  double lowerLimit = 0;              // likewise below it
};

// Another case than 0 to 10 loads nothing and leaves `model` as it was.
void LoadIceTable(int seaWaterCase, bool orlaModelOption, IceModel& model);

// Metres; kIceAboveTable for a conductivity above the table, kIceBelowTable for one below it and for one that is no
// number or when no table is loaded. With `channels` (the ice option) a thickness that was found is stored in slot 4
// and flagged; a reading outside the table leaves the slot alone.
float IceThickness(double conductivity, const IceModel& model, Channels* channels);

}  // namespace kalmira
