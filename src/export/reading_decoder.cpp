#include "export/reading_decoder.h"

namespace kalmira {
namespace {

constexpr std::size_t kConductivityHorizontal = 1;
constexpr std::size_t kIceSlot = 4;

// The ice column stands last, so that it can be left off.
constexpr std::array kDipoleColumns{ChannelColumn{"cond_v", 0}, ChannelColumn{"cond_h", 1},
                                    ChannelColumn{"inph_v", 2}, ChannelColumn{"inph_h", 3},
                                    ChannelColumn{"thickness", kIceSlot}};
constexpr std::array kVardoColumns{ChannelColumn{"cond_v10", 0}, ChannelColumn{"cond_v20", 1},
                                   ChannelColumn{"cond_v40", 2}, ChannelColumn{"cond_h10", 3},
                                   ChannelColumn{"cond_h20", 4}, ChannelColumn{"cond_h40", 5}};
constexpr std::array kMirkaColumns{ChannelColumn{"cond", 0}, ChannelColumn{"inph", 2}};
constexpr std::array kGlacoColumns{ChannelColumn{"thickness", 0}, ChannelColumn{"inph", 2}};
constexpr std::array kTesk2Columns{ChannelColumn{"cond1_v", 0}, ChannelColumn{"cond1_h", 1},
                                   ChannelColumn{"inph1_v", 2}, ChannelColumn{"inph1_h", 3},
                                   ChannelColumn{"cond2_v", 4}, ChannelColumn{"cond2_h", 5},
                                   ChannelColumn{"inph2_v", 6}, ChannelColumn{"inph2_h", 7}};

bool wantsIce(const Header1& header) {
  return header.kind == Kind::orla && header.iceOption && header.iceQuantity == 1;
}

}  // namespace

std::span<const ChannelColumn> channelColumns(const Header1& header) {
  switch (header.kind) {
    case Kind::vardo:
      return kVardoColumns;
    case Kind::mirka:
      return kMirkaColumns;
    case Kind::glaco:
      return kGlacoColumns;
    case Kind::tesk2:
      return kTesk2Columns;
    default:
      return std::span(kDipoleColumns).first(wantsIce(header) ? 5 : 4);
  }
}

ReadingDecoder::ReadingDecoder(const Header1& header) : kind_(header.kind) {
  options_.orlaModelOption = header.shortInstrument;
  options_.orlaAltInphase = header.kind == Kind::orla && header.listA == 1;
  inphase_unscaled_ = header.kind == Kind::tesk2 && header.listA == 1;
  if (wantsIce(header)) {
    ice_.emplace();
    LoadIceTable(header.seaWaterChoice, header.shortInstrument, *ice_);
  }
}

void ReadingDecoder::takeCalibration(const CalibrationPair& calibration) {
  factors_.at(static_cast<std::size_t>(calibration.channel - 1)) = static_cast<float>(calibration.factor);
}

DecodedReading ReadingDecoder::decode(std::string_view text) const {
  return kind_ == Kind::tesk2 ? decodeTesk2(text) : decodeAscii(text);
}

DecodedReading ReadingDecoder::decodeTesk2(std::string_view text) const {
  DecodedReading out;
  char mode = 'N';
  DecodeTesk2Record(text, tesk2Offsets(factors_), inphase_unscaled_, out.channels, out.dipole, mode);
  out.marked = mode == 'M';
  return out;
}

DecodedReading ReadingDecoder::decodeAscii(std::string_view text) const {
  DecodedReading out;
  AsciiReading reading;
  DecodeAsciiRecord(text, kind_, options_, reading, out.channels);
  out.dipole = reading.orientation;
  out.marked = reading.secondMode == 'M';
  out.range = reading.range;
  if (kind_ == Kind::teskb) out.secondRange = reading.secondRange;
  // An odd mode byte means that the instrument sent its battery voltages in place of a measurement.
  if (kind_ == Kind::orla && reading.odd != 0) out.channels.present.fill(0);
  // The model is made for horizontal dipoles.
  if (ice_ && out.channels.present[kConductivityHorizontal] != 0) {
    IceThickness(static_cast<double>(reading.conductivity), *ice_, &out.channels);
    if (!(out.channels.value[kIceSlot] >= 0.0F)) out.channels.present[kIceSlot] = 0;
  }
  return out;
}

}  // namespace kalmira
