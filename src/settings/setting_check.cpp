#include "settings/setting_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

#include "platform/text.h"
#include "settings/display_options.h"
#include "settings/line_entry.h"
#include "settings/setup_lists.h"
#include "settings/survey_setup.h"

namespace kalmira {
namespace {

struct Range {
  double least = 0;
  double most = 0;
};

// What is no dialog's list. An interval shorter than the instrument's own has every record taken.
std::optional<Range> plainRange(std::string_view name) {
  struct Entry {
    std::string_view name;
    Range range;
  };
  static constexpr std::array kEntries{Entry{"surveyMode", {0, 2}},
                                       Entry{"iceDisplay", {0, 1}},
                                       Entry{"iceQuantity", {0, 1}},
                                       Entry{"seaWaterChoice", {0, 10}},
                                       Entry{"traceShown", {0, 1}},
                                       Entry{"traceWidth", {1, kTraceWidths}},
                                       Entry{"traceColour", {0, 0xFFFFFF}},
                                       Entry{"profileGrid", {0, 3}},
                                       Entry{"sequenceMode", {0, 1}},
                                       Entry{"direction", {0, 3}},
                                       Entry{"readingsInterval", {0.001, 86400}}};
  const auto found = std::find_if(kEntries.begin(), kEntries.end(), [&](const Entry& e) { return e.name == name; });
  return found == kEntries.end() ? std::nullopt : std::optional(found->range);
}

std::optional<Range> listRange(Kind kind, bool iceOption, const SettingsField& field) {
  const auto* const member = std::get_if<int Settings::*>(&field.member);
  if (member == nullptr) return std::nullopt;
  auto lists = loggerSetupLists({.kind = kind, .iceOption = iceOption});
  const auto gps = gpsSetupLists();
  lists.insert(lists.end(), gps.begin(), gps.end());
  for (const auto& list : lists) {
    if (list.field == *member) {
      return Range{static_cast<double>(list.firstValue),
                   static_cast<double>(list.firstValue) + static_cast<double>(list.entries.size()) - 1};
    }
  }
  return std::nullopt;
}

// A survey list's value must be offered in one survey mode at least; without a list it is 0.
std::string surveyListProblem(SurveyList (*listOf)(int), double value, std::string_view text, std::string_view name) {
  bool any = false;
  for (const int mode : {kModeAuto, kModeWheel, kModeManual}) {
    const auto list = listOf(mode);
    any = any || !list.entries.empty();
    if (list.offers(static_cast<int>(value))) return {};
  }
  if (!any && value == 0) return {};
  return fmt::format("{} is no choice of {} for this instrument", text, name);
}

std::optional<SurveyNumber> surveyNumberOf(std::string_view name) {
  if (name == "readingsCount") return SurveyNumber::readingsCount;
  if (name == "startStation") return SurveyNumber::startStation;
  if (name == "lineIncrement") return SurveyNumber::lineIncrement;
  if (name == "modeIncrement" || name == "stationIncrement") return SurveyNumber::stationIncrement;
  return std::nullopt;
}

std::string outside(std::string_view text, std::string_view name, const Range& range) {
  return fmt::format("{} is outside {}'s range, {} to {}", text, name, range.least, range.most);
}

std::string incrementProblem(double value, std::string_view text, std::string_view name, bool wheel) {
  if (incrementInFile(value) == 0.0)
    return fmt::format("{} for {} is 0 in the data file, which holds three decimals", text, name);
  if (wheel && parseReal(fixedField(value, kWheelColumns, 3)) != incrementInFile(value)) {
    return fmt::format("{} does not fit the data file's {} columns for a wheel's {}", text, kWheelColumns, name);
  }
  return {};
}

}  // namespace

std::string settingProblem(Kind kind, bool iceOption, const FieldRef& field, std::string_view text) {
  const auto name = field.field->name;
  if (std::holds_alternative<std::string Settings::*>(field.field->member)) {
    return hasControlCharacters(text) ? fmt::format("{} takes no control characters", name) : std::string{};
  }
  const auto value = wholeNumber<double>(text);
  if (!value || !std::isfinite(*value)) return fmt::format("\"{}\" is no number for {}", text, name);
  const auto& instrument = instrumentOf(kind);
  if (name == "surveyListA") return surveyListProblem(instrument.listA, *value, text, name);
  if (name == "surveyListB") return surveyListProblem(instrument.listB, *value, text, name);
  auto range = plainRange(name);
  if (!range) range = listRange(kind, iceOption, *field.field);
  if (const auto number = surveyNumberOf(name); number && !range) {
    const auto limits = limitsOf(*number, kind);
    range = Range{limits.least, limits.most};
  }
  if (range && (*value < range->least || *value > range->most)) return outside(text, name, *range);
  const bool increment = name == "modeIncrement" || name == "stationIncrement";
  return increment ? incrementProblem(*value, text, name, name == "modeIncrement" && field.index == kModeWheel) : "";
}

}  // namespace kalmira
