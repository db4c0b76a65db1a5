#include "console/run_settings.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "settings/line_entry.h"

namespace kalmira {

RunSettings::RunSettings(SettingsPlace place, const FieldValues& overrides) : place_(std::move(place)) {
  problem_ = loadSettings(place_, settings_).problem;
  const Settings fromFile = settings_;
  bool incrementSet = false;
  for (const auto& [field, text] : overrides) {
    setFieldText(settings_, *field.field, field.index, text);
    incrementSet = incrementSet || field.field->name == "stationIncrement";
  }
  // As after loading: each survey mode has an increment of its own.
  if (!incrementSet) {
    settings_.stationIncrement = settings_.modeIncrement[static_cast<std::size_t>(surveyModeOf(settings_))];
  }
  takeAsFile(settings_);
  for (const auto& [field, text] : overrides) {
    overrides_.push_back({.field = field,
                          .fileValue = fieldText(fromFile, *field.field, field.index),
                          .runValue = fieldText(settings_, *field.field, field.index)});
  }
}

void RunSettings::keepLine() {
  static constexpr std::array<std::string_view, 6> kLineFields{"lineName",  "lineIncrement", "sequenceMode",
                                                               "direction", "startStation",  "stationIncrement"};
  std::erase_if(overrides_, [](const Override& item) {
    return std::find(kLineFields.begin(), kLineFields.end(), item.field.field->name) != kLineFields.end();
  });
}

std::string RunSettings::takeProblem() {
  auto problem = std::exchange(problem_, {});
  return problem.empty() ? writer_.takeProblem() : problem;
}

void RunSettings::save(const Settings& current) {
  Settings saved = current;
  for (const auto& item : overrides_) {
    const auto& field = *item.field.field;
    if (fieldText(current, field, item.field.index) == item.runValue) {
      setFieldText(saved, field, item.field.index, item.fileValue);
    }
  }
  writer_.write(settingsFileOf(place_), formatSettings(saved, place_.kind, place_.iceOption));
}

}  // namespace kalmira
