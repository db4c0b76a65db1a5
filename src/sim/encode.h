#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "instruments/catalogue.h"

// Engineering values to the records that the instruments send: the other way round of link/decode.h. Conductivity is in
// mS/m, inphase in parts per thousand. Each record is given without its terminator, and each value is rounded to the
// nearest count of the smallest range that holds it; a value beyond the largest range becomes the widest number of its
// field.
namespace kalmira::sim {

struct Stance {
  bool vertical = true;
  bool pressed = false;  // the trigger
};

// Of a TESK or TESKDD record.
enum class Component { inphase, conductivity };

std::string encodeOrla(Stance stance, double conductivity, double inphase);
std::string encodeTeskb(Stance stance, double conductivity, double inphase);
// One component of both dipoles.
std::string encodeTeskdd(Stance stance, Component component, double vertical, double horizontal);
// One component of the stance's dipole. `recordLength` is 7 or 12.
std::string encodeTesk(Stance stance, Component component, double value, int recordLength);
// `separation_m` is 10, 20 or 40.
std::string encodeVardo(Stance stance, int separation_m, double conductivity);
std::string encodeMirka(Stance stance, double conductivity, double inphase);
// Thickness 0 to 9.99 m, inphase 0 to 999.
std::string encodeGlaco(double thickness_m, double inphase);

struct Tesk2Values {
  double conductivity1 = 0, inphase1 = 0;  // up to 1200 mS/m, 34 ppt
  double conductivity2 = 0, inphase2 = 0;  // up to 1200 mS/m, 8.6 ppt
  double auxiliary1 = 0, auxiliary2 = 0;   // -50 to 31
};
std::string encodeTesk2(Stance stance, const Tesk2Values& values);

// The record with the terminator that its framing wants: CR, nothing, or 255 255.
std::string terminated(Framing framing, std::string record);

}  // namespace kalmira::sim
