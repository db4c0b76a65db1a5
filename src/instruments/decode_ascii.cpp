#include "instruments/decode.h"
#include "platform/text.h"

namespace kalmira {
namespace {

// The three slots of VARDO's vertical readings come first, then those of the horizontal ones.
constexpr std::size_t kVardoHorizontalBase = 3;
// The short ORLA counts inphase this many times as large as the standard one.
constexpr double kShortOrlaInphase = 3.35;
constexpr double kFixedOrlaInphase = -0.0025;

struct RangeRow {
  std::int16_t range;
  double factor;
};

// The mode byte, taken apart.
struct Mode {
  bool odd = false;
  char secondMode = 'N';
  char orientation = 'H';
  double divisor = 1.0;
  float separation = 0.0F;  // VARDO, metres
  std::size_t vardoSlot = 0;
  int code = 0;  // range code: 0 to 7, and 8 from the mode byte 128 alone
};

// Takes `weight` off `rest` when `rest` holds it.
bool take(int& rest, int weight) {
  if (rest < weight) return false;
  rest -= weight;
  return true;
}

// Here the sense of the orientation bit is the reverse of the other models'.
void readVardoBits(int rest, Mode& mode) {
  const bool horizontal = take(rest, 32);
  mode.orientation = horizontal ? 'H' : 'V';
  std::size_t step = 1;
  mode.separation = 20.0F;
  if (take(rest, 24)) {
    step = 2;
    mode.separation = 40.0F;
  } else if (take(rest, 16)) {
    step = 0;
    mode.separation = 10.0F;
  } else {
    take(rest, 8);
  }
  mode.vardoSlot = (horizontal ? kVardoHorizontalBase : 0) + step;
  mode.code = rest;
}

Mode readMode(std::string_view record, Kind kind, int gpsLoggingMode) {
  Mode mode;
  int rest = record.size() > 1 ? static_cast<unsigned char>(record[1]) : ' ';
  mode.odd = rest % 2 == 1;
  // Exactly 128 is not above 128 and keeps its weight; no instrument sends it, and it leaves range code 8.
  if (rest > 128) rest -= 128;
  const bool marked = take(rest, 64);
  mode.secondMode = marked && gpsLoggingMode != 2 ? 'M' : 'N';
  if (kind == Kind::vardo) {
    readVardoBits(rest, mode);
    return mode;
  }
  mode.orientation = take(rest, 32) ? 'V' : 'H';
  mode.divisor = take(rest, 16) ? 8.0 : 1.0;
  take(rest, 8);
  mode.code = rest;
  return mode;
}

// A numeric field: the text of `width` bytes, up to a NUL. Blanks past the record's end add nothing to it.
double field(std::string_view record, std::size_t position, std::size_t width) {
  if (position >= record.size()) return 0.0;
  const auto text = record.substr(position, width);
  return parseReal(text.substr(0, text.find('\0')));
}
double firstField(std::string_view record) {
  return field(record, 2, 5);
}
double secondField(std::string_view record) {
  return field(record, 7, 5);
}

void put(Channels& channels, std::size_t slot, float value) {
  channels.value[slot] = value;
  channels.present[slot] = 1;
}

// Slots 0 and 1 hold the conductivity of the vertical and the horizontal dipole, 2 and 3 the inphase.
std::size_t conductivitySlot(const Mode& mode) {
  return mode.orientation == 'V' ? 0 : 1;
}
std::size_t inphaseSlot(const Mode& mode) {
  return mode.orientation == 'V' ? 2 : 3;
}

RangeRow orlaRange(int code) {
  switch (code) {
    case 0:
      return {1000, -0.25};
    case 2:
      return {10, -0.0025};
    case 4:
      return {100, -0.025};
    case 6:
      return {1000, -0.25};
    default:
      return {1000, -0.0025};  // the odd codes: battery records, in volts
  }
}

// A record is "TA+0123-0045": conductivity field first. A battery record (odd mode byte) has two voltages.
void decodeOrla(std::string_view record, const Mode& mode, const AsciiOptions& options, AsciiReading& reading,
                Channels& channels) {
  const auto [range, factor] = orlaRange(mode.code);
  const double conductivityField = firstField(record);
  const double inphaseField = secondField(record);
  double conductivity = conductivityField * factor;
  double inphase = inphaseField * factor;
  if (!mode.odd && options.orlaAltInphase) {
    // Showing inphase only, the instrument sends it in the conductivity field; that value stays unscaled. The
    // short instrument's inphase takes no range factor.
    conductivity = conductivityField;
    inphase =
        options.orlaModelOption ? conductivityField / kShortOrlaInphase : conductivityField * factor * 0.25;
  } else if (!mode.odd) {
    inphase = inphaseField * kFixedOrlaInphase;
    if (options.orlaModelOption) inphase /= kShortOrlaInphase;
  }
  reading.range = range;
  reading.conductivity = static_cast<float>(conductivity);
  reading.inphase = static_cast<float>(inphase);
  if (!options.orlaAltInphase) put(channels, conductivitySlot(mode), reading.conductivity);
  put(channels, inphaseSlot(mode), reading.inphase);
}

struct TeskbRow {
  std::int16_t range;  // of the conductivity
  std::uint16_t secondRange;
  double conductivityFactor;
  double inphaseFactor;
};

TeskbRow teskbRange(int code) {
  switch (code >= 4 ? code - 4 : code) {
    case 1:
      return {1000, 100, -1.0, -0.00288};
    case 2:
      return {100, 1000, -0.1, -0.0288};
    case 3:
      return {1000, 1000, -1.0, -0.0288};
    default:
      return {100, 100, -0.1, -0.00288};
  }
}

// The inphase field comes first, the reverse of ORLA's order.
void decodeTeskb(std::string_view record, const Mode& mode, AsciiReading& reading, Channels& channels) {
  const TeskbRow row = teskbRange(mode.code);
  reading.range = row.range;
  reading.secondRange = row.secondRange;
  reading.conductivity = static_cast<float>(secondField(record) * (row.conductivityFactor / mode.divisor));
  reading.inphase = static_cast<float>(firstField(record) * (row.inphaseFactor / mode.divisor));
  put(channels, conductivitySlot(mode), reading.conductivity);
  put(channels, inphaseSlot(mode), reading.inphase);
}

// TESK and TESKDD records hold one component each: record type 1 inphase, 2 conductivity.
RangeRow componentRange(int code, int& recordType) {
  recordType = code < 4 ? 1 : 2;
  const bool wide = (code < 4 ? code : code - 4) == 3;
  if (recordType == 1) return wide ? RangeRow{1000, -0.0288} : RangeRow{100, -0.00288};
  return wide ? RangeRow{1000, -1.0} : RangeRow{100, -0.1};
}

// Both dipoles in one record: the vertical one's value first.
void decodeTeskdd(std::string_view record, const Mode& mode, AsciiReading& reading, Channels& channels) {
  const auto [range, factor] = componentRange(mode.code, reading.recordType);
  reading.range = range;
  reading.conductivity = static_cast<float>(firstField(record) / mode.divisor * factor);
  reading.inphase = static_cast<float>(secondField(record) / mode.divisor * factor);
  const std::size_t slot = reading.recordType == 1 ? 2 : 0;
  put(channels, slot, reading.conductivity);
  put(channels, slot + 1, reading.inphase);
}

void decodeTesk(std::string_view record, const Mode& mode, const AsciiOptions& options, AsciiReading& reading,
                Channels& channels) {
  auto [range, factor] = componentRange(mode.code, reading.recordType);
  factor /= mode.divisor;
  if (options.teskRangeTimes10) {
    factor *= 10.0;
    range = static_cast<std::int16_t>(range * 10);
  }
  reading.range = range;
  const auto value = static_cast<float>(firstField(record) * factor);
  if (reading.recordType == 2) {
    reading.conductivity = value;
    put(channels, conductivitySlot(mode), value);
  } else {
    reading.inphase = value;
    put(channels, inphaseSlot(mode), value);
  }
}

RangeRow vardoRange(int code) {
  switch (code) {
    case 0:
      return {3, -0.00075};
    case 2:
      return {10, -0.0025};
    case 3:
      return {30, -0.0075};
    case 4:
      return {100, -0.025};
    case 5:
      return {300, -0.075};
    default:
      return {1000, -0.25};
  }
}

void decodeVardo(std::string_view record, const Mode& mode, AsciiReading& reading, Channels& channels) {
  const auto [range, factor] = vardoRange(mode.code);
  reading.range = range;
  reading.conductivity = static_cast<float>(firstField(record) * factor);
  reading.inphase = mode.separation;
  put(channels, mode.vardoSlot, reading.conductivity);
}

RangeRow mirkaRange(int code) {
  switch (code) {
    case 0:
      return {1000, -25.0};
    case 4:
      return {100, -2.5};
    case 6:
      return {1000, -25.0};
    default:
      return {10, -0.25};
  }
}

// One pair of slots for both orientations, and an inphase whose factor the range does not touch.
void decodeMirka(std::string_view record, const Mode& mode, AsciiReading& reading, Channels& channels) {
  const auto [range, factor] = mirkaRange(mode.code);
  reading.range = range;
  reading.conductivity = static_cast<float>(firstField(record) * factor);
  reading.inphase = static_cast<float>(secondField(record) * -0.25);
  put(channels, 0, reading.conductivity);
  put(channels, 2, reading.inphase);
}

// "T123I045": no mode byte; thickness in centimetres.
void decodeGlaco(std::string_view record, AsciiReading& reading, Channels& channels) {
  reading.range = 100;
  reading.orientation = 'V';
  reading.secondMode = 'N';
  reading.conductivity = static_cast<float>(field(record, 1, 3) / 100.0);
  reading.inphase = static_cast<float>(field(record, 5, 3));
  put(channels, 0, reading.conductivity);
  put(channels, 2, reading.inphase);
}

}  // namespace

void DecodeAsciiRecord(std::string_view record, Kind kind, const AsciiOptions& options, AsciiReading& reading,
                       Channels& channels) {
  reading = {};
  channels = {};
  if (kind == Kind::glaco) {
    decodeGlaco(record, reading, channels);
    return;
  }
  const Mode mode = readMode(record, kind, options.gpsLoggingMode);
  reading.odd = mode.odd ? 1 : 0;
  reading.secondMode = mode.secondMode;
  reading.orientation = mode.orientation;
  switch (kind) {
    case Kind::orla:
      decodeOrla(record, mode, options, reading, channels);
      break;
    case Kind::teskb:
      decodeTeskb(record, mode, reading, channels);
      break;
    case Kind::teskdd:
      decodeTeskdd(record, mode, reading, channels);
      break;
    case Kind::tesk:
      decodeTesk(record, mode, options, reading, channels);
      break;
    case Kind::vardo:
      decodeVardo(record, mode, reading, channels);
      break;
    case Kind::mirka:
      decodeMirka(record, mode, reading, channels);
      break;
    case Kind::glaco:
    case Kind::tesk2:
      break;  // no ASCII records
  }
}

}  // namespace kalmira
