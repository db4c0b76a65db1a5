#include "settings/line_entry.h"

#include <fmt/format.h>

#include <cmath>

#include "platform/text.h"

namespace kalmira {

LineEntry proposeLine(const Settings& settings, double station) {
  LineEntry entry;
  // "Nantes" and "Info" spell numbers that are none.
  const double typed = parseReal(settings.lineName);
  const float number = (std::isfinite(typed) ? static_cast<float>(typed) : 0.0F) + settings.lineIncrement;
  entry.lineName = fmt::format("{:.2f}", std::isfinite(number) ? number : 0.0F);
  entry.lineIncrement = settings.lineIncrement;
  entry.sequenceMode = indexOr(settings.sequenceMode, 2, kSequenceAlternate);
  entry.direction = indexOr(settings.direction, 4, Settings{}.direction);
  entry.startStation = settings.startStation;
  entry.stationIncrement = settings.stationIncrement;
  if (entry.sequenceMode == kSequenceAlternate) {
    entry.startStation = station;
    entry.stationIncrement = -settings.stationIncrement;
    entry.direction = oppositeDirection(entry.direction);
  }
  return entry;
}

double stationInFile(double station) { return parseReal(fmt::format("{:.2f}", station)); }

double incrementInFile(double increment) { return parseReal(fmt::format("{:.3f}", increment)); }

void takeAsFile(Settings& settings) {
  settings.startStation = stationInFile(settings.startStation);
  settings.stationIncrement = static_cast<float>(incrementInFile(static_cast<double>(settings.stationIncrement)));
}

void takeLine(const LineEntry& entry, Settings& settings) {
  settings.lineName = firstCharacters(entry.lineName, kLineNameCharacters);
  settings.lineIncrement = entry.lineIncrement;
  settings.sequenceMode = entry.sequenceMode;
  settings.direction = entry.direction;
  settings.startStation = entry.startStation;
  settings.stationIncrement = entry.stationIncrement;
  takeAsFile(settings);
}

std::string commentHint(std::string_view comment) {
  // As the file has it: one byte a character.
  const std::string kept = narrow(comment);
  if (kept.empty()) return fmt::format("{} characters fit", kCommentCharactersKept);
  if (kept.size() < kCommentCharactersKept) return fmt::format("{} more fit", kCommentCharactersKept - kept.size());
  if (kept.size() == kCommentCharactersKept) return "Fits exactly";
  return fmt::format("Kept: {}", kept.substr(0, kCommentCharactersKept));
}

}  // namespace kalmira
