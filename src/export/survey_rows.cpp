#include "export/survey_rows.h"

#include <deque>
#include <utility>

#include "datafile/record_parse.h"

namespace kalmira {
namespace {

template <typename Value, typename Taker>
bool takeIf(const std::optional<Value>& value, Taker take) {
  if (value) take(*value);
  return value.has_value();
}

class Rows {
 public:
  Rows(const Header1& header, const RowOptions& options, std::optional<MapZone>& zone,
       const std::function<bool(const ReadingRow&)>& take)
      : options_(options), take_(take), decoder_(header, options.teskRangeTimes10) {
    if (options.grid) zone = options.grid->zone;
    if (options.scan == nullptr || options.scan->sentences == 0) return;
    finder_.emplace(
        *options.scan, options.positions, header.surveyMode == kModeManual, zone,
        [this](const Place* place, std::optional<double> utc) { finishFirst(place, utc); }, nullptr);
  }

  // Places come from all of the file, also where only a part of its rows is wanted.
  bool needsAll() const { return finder_.has_value(); }

  // False when nobody wants more.
  bool take(const Record& record) {
    const auto type = recordTypeOf(record.bytes);
    wanted_ = record.offset >= options_.stretch.begin && record.offset < options_.stretch.end;
    if (!understood(type, record.bytes) && wanted_) ++result.unreadableRecords;
    if (type == RecordType::reading) takeReading(record.bytes);
    gap_ = gap_ || type == RecordType::lineName || (type == RecordType::event && isGap(record.bytes));
    if (finder_) finder_->take(type, record);
    return !result.stopped;
  }
  void finish() {
    if (!finder_) return;
    finder_->finish();
    result.leftOut = finder_->leftOut();
  }

  RowsResult result;

 private:
  static bool isGap(std::string_view record) {
    const auto text = parseNote(record);
    return text == "$PAUSED" || text == "$CONN BREAK";
  }

  // False when the record says nothing.
  bool understood(RecordType type, std::string_view record) {
    switch (type) {
      case RecordType::date: return takeIf(parseDate(record), [&](const LocalTime& date) { times_.takeDate(date); });
      case RecordType::timeMark:
        return takeIf(parseTimeMark(record), [&](const TimeMark& mark) { times_.takeMark(mark); });
      case RecordType::calibration:
        return takeIf(parseCalibration(record), [&](const CalibrationPair& pair) { decoder_.takeCalibration(pair); });
      case RecordType::direction: direction_ = record[1]; return position_.take(record);
      case RecordType::lineName:
        position_.take(record);
        line_number_ = lineNumber(position_.lineName());
        return true;
      default: return position_.take(record);
    }
  }

  void takeReading(std::string_view record) {
    if (std::exchange(gap_, false) && result.readings > 0) ++segment_;
    if (wanted_) ++result.readings;
    if (finder_) wanted_rows_.push_back(wanted_);
    if (!wanted_) return;
    auto& row = finder_ ? waiting_.emplace_back() : alone_;
    row.line = position_.lineName();
    row.station = position_.station();
    row.repeat = readingRepeat(record);
    row.tick = parseTick(record);
    row.moment = row.tick ? times_.at(*row.tick) : std::nullopt;
    if (!row.moment) ++result.timelessReadings;
    row.reading = decoder_.decode(readingText(record));
    row.grid = gridPoint(line_number_, direction_, row.station);
    row.segment = segment_;
    if (!finder_) finish(row, nullptr, std::nullopt);
  }

  void finishFirst(const Place* place, std::optional<double> utc) {
    const bool wanted = wanted_rows_.front();
    wanted_rows_.pop_front();
    if (!wanted) return;
    finish(waiting_.front(), place, utc);
    waiting_.pop_front();
  }

  void finish(ReadingRow& row, const Place* place, std::optional<double> utc) {
    row.utc = utc;
    row.place.reset();
    if (options_.grid) {
      placeByGrid(row);
    } else if (place != nullptr) {
      row.place = *place;
    } else if (finder_) {
      ++result.placelessReadings;
    }
    result.stopped = result.stopped || !take_(row);
  }

  void placeByGrid(ReadingRow& row) const {
    row.placedByGrid = true;
    if (!row.grid) return;
    const auto plane = options_.grid->at(*row.grid);
    row.place = Place{.at = unproject(options_.grid->zone, plane),
                      .plane = plane,
                      .altitude = std::nullopt,
                      .satellites = std::nullopt,
                      .hdop = std::nullopt,
                      .accuracy = std::nullopt};
  }

  const RowOptions& options_;
  const std::function<bool(const ReadingRow&)>& take_;
  ReadingDecoder decoder_;
  SurveyPosition position_;
  RecordTimes times_;
  std::optional<PlaceFinder> finder_;
  std::deque<bool> wanted_rows_;    // of readings that wait for their places
  std::deque<ReadingRow> waiting_;  // those of them that are wanted
  ReadingRow alone_;                // of a file without a receiver
  std::optional<double> line_number_;
  std::uint64_t segment_ = 1;
  char direction_ = 'N';
  bool gap_ = false;     // since the reading before
  bool wanted_ = false;  // the record is in the stretch
};

}  // namespace

RowsResult eachRow(RecordReader& reader, const RowOptions& options, std::optional<MapZone>& zone,
                   const std::function<bool(const ReadingRow&)>& take) {
  Rows rows(reader.header(), options, zone, take);
  if (options.stretch.begin > 0 && !rows.needsAll()) reader.seek(options.stretch.begin);
  Record record;
  while (reader.next(record) && (rows.needsAll() || record.offset < options.stretch.end)) {
    if (!rows.take(record)) return std::move(rows.result);
  }
  rows.finish();
  return std::move(rows.result);
}

}  // namespace kalmira
