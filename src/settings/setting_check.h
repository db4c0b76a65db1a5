#pragma once

#include <string>
#include <string_view>

#include "instruments/catalogue.h"
#include "settings/settings.h"

namespace kalmira {

// Why `text` can be no value of the field in a survey with this kind: outside its list, in every survey mode;
// too wide for the data file's columns; no number. One sentence; empty when it can.
std::string settingProblem(Kind kind, bool iceOption, const FieldRef& field, std::string_view text);

}  // namespace kalmira
