#include "datafile/reading_decoder.h"

namespace kalmira {
namespace {

constexpr std::size_t kConductivityHorizontal = 1;

}  // namespace

ReadingDecoder::ReadingDecoder(const Header1& header, bool teskRangeTimes10) : instrument_(&instrumentOf(header.kind)) {
  options_.teskRangeTimes10 = teskRangeTimes10 && instrument_->rangeTimes10;
  options_.orlaModelOption = header.shortInstrument;
  options_.listA = header.listA;
  if (instrument_->hasIce() && header.iceOption && header.iceQuantity == 1) {
    ice_.emplace();
    LoadIceTable(header.seaWaterChoice, header.shortInstrument, *ice_);
  }
}

void ReadingDecoder::takeCalibration(const CalibrationPair& calibration) {
  options_.calibration.at(static_cast<std::size_t>(calibration.channel - 1)) = static_cast<float>(calibration.factor);
}

Reading ReadingDecoder::decode(std::string_view text) const {
  Reading reading = instrument_->decode(text, options_);
  // The model is made for horizontal dipoles.
  if (ice_ && reading.channels.present[kConductivityHorizontal] != 0) {
    reading.thickness = IceThickness(static_cast<double>(reading.conductivity), *ice_, &reading.channels);
  }
  return reading;
}

}  // namespace kalmira
