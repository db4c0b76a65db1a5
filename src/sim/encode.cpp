#include "sim/encode.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace kalmira::sim {
namespace {

// Bits of the mode byte of ASCII records.
constexpr int kHighBit = 128;
constexpr int kTrigger = 64;
constexpr int kDipole = 32;
constexpr int kGain8 = 16;

struct Range {
  int code;
  double fullScale;
  double factor;  // of one count
};

constexpr std::array<Range, 3> kOrlaRanges{{{2, 10, -0.0025}, {4, 100, -0.025}, {6, 1000, -0.25}}};
constexpr std::array<Range, 3> kMirkaRanges{{{2, 10, -0.25}, {4, 100, -2.5}, {6, 1000, -25.0}}};
constexpr std::array<Range, 6> kVardoRanges{
    {{0, 3, -0.00075}, {2, 10, -0.0025}, {3, 30, -0.0075}, {4, 100, -0.025}, {5, 300, -0.075}, {1, 1000, -0.25}}};
// The TESK family counts to 1000 in two ranges, and sends eight times the counts of a value that is small.
constexpr double kTeskFullScale = 1000;

const Range& smallestRange(std::span<const Range> ranges, double value) {
  const auto fits = [value](const Range& range) { return std::abs(value) <= range.fullScale; };
  const auto found = std::find_if(ranges.begin(), ranges.end(), fits);
  return found != ranges.end() ? *found : ranges.back();
}

// Sign and four digits.
std::string field(double value, double factor) {
  return fmt::format("{:+05d}", static_cast<int>(std::lround(std::clamp(value / factor, -9999.0, 9999.0))));
}

// Below 32 the byte would be a control character, the carriage return that ends a record among them; the high bit,
// which every decoder takes away, keeps it clear of those.
char modeByte(int bits, bool pressed) {
  if (pressed) bits += kTrigger;
  if (bits < kDipole) bits += kHighBit;
  return static_cast<char>(static_cast<unsigned char>(bits));
}

std::string asciiRecord(Stance stance, int bits, std::string_view field1, std::string_view field2) {
  return fmt::format("T{}{}{}", modeByte(bits, stance.pressed), field1, field2);
}

int dipoleBit(Stance stance) { return stance.vertical ? kDipole : 0; }

double teskFactor(Component component, bool highRange) {
  const double low = component == Component::inphase ? -0.00288 : -0.1;
  return highRange ? low * 10 : low;
}

bool beyond(double value, double factor) { return std::abs(value) > std::abs(factor) * kTeskFullScale; }

// Range and gain that hold the larger of two values; `code` has the type of the record in it.
struct TeskScale {
  int bits;
  double factor;
};
TeskScale teskScaleOf(Component component, double larger) {
  const bool highRange = beyond(larger, teskFactor(component, false));
  const double factor = teskFactor(component, highRange);
  const bool gain = !beyond(larger, factor / 8);
  const int code = (component == Component::conductivity ? 4 : 0) + (highRange ? 3 : 1);
  return {code + (gain ? kGain8 : 0), gain ? factor / 8 : factor};
}

void appendWord(std::string& record, double word) {
  // No high byte is ever 255, so no two adjacent bytes are: those would look like the end of the record.
  const auto whole = static_cast<unsigned>(std::lround(std::clamp(word, 2048.0, 63487.0)));
  record += static_cast<char>(static_cast<unsigned char>(whole >> 8U));
  record += static_cast<char>(static_cast<unsigned char>(whole & 0xFFU));
}

double tesk2Word(double value, double factor) { return (value / (8 * factor) + 160) * 1024 / 5; }

void appendAuxiliary(std::string& record, double value) {
  record += '\0';
  const double word = std::clamp((value + 50) * 3.108, 0.0, 254.0);
  record += static_cast<char>(static_cast<unsigned char>(std::lround(word)));
}

}  // namespace

std::string encodeOrla(Stance stance, double conductivity, double inphase) {
  const auto& range = smallestRange(kOrlaRanges, conductivity);
  return asciiRecord(stance, dipoleBit(stance) + range.code, field(conductivity, range.factor),
                     field(inphase, -0.0025));
}

std::string encodeTeskb(Stance stance, double conductivity, double inphase) {
  const bool highConductivity = beyond(conductivity, teskFactor(Component::conductivity, false));
  const bool highInphase = beyond(inphase, teskFactor(Component::inphase, false));
  double conductivityFactor = teskFactor(Component::conductivity, highConductivity);
  double inphaseFactor = teskFactor(Component::inphase, highInphase);
  int code = (highConductivity ? 1 : 0) + (highInphase ? 2 : 0);
  if (code == 0) code = 4;
  if (!beyond(conductivity, conductivityFactor / 8) && !beyond(inphase, inphaseFactor / 8)) {
    conductivityFactor /= 8;
    inphaseFactor /= 8;
    code += kGain8;
  }
  // Inphase first: the reverse of the ORLA.
  return asciiRecord(stance, dipoleBit(stance) + code, field(inphase, inphaseFactor),
                     field(conductivity, conductivityFactor));
}

std::string encodeTeskdd(Stance stance, Component component, double vertical, double horizontal) {
  const auto scale = teskScaleOf(component, std::max(std::abs(vertical), std::abs(horizontal)));
  return asciiRecord(stance, dipoleBit(stance) + scale.bits, field(vertical, scale.factor),
                     field(horizontal, scale.factor));
}

std::string encodeTesk(Stance stance, Component component, double value, int recordLength) {
  const auto scale = teskScaleOf(component, value);
  return asciiRecord(stance, dipoleBit(stance) + scale.bits, field(value, scale.factor),
                     recordLength == 12 ? "+0000" : "");
}

std::string encodeVardo(Stance stance, int separation_m, double conductivity) {
  // Its dipole bit says horizontal.
  int bits = stance.vertical ? 0 : kDipole;
  bits += separation_m == 40 ? 24 : separation_m == 10 ? 16 : 8;
  const auto& range = smallestRange(kVardoRanges, conductivity);
  return asciiRecord(stance, bits + range.code, field(conductivity, range.factor), "+0000");
}

std::string encodeMirka(Stance stance, double conductivity, double inphase) {
  const auto& range = smallestRange(kMirkaRanges, conductivity);
  return asciiRecord(stance, dipoleBit(stance) + range.code, field(conductivity, range.factor), field(inphase, -0.25));
}

std::string encodeGlaco(double thickness_m, double inphase) {
  const auto digits = [](double value) { return std::lround(std::clamp(value, 0.0, 999.0)); };
  return fmt::format("T{:03d}I{:03d}", digits(thickness_m * 100), digits(inphase));
}

std::string encodeTesk2(Stance stance, const Tesk2Values& values) {
  std::string record = "T";
  // 2 and 6 are the released trigger of the two dipoles; 1 and 5 the pressed one.
  const int mode = (stance.vertical ? 4 : 0) + (stance.pressed ? 1 : 2);
  record += static_cast<char>(mode);
  appendWord(record, tesk2Word(values.conductivity2, 1.0));
  appendWord(record, tesk2Word(values.inphase2, 0.00720475));
  appendWord(record, tesk2Word(values.conductivity1, 1.0));
  appendWord(record, tesk2Word(values.inphase1, 0.028819));
  appendAuxiliary(record, values.auxiliary1);
  appendAuxiliary(record, values.auxiliary2);
  return record;
}

std::string terminated(Framing framing, std::string record) {
  if (framing == Framing::ascii) record += '\r';
  if (framing == Framing::tesk2) record += "\xFF\xFF";
  return record;
}

}  // namespace kalmira::sim
