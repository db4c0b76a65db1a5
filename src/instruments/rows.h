#pragma once

#include <cstdint>
#include <span>
#include <string_view>

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

// A record of the ASCII kinds: "T", mode byte, one or two fields of sign and four digits.
//   T@+0123-0456

// The mode byte, taken apart. `code` is the range code: 0 to 7, and 8 from the mode byte 128 alone.
struct AsciiMode {
  bool odd = false;
  char secondMode = 'N';
  bool vertical = false;
  double divisor = 1.0;
  int rest = 0;  // what the common bits leave, for a kind with bits of its own
  int code = 0;
};
// Also fills orientation and secondMode of `reading`.
AsciiMode readMode(std::string_view record, const DecodeOptions& options, Reading& reading);

// Takes `weight` off `rest` when `rest` holds it.
bool takeWeight(int& rest, int weight);

// A numeric field: the text of `width` bytes, up to a NUL. Blanks past the record's end add nothing to it.
double asciiField(std::string_view record, std::size_t position, std::size_t width);
inline double firstField(std::string_view record) { return asciiField(record, 2, 5); }
inline double secondField(std::string_view record) { return asciiField(record, 7, 5); }

void put(Channels& channels, std::size_t slot, float value);
// Of ORLA, TESKB, TESKDD and TESK: slots 0 and 1 hold the conductivity of the vertical and the horizontal dipole, 2 and
// 3 the inphase.
inline std::size_t conductivitySlot(const Reading& reading) { return reading.orientation == 'V' ? 0 : 1; }
inline std::size_t inphaseSlot(const Reading& reading) { return reading.orientation == 'V' ? 2 : 3; }

struct RangeRow {
  std::int16_t range;
  double factor;
};
// TESK and TESKDD records hold one component each; sets recordType.
RangeRow componentRange(int code, int& recordType);

// Columns of the catalogue that the ASCII kinds share.
RecordFields asciiFirstField(std::string_view record);
int dipolesAtStation(int listA, int listB);
SurveyList dipoleList(int surveyMode);
SurveyList componentList(int surveyMode);

// "Vertical Dipoles   Range:100 ", "Vertical  G100 "
std::string dipoleRangeText(const Reading& reading, bool wide);

// "%-8.2f" and its kind, as the value fields are written: "C:12.34   mS/m" when `wide`, "C:12.34   " else.
std::string valueText(std::string_view label, float value, std::string_view unit, bool wide);
// "Mode:V", "Mode:H", "Mode:B" by the dipole-mode setting.
std::string dipoleModeText(int surveyMode, int listA, int listB);

}  // namespace kalmira
