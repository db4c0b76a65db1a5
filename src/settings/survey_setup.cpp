#include "settings/survey_setup.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cmath>

#include "platform/text.h"
#include "settings/line_entry.h"

namespace kalmira {
namespace {

using Names = std::span<const std::string_view>;

constexpr double kFarthestIncrement = 9999.0;
constexpr double kFarthestStation = 9999999.0;  // seven digits, sign and two decimals fill the file's columns
constexpr double kLongestInterval = 86400.0;
constexpr double kMostSamples = 100.0;
constexpr std::size_t kQuotedCharacters = 12;  // of what was typed

constexpr std::array<std::string_view, 3> kModes{"Auto", "Wheel", "Manual"};

bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

std::string_view withoutSpace(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::size_t digitsAt(std::string_view text, std::size_t start) {
  std::size_t end = start;
  while (end < text.size() && text[end] >= '0' && text[end] <= '9') ++end;
  return end - start;
}

// Characters of the decimal number that begins the text; 0 when none does.
std::size_t numberLength(std::string_view text) {
  std::size_t end = text.starts_with('-') || text.starts_with('+') ? 1 : 0;
  std::size_t digits = digitsAt(text, end);
  end += digits;
  if (end < text.size() && text[end] == '.') {
    const std::size_t decimals = digitsAt(text, end + 1);
    digits += decimals;
    end += 1 + decimals;
  }
  if (digits == 0) return 0;
  if (end == text.size() || (text[end] != 'e' && text[end] != 'E')) return end;
  std::size_t exponent = end + 1;
  if (exponent < text.size() && (text[exponent] == '-' || text[exponent] == '+')) ++exponent;
  const std::size_t power = digitsAt(text, exponent);
  return power == 0 ? end : exponent + power;
}

std::string quoted(std::string_view typed) {
  if (typed.empty()) return "Was empty";
  const auto start = firstCharacters(typed, kQuotedCharacters);
  return fmt::format("Was \"{}{}\"", start, start.size() < typed.size() ? "..." : "");
}

}  // namespace

Names surveyModeNames() { return kModes; }

ModeChoices::ModeChoices(ListOf listOf, int stored, int storedMode) : list_of_(listOf) {
  for (int mode = 0; mode < 3; ++mode) values_[static_cast<std::size_t>(mode)] = list(mode).usual;
  choose(storedMode, stored);
}

void ModeChoices::choose(int mode, int value) {
  const auto chosenIn = list(mode);
  if (!chosenIn.offers(value)) return;
  for (int other = 0; other < 3; ++other) {
    const auto same = list(other);
    if (same.label == chosenIn.label && same.offers(value)) values_[static_cast<std::size_t>(other)] = value;
  }
}

NumberLimits limitsOf(SurveyNumber number, Kind kind) {
  switch (number) {
    case SurveyNumber::readingsInterval: return {instrumentOf(kind).recordPeriodMs / 1000.0, kLongestInterval};
    case SurveyNumber::readingsCount: return {1.0, kMostSamples, true};
    case SurveyNumber::startStation: return {-kFarthestStation, kFarthestStation};
    case SurveyNumber::stationIncrement:
    case SurveyNumber::lineIncrement: break;
  }
  return {-kFarthestIncrement, kFarthestIncrement};
}

bool isUsed(SurveyNumber number, Kind kind, int mode) {
  switch (number) {
    case SurveyNumber::readingsInterval: return mode == kModeAuto;
    case SurveyNumber::readingsCount: return mode == kModeManual && instrumentOf(kind).hasTrigger;
    default: return true;
  }
}

std::string surveyNumberText(const Settings& settings, SurveyNumber number, int mode) {
  switch (number) {
    case SurveyNumber::readingsInterval: return fmt::format("{}", settings.readingsInterval);
    case SurveyNumber::stationIncrement:
      return fmt::format("{}", settings.modeIncrement[static_cast<std::size_t>(mode)]);
    case SurveyNumber::readingsCount: return fmt::format("{}", settings.readingsCount);
    case SurveyNumber::lineIncrement: return fmt::format("{}", settings.lineIncrement);
    case SurveyNumber::startStation: break;
  }
  return fmt::format("{}", settings.startStation);
}

void takeSurveyNumber(Settings& settings, SurveyNumber number, int mode, double value) {
  switch (number) {
    case SurveyNumber::readingsInterval: settings.readingsInterval = static_cast<float>(value); break;
    case SurveyNumber::stationIncrement:
      settings.modeIncrement[static_cast<std::size_t>(mode)] = static_cast<float>(incrementInFile(value));
      break;
    case SurveyNumber::readingsCount: settings.readingsCount = static_cast<int>(value); break;
    case SurveyNumber::lineIncrement: settings.lineIncrement = static_cast<float>(value); break;
    case SurveyNumber::startStation: settings.startStation = stationInFile(value); break;
  }
}

TypedNumber limitedNumber(std::string_view typed, const NumberLimits& limits, double former) {
  const auto text = withoutSpace(typed);
  const std::size_t length = numberLength(text);
  if (length == 0) {
    return {former, text.empty() ? quoted(text) : fmt::format("{}: no number", quoted(text))};
  }
  const double value = parseReal(text);
  const double nearest = std::clamp(limits.whole ? std::round(value) : value, limits.least, limits.most);
  if (value < limits.least || value > limits.most) {
    return {nearest, fmt::format("{}: {} to {}", quoted(text), limits.least, limits.most)};
  }
  if (nearest != value) return {nearest, fmt::format("{}: whole numbers only", quoted(text))};
  return {nearest, length == text.size() ? std::string() : quoted(text)};
}

std::string readingsPerSecondText(std::string_view interval) {
  const double seconds = parseReal(interval);
  if (!std::isfinite(seconds) || seconds <= 0.0) return {};
  const double rate = 1.0 / seconds;
  return std::isfinite(rate) && rate < 1000.0 ? fmt::format("= {:.3f}/s", rate) : std::string();
}

}  // namespace kalmira
