#include "settings/settings_file.h"

#include <system_error>
#include <utility>

#include "platform/files.h"
#include "platform/text.h"

namespace kalmira {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

// Takes the next line off `text`, without its end. A missing line is empty.
std::string_view takeLine(std::string_view& text) {
  const auto end = text.find('\n');
  auto line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace

std::filesystem::path settingsFileOf(const SettingsPlace& place) {
  return localPath(place.root, settingsPath(place.kind, place.iceOption, place.storageClass));
}

std::string formatSettings(const Settings& settings, Kind kind, bool iceOption) {
  Settings written = settings;
  // In Wheel mode the wheel gives the distance; the increment only keeps the direction of travel.
  if (surveyModeOf(settings) == kModeWheel) {
    written.stationIncrement = settings.stationIncrement < 0.0F ? -1.0F : 1.0F;
  }
  std::string text(instrumentOf(kind).versionTag);
  text += kLineEnd;
  for (const auto& field : settingsFields()) {
    if (!fieldApplies(field, kind, iceOption)) continue;
    for (std::size_t i = 0; i < fieldSize(field); ++i) {
      text += fieldText(written, field, i);
      text += kLineEnd;
    }
  }
  return text;
}

bool parseSettings(std::string_view text, Kind kind, bool iceOption, Settings& settings) {
  if (takeLine(text) != instrumentOf(kind).versionTag) return false;
  for (const auto& field : settingsFields()) {
    if (!fieldApplies(field, kind, iceOption)) continue;
    for (std::size_t i = 0; i < fieldSize(field); ++i) setFieldText(settings, field, i, takeLine(text));
  }
  settings.stationIncrement = settings.modeIncrement[static_cast<std::size_t>(surveyModeOf(settings))];
  return true;
}

SettingsLoadResult loadSettings(const SettingsPlace& place, Settings& settings) {
  const auto path = settingsFileOf(place);
  (void)makeFolders(path.parent_path());  // a folder that cannot be made shows when the file cannot be written

  SettingsLoadResult result;
  if (const auto text = readSmallFile(path)) {
    if (parseSettings(*text, place.kind, place.iceOption, settings)) return result;
    result.how = SettingsLoad::replaced;
  } else {
    result.how = SettingsLoad::created;
  }
  result.problem = saveSettings(place, settings);
  return result;
}

std::string saveSettings(const SettingsPlace& place, const Settings& settings) {
  const auto path = settingsFileOf(place);
  (void)makeFolders(path.parent_path());
  const auto problem = replaceFile(path, formatSettings(settings, place.kind, place.iceOption));
  if (problem.empty()) return {};
  return "Cannot write " + path.string() + ": " + problem;
}

}  // namespace kalmira
