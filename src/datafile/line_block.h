#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kalmira {

// Where on the survey a reading was taken, told by the records before it: the first reading of a line or
// after a new station stands on the stated station, each further "T" or "t" one increment on, "2" to "6"
// stay.
class SurveyPosition {
 public:
  // Takes any record in file order. False for a line, station or direction record whose number cannot be
  // read: stations are then unknown until the file states one again.
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

}  // namespace kalmira
