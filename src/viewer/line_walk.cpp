#include "viewer/line_walk.h"

#include <algorithm>
#include <cmath>

#include "datafile/record_parse.h"
#include "platform/text.h"
#include "viewer/line_extract.h"

namespace kalmira {
namespace {

constexpr int kBreakRows = 4;
constexpr std::size_t kThicknessSlot = 4;

// A number from a column (from 1) on; 0 when there is none.
double numberFrom(std::string_view record, std::size_t column) {
  const double value = parseReal(record.substr(column - 1));
  return std::isfinite(value) ? value : 0.0;
}

}  // namespace

// What the row files hold has no thickness: it is derived from that again.
LineWalk::LineWalk(const ScannedFile& file, const ExtractOptions& options, const State& from, bool timed)
    : timed_(timed),
      state_(from),
      decoder_(file.header, options.teskRangeTimes10),
      channels_(channelsOf(decoder_.instrument(), false)),
      readings_per_station_(file.readingsPerStation) {
  decoder_.setCalibration(from.calibration);
}

std::span<const LineRow> LineWalk::rowsOf(const Record& record) {
  made_count_ = 0;
  switch (recordTypeOf(record.bytes)) {
    case RecordType::startStation:
      if (state_.opening) state_.start = numberFrom(record.bytes, 2);
      break;
    case RecordType::direction:
      if (state_.opening) takeIncrement(record.bytes);
      break;
    case RecordType::calibration: takeCalibration(record.bytes); break;
    case RecordType::date:
      if (const auto date = parseDate(record.bytes)) state_.times.takeDate(*date);
      break;
    case RecordType::timeMark:
      if (const auto mark = parseTimeMark(record.bytes)) state_.times.takeMark(*mark);
      break;
    case RecordType::station: takeStation(record); break;
    case RecordType::reading: takeReading(record); break;
    default: break;
  }
  state_.offset = record.offset + record.bytes.size();
  state_.rows += static_cast<int>(made_count_);
  return std::span(made_).first(made_count_);
}

// The line's own "B" and "A" stand before its first reading; further ones are strays. Sentences of the satellite
// receiver, which come whenever they come, may stand between them.
void LineWalk::takeIncrement(std::string_view record) {
  state_.increment = numberFrom(record, 3);
  state_.station = state_.start - state_.increment;
  state_.opening = false;
}

void LineWalk::takeCalibration(std::string_view record) {
  if (!decoder_.instrument().calibrated || record[1] < '1' || record[1] > '6') return;
  const CalibrationPair pair{.channel = record[1] - '0', .factor = numberFrom(record, 3), .replaced = 0};
  decoder_.takeCalibration(pair);
  state_.calibration.at(static_cast<std::size_t>(pair.channel - 1)) = static_cast<float>(pair.factor);
}

void LineWalk::takeStation(const Record& record) {
  state_.opening = false;
  for (int i = 0; i < kBreakRows; ++i) addRow() = {.place = {.offset = record.offset}, .isBreak = true, .channels = {}};
  state_.station = numberFrom(record.bytes, 2) - state_.increment;
}

void LineWalk::takeReading(const Record& record) {
  state_.opening = false;
  const bool first = readingRepeat(record.bytes) == 1;
  if (first) state_.station += state_.increment;
  if (first && readings_per_station_ == 1 && state_.pendingReadings == 0) {
    auto& row = addRow();
    row = {};
    row.place = timed_ ? placeOf(record) : RowPlace{.offset = record.offset};
    row.station = state_.station;
    decodeInto(row, record);
    return;
  }
  if (first) {
    // The station before was not whole. Its row bears the number of the one that begins here.
    if (state_.pendingReadings > 0) finishPending();
    state_.pendingReadings = 1;
  } else {
    state_.pendingReadings = std::max(state_.pendingReadings, 1) + 1;
  }
  if (state_.pending.place.offset == 0) state_.pending.place = placeOf(record);
  decodeInto(state_.pending, record);
  if (state_.pendingReadings == readings_per_station_) finishPending();
}

RowPlace LineWalk::placeOf(const Record& record) const {
  const auto tick = parseTick(record.bytes);
  const auto moment = tick ? state_.times.at(*tick) : std::nullopt;
  return {.offset = record.offset, .timeOfDayMs = moment ? moment->timeOfDayMs : RowPlace::kNoTime};
}

void LineWalk::decodeInto(LineRow& row, const Record& record) const {
  const auto reading = decoder_.decode(readingText(record.bytes));
  row.extras = reading.auxiliary;
  for (const auto& channel : channels_) {
    if (reading.channels.present[channel.slot] == 0) continue;
    row.channels.present[channel.slot] = 1;
    row.channels.value[channel.slot] = reading.channels.value[channel.slot];
  }
  if (reading.thickness > kIceBelowTable && reading.channels.present[kThicknessSlot] != 0) {
    row.hasThickness = true;
    row.thickness = reading.channels.value[kThicknessSlot];
  }
}

void LineWalk::finishPending() {
  auto& row = addRow();
  row = state_.pending;
  row.station = state_.station;
  state_.pending = {};
  state_.pendingReadings = 0;
}

}  // namespace kalmira
