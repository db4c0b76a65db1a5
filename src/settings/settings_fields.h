#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "instruments/catalogue.h"
#include "settings/settings.h"

namespace kalmira {

// Which settings files hold a field.
enum class FieldScope { all, lengths, ice, variant, calibration, marker };

// One line of the settings file: where the value lives in the record and how it is written.
struct SettingsField {
  using Member = std::variant<int Settings::*, float Settings::*, double Settings::*, std::string Settings::*,
                              std::array<int, kTraces> Settings::*, std::array<float, 3> Settings::*,
                              std::array<float, 6> Settings::*>;
  std::string_view name;  // "readingsInterval", "traceWidth"
  FieldScope scope;
  Member member;
};

// All fields in file order; an array stands once and takes a line an element.
std::span<const SettingsField> settingsFields();

// Whether files of this kind (and, for an ORLA, ice option) hold the field.
bool fieldApplies(const SettingsField& field, Kind kind, bool iceOption);

// Lines the field takes in a file: 1, or the size of its array.
std::size_t fieldSize(const SettingsField& field);

// Element `index` (0 for a plain field) as it stands in a file, and back. Numbers that do not parse give 0.
std::string fieldText(const Settings& settings, const SettingsField& field, std::size_t index);
void setFieldText(Settings& settings, const SettingsField& field, std::size_t index, std::string_view text);

// A field, or an element of one, by the name users write: "surveyMode", "traceWidth[2]".
struct FieldRef {
  const SettingsField* field;
  std::size_t index;
};
std::optional<FieldRef> findField(std::string_view name);

}  // namespace kalmira
