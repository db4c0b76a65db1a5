// The settings file of any kind, and the names of settings: the first byte chooses the kind, the ice option
// and whether the right version tag is put in front.
#include <cmath>
#include <cstdlib>
#include <string>

#include "settings/line_entry.h"
#include "settings/settings.h"
#include "settings/settings_file.h"

using namespace kalmira;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

void checkUse(const Settings& settings) {
  const int mode = surveyModeOf(settings);
  require(mode >= 0 && mode <= 2);
  const float interval = readingsIntervalOf(settings);
  require(std::isfinite(interval) && interval > 0 && interval <= 86400);
  require(readingsCountOf(settings) >= 1 && readingsCountOf(settings) <= 100);
  const auto entry = proposeLine(settings, settings.startStation);
  require(entry.direction >= 0 && entry.direction <= 3 && (entry.sequenceMode == 0 || entry.sequenceMode == 1));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const auto kind = static_cast<Kind>(data[0] % kKindCount);
  const bool ice = (data[0] & 8U) != 0;
  std::string text(data + 1, data + size);
  Settings named;
  if (const auto field = findField(text.substr(0, text.find('=')))) {
    setFieldText(named, *field->field, field->index, text.substr(text.find('=') + 1));
    checkUse(named);
  }
  if ((data[0] & 16U) != 0) text.insert(0, std::string(instrumentOf(kind).versionTag) + "\r\n");

  Settings settings;
  if (!parseSettings(text, kind, ice, settings)) {
    require(formatSettings(settings, kind, ice) == formatSettings(Settings{}, kind, ice));
    return 0;
  }
  checkUse(settings);
  // What has once been written comes back unchanged.
  const auto written = formatSettings(settings, kind, ice);
  Settings again;
  require(parseSettings(written, kind, ice, again));
  const auto rewritten = formatSettings(again, kind, ice);
  // But the sign that Wheel mode keeps: an increment of -0.0000001 has it, the -0.000000 in the file has not.
  require(rewritten == written || surveyModeOf(settings) == kModeWheel);
  require(rewritten.size() + 1 >= written.size());
  return 0;
}
