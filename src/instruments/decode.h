#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "instruments/catalogue.h"

// From a framed record to engineering values. Conductivity is in mS/m, inphase in parts per thousand,
// ice thickness in metres. Values are computed in double precision and rounded to float once, unless a
// comment says otherwise. docs/instrument-links.md has the records and their tables.
namespace kalmira {

inline constexpr std::size_t kSlots = 8;

// Slots by kind:
//   ORLA, TESKB, TESKDD, TESK  0 conductivity V, 1 conductivity H, 2 inphase V, 3 inphase H
//   (ORLA with the ice option keeps the ice thickness in slot 4)
//   VARDO                      0 to 2 conductivity V at 10, 20, 40 m; 3 to 5 conductivity H
//   MIRKA                      0 conductivity, 2 inphase
//   GLACO                      0 thickness, 2 inphase
//   TESK2                      0 conductivity 1 V, 1 conductivity 1 H, 2 inphase 1 V, 3 inphase 1 H,
//                              4 conductivity 2 V, 5 conductivity 2 H, 6 inphase 2 V, 7 inphase 2 H
struct Channels {
  std::array<float, kSlots> value{};
  std::array<int, kSlots> present{};
};

struct AsciiOptions {
  bool teskRangeTimes10 = false;
  bool orlaModelOption = false;  // the short instrument
  bool orlaAltInphase = false;   // ORLA showing inphase only
  int gpsLoggingMode = 0;        // the trigger mode; while 2 (Manual) the second mode letter is always "N"
};

struct AsciiReading {
  float conductivity = 0;  // TESKDD: the first value, of the vertical dipole
  float inphase = 0;  // TESKDD: the second value, of the horizontal dipole; VARDO: coil separation, metres
  char orientation = 'H';  // "V" or "H"
  std::int16_t range = 0;
  char secondMode = 'N';          // "M" or "N"
  int recordType = 0;             // TESKDD and TESK: 1 inphase, 2 conductivity
  std::uint16_t secondRange = 0;  // TESKB
  int odd = 0;                    // 1 when the mode byte is odd (ORLA: a battery record)
};

// Decodes `record` (the bytes from the start letter on; bytes past its end read as blanks). Clears and fills
// `channels`. Any bytes give some values; nothing here fails.
void DecodeAsciiRecord(std::string_view record, Kind kind, const AsciiOptions& options, AsciiReading& reading,
                       Channels& channels);

// Conductivity offsets are added, inphase offsets subtracted.
struct Tesk2Offsets {
  float condOffset1 = 0, condOffset2 = 0;
  float inphaseOffsetV1 = 0, inphaseOffsetV2 = 0;
  float inphaseOffsetH1 = 0, inphaseOffsetH2 = 0;
};
// From the six calibration factors of the settings: inphase V1, V2, H1, H2, conductivity 1, 2.
Tesk2Offsets tesk2Offsets(const std::array<float, 6>& calibrationFactors);

struct Tesk2Reading {
  float conductivity1 = 0, inphase1 = 0, conductivity2 = 0, inphase2 = 0;
  float auxiliary1 = 0, auxiliary2 = 0;
  // As in the record, bytes 2 to 13: conductivity 2, inphase 2, conductivity 1, inphase 1, auxiliary 1 and 2.
  std::array<std::uint16_t, 6> words{};
  char orientation = 'H';
  char secondMode = 'M';
};

// Both need at least 14 bytes; fewer are read as if the rest were zero. DecodeTesk2Live also decodes the
// auxiliary values and returns the last inphase value.
float DecodeTesk2Live(std::string_view record, const Tesk2Offsets& offsets, bool inphaseUnscaled,
                      Tesk2Reading& reading, Channels& channels);
void DecodeTesk2Record(std::string_view record, const Tesk2Offsets& offsets, bool inphaseUnscaled,
                       Channels& channels, char& orientation, char& secondMode);
// The two auxiliary values, which DecodeTesk2Record leaves out.
std::array<float, 2> tesk2AuxiliaryValues(std::string_view record);

// One vertical scale of the profile: a value stands (top - value) * scale pixels below the upper edge.
struct ProfileAxis {
  float top = 0;
  float scale = 1;  // pixels per unit
};
struct ProfileAxes {
  ProfileAxis conductivity;
  ProfileAxis inphase;
  ProfileAxis ice;
};
inline constexpr std::size_t kProfilePoints = 10;

// Pixel positions of the kind's traces; a point that the kind does not draw keeps what `points` held. A
// position that no int can hold is brought to the nearest one, and one that is no number to 0.
void MapProfilePoints(Kind kind, bool iceOption, bool inphaseUnscaled, const ProfileAxes& axes,
                      const std::array<float, kSlots>& values, float extra1, float extra2,
                      std::array<int, kProfilePoints>& points);

}  // namespace kalmira
