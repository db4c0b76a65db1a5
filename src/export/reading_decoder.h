#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "datafile/record_parse.h"
#include "instruments/decode.h"
#include "instruments/ice_model.h"

namespace kalmira {

// One table column that holds a value slot of the decoder.
struct ChannelColumn {
  std::string_view name;
  std::size_t slot;
};

// The channel columns of a file's table: by kind, and with ice thickness where the file asks for it.
std::span<const ChannelColumn> channelColumns(const Header1& header);

struct DecodedReading {
  char dipole = 'H';    // "V" or "H"
  bool marked = false;  // the trigger or marker was pressed
  std::optional<int> range;
  std::optional<int> secondRange;  // TESKB: of the inphase
  Channels channels;               // ice thickness, where wanted, in slot 4
};

// Decodes the readings of one data file, with what the file itself says about the instrument.
class ReadingDecoder {
 public:
  explicit ReadingDecoder(const Header1& header);

  // TESK2: from here on this factor holds.
  void takeCalibration(const CalibrationPair& calibration);
  // `text` as in the file, any bytes.
  DecodedReading decode(std::string_view text) const;

 private:
  DecodedReading decodeTesk2(std::string_view text) const;
  DecodedReading decodeAscii(std::string_view text) const;

  Kind kind_;
  AsciiOptions options_;
  bool inphase_unscaled_ = false;
  std::array<float, 6> factors_{};
  std::optional<IceModel> ice_;
};

}  // namespace kalmira
