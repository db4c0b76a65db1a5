#pragma once

#include <optional>
#include <string_view>

#include "datafile/record_parse.h"
#include "instruments/ice_model.h"

namespace kalmira {

// Decodes the readings of one data file, with what the file's own header says about the instrument and the
// one start-up choice that it does not tell. The only decoder of recorded readings: tables, viewer, readout
// and chart all show what comes from here.
class ReadingDecoder {
 public:
  explicit ReadingDecoder(const Header1& header, bool teskRangeTimes10 = false);

  // TESK2: from here on this factor holds, or all of these.
  void takeCalibration(const CalibrationPair& calibration);
  void setCalibration(const std::array<float, 6>& factors) { options_.calibration = factors; }

  // Where the file asks for ice thickness: in `thickness`, and in slot 4 where the model's table has one.
  bool wantsThickness() const { return ice_.has_value(); }
  const Instrument& instrument() const { return *instrument_; }
  // `text` as in the file, any bytes. The marker is told in every survey mode.
  Reading decode(std::string_view text) const;

 private:
  const Instrument* instrument_;
  DecodeOptions options_;
  std::optional<IceModel> ice_;
};

}  // namespace kalmira
