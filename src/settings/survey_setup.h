#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "instruments/catalogue.h"
#include "settings/settings.h"

// What the operator chooses before a survey: how readings are triggered, what is measured, and where the first line
// begins. Which choices there are depends on the kind, and on the survey mode.
namespace kalmira {

// The names of the survey modes, by mode. The panel calls a GLACO's second mode "Manual", too.
std::span<const std::string_view> surveyModeNames();

// What is chosen in one list, mode by mode, while the operator looks through the modes. Modes in which the list means
// the same share the choice.
class ModeChoices {
 public:
  using ListOf = SurveyList (*)(int mode);
  // `listOf`: list A or B of the instrument. `stored` is what the settings hold, for `storedMode`.
  ModeChoices(ListOf listOf, int stored, int storedMode);

  SurveyList list(int mode) const { return list_of_(mode); }
  int value(int mode) const { return values_[static_cast<std::size_t>(mode)]; }
  void choose(int mode, int value);

 private:
  ListOf list_of_;
  std::array<int, 3> values_{};
};

// The numbers of the survey setup. Intervals are in seconds, stations and their increment in the length unit.
enum class SurveyNumber { readingsInterval, stationIncrement, readingsCount, lineIncrement, startStation };
inline constexpr std::array kSurveyNumbers{SurveyNumber::readingsInterval, SurveyNumber::stationIncrement,
                                           SurveyNumber::readingsCount, SurveyNumber::lineIncrement,
                                           SurveyNumber::startStation};

struct NumberLimits {
  double least = 0;
  double most = 0;
  bool whole = false;
};
// The shortest interval is the time between two records of the instrument: nothing faster can be logged.
NumberLimits limitsOf(SurveyNumber number, Kind kind);
// Whether a number has any effect: the interval in Auto mode only, the samples of an average in Manual mode.
bool isUsed(SurveyNumber number, Kind kind, int mode);

// As the settings hold it, in the fewest digits that read back as the same value.
std::string surveyNumberText(const Settings& settings, SurveyNumber number, int mode);
void takeSurveyNumber(Settings& settings, SurveyNumber number, int mode, double value);

// What was typed, brought within limits.
struct TypedNumber {
  double value = 0;
  std::string note;  // what was changed and why, for the operator; empty when nothing was
};
// The nearest number within `limits`. What is no number at all becomes `former`; what follows a number is dropped.
TypedNumber limitedNumber(std::string_view typed, const NumberLimits& limits, double former);

// "= 4.000/s": the readings a second that an interval gives; empty when it is no positive number.
std::string readingsPerSecondText(std::string_view interval);

}  // namespace kalmira
