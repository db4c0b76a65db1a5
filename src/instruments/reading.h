#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// What a record of an instrument says. Conductivity is in mS/m, inphase in parts per thousand, ice thickness in metres.
// Values are computed in double precision and rounded to float once, unless a comment says otherwise.
// docs/instrument-links.md has the records and their tables.
namespace kalmira {

inline constexpr std::size_t kSlots = 8;

// The values of a reading by slot; the instrument's row says what each slot is.
struct Channels {
  std::array<float, kSlots> value{};
  std::array<int, kSlots> present{};
};

inline constexpr float kIceAboveTable = -999.0F;
inline constexpr float kIceBelowTable = -99.0F;

// What the meaning of a record depends on besides its bytes.
struct DecodeOptions {
  bool teskRangeTimes10 = false;       // TESK: the start-up choice
  bool orlaModelOption = false;        // ORLA: the short instrument
  int listA = 0;                       // ORLA 1: shows inphase only; TESK2 1: inphase unscaled
  int gpsLoggingMode = 0;              // the trigger mode; while 2 (Manual) an ASCII kind's second letter is "N"
  std::array<float, 6> calibration{};  // TESK2: inphase V1, V2, H1, H2, conductivity 1, 2
};

struct Reading {
  Channels channels{};
  float conductivity = 0;  // TESKDD: the first value, of the vertical dipole; GLACO: thickness
  float inphase = 0;       // TESKDD: the second value, of the horizontal dipole; VARDO: coil separation, metres
  float conductivity2 = 0, inphase2 = 0;  // TESK2: the second coil
  std::array<float, 2> auxiliary{};       // TESK2
  char orientation = 'H';                 // "V" or "H"
  char secondMode = 'N';                  // "M" or "N": the trigger or marker is pressed, or not
  std::int16_t range = 0;                 // 0 where the kind has none
  std::uint16_t secondRange = 0;          // TESKB: of the inphase
  int recordType = 0;                     // TESKDD and TESK: 1 inphase, 2 conductivity
  bool batteryLevels = false;             // ORLA: two voltages in place of a measurement
  float thickness = kIceBelowTable;       // ORLA with the ice display, by the ice model; below 0: none
};

// The numbers of a record as they stand on the wire, for averages of them.
struct RecordFields {
  std::array<float, 6> value{};
  std::size_t count = 0;
};

}  // namespace kalmira
