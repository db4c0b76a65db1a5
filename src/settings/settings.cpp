#include "settings/settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <type_traits>

#include "platform/text.h"

namespace kalmira {
namespace {

using S = Settings;
using enum FieldScope;

const std::array kFields{
    SettingsField{"instrumentLength", lengths, &S::instrumentLength},
    SettingsField{"iceDisplay", ice, &S::iceDisplay},
    SettingsField{"iceQuantity", ice, &S::iceQuantity},
    SettingsField{"seaWaterChoice", ice, &S::seaWaterChoice},
    SettingsField{"iceMinimum", ice, &S::iceMinimum},
    SettingsField{"iceMaximum", ice, &S::iceMaximum},
    SettingsField{"lengthUnits", all, &S::lengthUnits},
    SettingsField{"instrumentPortIndex", all, &S::instrumentPortIndex},
    SettingsField{"audio", all, &S::audio},
    SettingsField{"pauseKey", all, &S::pauseKey},
    SettingsField{"traceShown", all, &S::traceShown},
    SettingsField{"traceWidth", all, &S::traceWidth},
    SettingsField{"traceColour", all, &S::traceColour},
    SettingsField{"profileGrid", all, &S::profileGrid},
    SettingsField{"conductivityMinimum", all, &S::conductivityMinimum},
    SettingsField{"conductivityMaximum", all, &S::conductivityMaximum},
    SettingsField{"inphaseMinimum", all, &S::inphaseMinimum},
    SettingsField{"inphaseMaximum", all, &S::inphaseMaximum},
    SettingsField{"gpsInput", all, &S::gpsInput},
    SettingsField{"gpsPortIndex", all, &S::gpsPortIndex},
    SettingsField{"gpsBaudIndex", all, &S::gpsBaudIndex},
    SettingsField{"gpsDataBitsIndex", all, &S::gpsDataBitsIndex},
    SettingsField{"gpsParityIndex", all, &S::gpsParityIndex},
    SettingsField{"gpsStopBitsIndex", all, &S::gpsStopBitsIndex},
    SettingsField{"surveyMode", all, &S::surveyMode},
    SettingsField{"surveyListA", all, &S::surveyListA},
    SettingsField{"surveyListB", all, &S::surveyListB},
    SettingsField{"readingsCount", all, &S::readingsCount},
    SettingsField{"tesk2Variant", variant, &S::tesk2Variant},
    SettingsField{"calibrationFactors", calibration, &S::calibrationFactors},
    SettingsField{"modeIncrement", all, &S::modeIncrement},
    SettingsField{"readingsInterval", all, &S::readingsInterval},
    SettingsField{"lineName", all, &S::lineName},
    SettingsField{"lineIncrement", all, &S::lineIncrement},
    SettingsField{"sequenceMode", all, &S::sequenceMode},
    SettingsField{"direction", all, &S::direction},
    SettingsField{"startStation", all, &S::startStation},
    SettingsField{"stationIncrement", all, &S::stationIncrement},
    SettingsField{"softMarker", marker, &S::softMarker},
    SettingsField{"markerPortChoice", marker, &S::markerPortChoice},
};

template <typename T>
constexpr bool kIsArray = false;
template <typename T, std::size_t N>
constexpr bool kIsArray<std::array<T, N>> = true;

// Calls `use` with the element itself, an int, float, double or string.
template <typename Record, typename Use>
auto withElement(Record& settings, const SettingsField& field, std::size_t index, Use use) {
  return std::visit(
      [&](auto member) {
        auto& value = settings.*member;
        if constexpr (kIsArray<std::remove_cvref_t<decltype(value)>>) {
          return use(value[index]);
        } else {
          return use(value);
        }
      },
      field.member);
}

}  // namespace

int surveyModeOf(const Settings& settings) { return indexOr(settings.surveyMode, 3, kModeAuto); }

float readingsIntervalOf(const Settings& settings) {
  const float interval = settings.readingsInterval;
  if (!std::isfinite(interval) || interval <= 0.0F) return Settings{}.readingsInterval;
  return std::min(interval, 86400.0F);
}

int readingsCountOf(const Settings& settings) { return std::clamp(settings.readingsCount, 1, 100); }

std::span<const SettingsField> settingsFields() { return kFields; }

bool fieldApplies(const SettingsField& field, Kind kind, bool iceOption) {
  const auto& instrument = instrumentOf(kind);
  switch (field.scope) {
    case FieldScope::lengths: return instrument.hasLengths();
    case FieldScope::ice: return instrument.hasIce() && iceOption;
    case FieldScope::variant: return instrument.writesVariant;
    case FieldScope::calibration: return instrument.calibrated;
    case FieldScope::marker: return instrument.hasMarker;
    case FieldScope::all: break;
  }
  return true;
}

std::size_t fieldSize(const SettingsField& field) {
  return std::visit(
      [](auto member) -> std::size_t {
        using Value = std::remove_cvref_t<decltype(std::declval<Settings&>().*member)>;
        if constexpr (kIsArray<Value>) {
          return std::tuple_size_v<Value>;
        } else {
          return 1;
        }
      },
      field.member);
}

std::string fieldText(const Settings& settings, const SettingsField& field, std::size_t index) {
  return withElement(settings, field, index, [](const auto& value) -> std::string {
    using Value = std::remove_cvref_t<decltype(value)>;
    if constexpr (std::is_same_v<Value, std::string>) {
      return narrow(value);
    } else if constexpr (std::is_same_v<Value, int>) {
      return fmt::format("{}", value);
    } else {
      return fmt::format("{:.6f}", static_cast<double>(value));
    }
  });
}

void setFieldText(Settings& settings, const SettingsField& field, std::size_t index, std::string_view text) {
  withElement(settings, field, index, [&](auto& value) {
    using Value = std::remove_cvref_t<decltype(value)>;
    if constexpr (std::is_same_v<Value, std::string>) {
      value = firstCharacters(text, kLineNameCharacters);
    } else if constexpr (std::is_same_v<Value, int>) {
      value = parseInt(text);
    } else {
      value = static_cast<Value>(parseReal(text));
    }
  });
}

std::optional<FieldRef> findField(std::string_view name) {
  const auto bracket = name.find('[');
  const auto base = name.substr(0, bracket);
  for (const auto& field : kFields) {
    if (field.name != base) continue;
    const auto size = fieldSize(field);
    if (bracket == std::string_view::npos) {
      return size == 1 ? std::optional<FieldRef>({&field, 0}) : std::nullopt;
    }
    std::size_t index = 0;
    const auto* const first = name.data() + bracket + 1;
    const auto* const last = name.data() + name.size();
    const auto [end, error] = std::from_chars(first, last, index);
    if (error != std::errc{} || end == last || *end != ']' || end + 1 != last) return std::nullopt;
    return size > 1 && index < size ? std::optional<FieldRef>({&field, index}) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace kalmira
