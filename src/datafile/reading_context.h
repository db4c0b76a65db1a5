#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "datafile/record_parse.h"
#include "instruments/ice_model.h"

namespace kalmira {

// Where on the survey a reading was taken, told by the records before it: the first reading of a line or after a new
// station stands on the stated station, each further "T" or "t" one increment on, "2" to "6" stay.
class SurveyPosition {
 public:
  // Takes any record in file order. False for a line, station or direction record whose number cannot be read: stations
  // are then unknown until the file states one again.
  bool take(std::string_view record);

  const std::string& lineName() const { return line_name_; }
  // Of the reading taken last.
  std::optional<double> station() const;
  // Where a first reading would stand that came next.
  std::optional<double> nextStation() const;

 private:
  void standOn(std::optional<double> station);
  std::optional<double> stationAfter(std::int64_t steps) const;

  std::string line_name_;
  std::optional<double> stated_;     // station of the "B" or "S" record
  std::optional<double> increment_;  // of the line
  std::int64_t steps_ = 0;           // increments since stated_
  bool reading_seen_ = false;        // since stated_
};

// From the ticks of a data file to dates and times of day. The file ties the two together with time marks;
// dates stand only in the line blocks.
//
// A time mark's day is found from the date record before it (the mark may follow it by up to 23 hours) or, when a mark
// was seen since, from the time that its tick says has passed since that mark. So days go on past midnight, and a clock
// that was put right or changed to summer time does not cost a day.
class RecordTimes {
 public:
  struct Moment {
    std::optional<std::int64_t> day;  // since 1970-01-01 in the device's time zone; nothing without a date record
    std::uint32_t timeOfDayMs = 0;    // since midnight
  };

  void takeDate(const LocalTime& date);
  void takeMark(const TimeMark& mark);
  // Nothing before the first time mark. Ticks up to an hour before the last mark's are taken as earlier than it, all
  // others as later: the 32-bit counter wraps after 49.7 days.
  std::optional<Moment> at(std::uint32_t tick) const;

 private:
  std::optional<std::int64_t> date_ms_;  // date record since the last mark, as `mark_ms_`
  bool marked_ = false;
  bool dated_ = false;  // mark_ms_ counts from 1970, else from the midnight before the mark
  std::int64_t mark_ms_ = 0;
  std::uint32_t mark_tick_ = 0;
};

// Decodes the readings of one data file, with what the file's own header says about the instrument and the one start-up
// choice that it does not tell. The only decoder of recorded readings: tables, viewer, readout and chart all show what
// comes from here.
class ReadingDecoder {
 public:
  explicit ReadingDecoder(const Header1& header, bool teskRangeTimes10 = false);

  // TESK2: from here on this factor holds, or all of these.
  void takeCalibration(const CalibrationPair& calibration);
  void setCalibration(const std::array<float, 6>& factors) { options_.calibration = factors; }

  const Instrument& instrument() const { return *instrument_; }
  // `text` as in the file, any bytes. The marker is told in every survey mode; where the file asks for ice thickness,
  // it is in `thickness`, and in slot 4 where the model's table has one.
  Reading decode(std::string_view text) const;

 private:
  const Instrument* instrument_;
  DecodeOptions options_;
  std::optional<IceModel> ice_;
};

}  // namespace kalmira
