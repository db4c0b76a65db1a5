#include "export/survey_rows.h"

#include <fmt/format.h>

#include <deque>
#include <utility>
#include <vector>

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
  Rows(const Header1& header, const RowOptions& options, std::optional<MapZone>& zone, const RowTakers& takers)
      : options_(options), takers_(takers), decoder_(header, options.teskRangeTimes10) {
    if (options.grid) zone = options.grid->zone;
    if (options.scan == nullptr || options.scan->sentences == 0) return;
    finder_.emplace(
        *options.scan, options.positions, header.surveyMode == kModeManual, zone,
        PlaceTakers{.reading = [this](const Place* place, std::optional<double> utc) { readingPlaced(place, utc); },
                    .moment = [this](const Place* place, std::optional<double> utc) { eventPlaced(place, utc); },
                    .fix = [this](const Fix& fix) { takeFix(fix); }});
  }

  // Places come from all of the file, also where only a part of its rows is wanted.
  bool needsAll() const { return finder_.has_value(); }

  // False when nobody wants more.
  bool take(const Record& record) {
    const auto type = recordTypeOf(record.bytes);
    wanted_ = record.offset >= options_.stretch.begin && record.offset < options_.stretch.end;
    if (!understood(type, record.bytes) && wanted_) ++result.unreadableRecords;
    if (type == RecordType::reading) takeReading(record.bytes);
    if (takers_.event && wanted_) takeEvent(type, record.bytes);
    gap_ = gap_ || type == RecordType::lineName || (type == RecordType::event && isGap(record.bytes));
    if (finder_) findPlaces(type, record);
    return !result.stopped;
  }
  void finish() {
    tellUntimed(std::nullopt);
    if (!finder_) return;
    finder_->finish();
    result.leftOut = finder_->leftOut();
  }

  RowsResult result;

 private:
  // Counts the sentences of the stretch, too: the one that this record ends may be told of at once.
  void findPlaces(RecordType type, const Record& record) {
    if (wanted_) last_sentence_ = finder_->sentences() + 1;
    finder_->take(type, record);
    if (wanted_) last_sentence_ = finder_->sentences();
    if (record.offset < options_.stretch.begin) first_sentence_ = finder_->sentences();
  }

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
        ++line_block_;
        return true;
      case RecordType::gpsFirst:
      case RecordType::gpsMore:
      case RecordType::gpsTick: return true;
      default: return position_.take(record);
    }
  }

  void stand(SurveyMoment& row, std::optional<double> station, std::optional<std::uint32_t> tick) const {
    row.line = position_.lineName();
    row.lineBlock = line_block_;
    row.station = station;
    row.tick = tick;
    row.moment = tick ? times_.at(*tick) : std::nullopt;
    row.grid = gridPoint(line_number_, direction_, station);
    row.segment = segment_;
  }

  void takeReading(std::string_view record) {
    if (std::exchange(gap_, false) && result.readings > 0) ++segment_;
    if (wanted_) ++result.readings;
    tellUntimed(std::nullopt);
    if (finder_) wanted_rows_.push_back(wanted_);
    if (!wanted_) return;
    auto& row = finder_ ? waiting_.emplace_back() : alone_;
    stand(row, position_.station(), parseTick(record));
    if (!row.moment) ++result.timelessReadings;
    row.repeat = readingRepeat(record);
    row.reading = decoder_.decode(readingText(record));
    if (!finder_) finish(row, nullptr, std::nullopt, takers_.reading);
  }

  // New lines, stations and factors have the time of the mark that follows them.
  void takeEvent(RecordType type, std::string_view record) {
    switch (type) {
      case RecordType::lineName: return untimed("line", position_.lineName());
      case RecordType::station:
        if (const auto station = parseStation(record)) untimed("station", fmt::format("{:.2f}", *station));
        return;
      case RecordType::calibration:
        if (const auto pair = parseCalibration(record))
          untimed("calibration", fmt::format("{} {:.3f}", pair->channel, pair->factor));
        return;
      case RecordType::timeMark:
        if (const auto mark = parseTimeMark(record)) tellUntimed(mark->tick);
        return;
      case RecordType::comment: return timed({{}, "comment", parseNote(record)}, parseTick(record));
      case RecordType::event: return timed({{}, "event", parseNote(record)}, parseTick(record));
      default: return;
    }
  }
  void untimed(std::string_view event, std::string text) { untimed_.push_back({{}, event, std::move(text)}); }
  void tellUntimed(std::optional<std::uint32_t> tick) {
    for (auto& row : std::exchange(untimed_, {})) timed(std::move(row), tick);
  }
  void timed(EventRow row, std::optional<std::uint32_t> tick) {
    stand(row, position_.station(), tick);
    if (!finder_) return finish(row, nullptr, std::nullopt, takers_.event);
    events_waiting_.push_back(std::move(row));
    finder_->takeMoment(tick);
  }

  void readingPlaced(const Place* place, std::optional<double> utc) {
    const bool wanted = wanted_rows_.front();
    wanted_rows_.pop_front();
    if (!wanted) return;
    if (place == nullptr && !options_.grid) ++result.placelessReadings;
    finish(waiting_.front(), place, utc, takers_.reading);
    waiting_.pop_front();
  }
  void eventPlaced(const Place* place, std::optional<double> utc) {
    finish(events_waiting_.front(), place, utc, takers_.event);
    events_waiting_.pop_front();
  }
  void takeFix(const Fix& fix) {
    const bool wanted = fix.order > first_sentence_ && fix.order <= last_sentence_;
    if (takers_.fix && wanted && !options_.grid) result.stopped = result.stopped || !takers_.fix(fix);
  }

  template <typename Row>
  void finish(Row& row, const Place* place, std::optional<double> utc, const std::function<bool(const Row&)>& take) {
    row.utc = utc;
    row.place.reset();
    if (options_.grid) {
      placeByGrid(row);
    } else if (place != nullptr) {
      row.place = *place;
    }
    result.stopped = result.stopped || !take(row);
  }

  void placeByGrid(SurveyMoment& row) const {
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
  const RowTakers& takers_;
  ReadingDecoder decoder_;
  SurveyPosition position_;
  RecordTimes times_;
  std::optional<PlaceFinder> finder_;
  std::deque<bool> wanted_rows_;    // of readings that wait for their places
  std::deque<ReadingRow> waiting_;  // those of them that are wanted
  ReadingRow alone_;                // of a file without a receiver
  std::vector<EventRow> untimed_;   // wait for a time mark
  std::deque<EventRow> events_waiting_;
  std::uint64_t first_sentence_ = 0, last_sentence_ = 0;  // counted, of the stretch, the first one not in it
  std::optional<double> line_number_;
  std::uint64_t line_block_ = 0;
  std::uint64_t segment_ = 1;
  char direction_ = 'N';
  bool gap_ = false;     // since the reading before
  bool wanted_ = false;  // the record is in the stretch
};

}  // namespace

RowsResult eachRow(RecordReader& reader, const RowOptions& options, std::optional<MapZone>& zone,
                   const RowTakers& takers) {
  Rows rows(reader.header(), options, zone, takers);
  if (options.stretch.begin > 0 && !rows.needsAll()) reader.seek(options.stretch.begin);
  Record record;
  while (reader.next(record) && (rows.needsAll() || record.offset < options.stretch.end)) {
    if (!rows.take(record)) return std::move(rows.result);
  }
  rows.finish();
  return std::move(rows.result);
}

}  // namespace kalmira
