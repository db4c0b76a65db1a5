#pragma once

#include "settings/display_options.h"

namespace kalmira {

// A scale that holds all values from `least` to `largest` and ends at round numbers, with a little room at both ends so
// that no trace runs along an edge. Whole numbers, of a thickness in metres tenths from 0 up.
ScaleEnds fittedScale(float least, float largest, bool thickness);

}  // namespace kalmira
