#pragma once

#include "instruments/catalogue.h"

// The rows of the catalogue, each in the file of its name, and what several of them share.
namespace kalmira {

extern const Instrument kOrla, kTeskb, kTeskdd, kTesk, kVardo, kMirka, kGlaco, kTesk2;

inline constexpr std::array kBothAxes{AxisChoice{kConductivityAxis, "Conductivity"},
                                      AxisChoice{kInphaseAxis, "Inphase"}};
// All that a kind draws has one scale.
inline constexpr std::array kOneAxis{AxisChoice{kConductivityAxis, "Conductivity"}};

// Conductivity and inphase of the vertical and the horizontal dipole.
inline constexpr std::array kDipoleChannels{Channel{0, "Conductivity V", "cond_v", "C V", "mS/m", kConductivityAxis},
                                            Channel{1, "Conductivity H", "cond_h", "C H", "mS/m", kConductivityAxis},
                                            Channel{2, "Inphase V", "inph_v", "I V", "ppt", kInphaseAxis},
                                            Channel{3, "Inphase H", "inph_h", "I H", "ppt", kInphaseAxis}};

// TESK and TESKDD may log one component alone.
inline CurveScales componentScales(int listA) { return {.conductivity = listA != 1, .inphase = listA != 2}; }

}  // namespace kalmira
