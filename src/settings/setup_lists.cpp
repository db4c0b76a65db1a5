#include "settings/setup_lists.h"

#include <fmt/format.h>

namespace kalmira {
namespace {

using Entries = std::vector<std::string>;

constexpr int kComPortEntries = 12;
constexpr int kNoMarkerPort = 6;  // COM6 was never wired on the handhelds with a marker

Entries comEntries() {
  Entries entries;
  for (int com = 1; com <= kComPortEntries; ++com) entries.push_back(fmt::format("COM{}:", com));
  return entries;
}

Entries markerEntries() {
  Entries entries{"Disabled"};
  for (int com = 1; com <= kComPortEntries; ++com) {
    if (com != kNoMarkerPort) entries.push_back(fmt::format("COM{}:", com));
  }
  return entries;
}

Entries seaWaterEntries() {
  Entries entries;
  for (int conductivity = 2000; conductivity <= 3000; conductivity += 100) {
    entries.push_back(fmt::format("{} mS/m", conductivity));
  }
  return entries;
}

// An upright handheld of the ORLA's time had no key but "any"; instruments with a marker go with keypads of digits.
Entries pauseKeyEntries(const SetupFrame& frame) {
  if (instrumentOf(frame.kind).hasMarker) return {"Non numeric key", "<-> <0> <.>", "ENTER key", "Key <0>"};
  if (frame.portrait) return {"Any key"};
  return {"Any key", "SPACE bar", "ENTER key", "Key S"};
}

Entries softMarkerEntries(const SetupFrame& frame) {
  const bool digits = frame.portrait && frame.storageClass == 1;
  return {"No", digits ? "Digit keys" : "Arrow keys"};
}

}  // namespace

std::vector<SetupList> loggerSetupLists(const SetupFrame& frame) {
  const auto& instrument = instrumentOf(frame.kind);
  std::vector<SetupList> lists;
  if (instrument.hasIce() && frame.iceOption) {
    lists.push_back({"iceDisplay", {"Disabled", "Enabled"}, &Settings::iceDisplay});
    lists.push_back({"seaWater", seaWaterEntries(), &Settings::seaWaterChoice, 0, true});
    lists.push_back({"iceQuantity", {"Cond./Inphase", "Ice Thickness"}, &Settings::iceQuantity, 0, true});
  }
  if (instrument.hasLengths())
    lists.push_back({"instrumentLength", {"Standard", "Short"}, &Settings::instrumentLength});
  if (instrument.writesVariant) {
    lists.push_back({"tesk2Variant", {"TESK-2-1", "TESK-2"}, &Settings::tesk2Variant, 1});
  }
  if (instrument.hasMarker) {
    lists.push_back({"markerPort", markerEntries(), &Settings::markerPortChoice});
    lists.push_back({"softMarker", softMarkerEntries(frame), &Settings::softMarker});
  }
  lists.push_back({"instrumentPort", comEntries(), &Settings::instrumentPortIndex});
  lists.push_back({"lengthUnits", {"meters", "feet"}, &Settings::lengthUnits});
  lists.push_back({"audio", {"No", "Yes"}, &Settings::audio});
  lists.push_back({"pauseKey", pauseKeyEntries(frame), &Settings::pauseKey});
  return lists;
}

std::vector<SetupList> gpsSetupLists() {
  return {
      {"gpsInput", {"Disabled", "Enabled"}, &Settings::gpsInput},
      {"gpsPort", comEntries(), &Settings::gpsPortIndex},
      {"gpsBaud", {"4800", "9600", "19200", "38400", "57600", "115200", "230400", "460800"}, &Settings::gpsBaudIndex},
      {"gpsDataBits", {"7", "8"}, &Settings::gpsDataBitsIndex},
      {"gpsParity", {"No", "Even", "Odd"}, &Settings::gpsParityIndex},
      {"gpsStopBits", {"1", "2"}, &Settings::gpsStopBitsIndex}};
}

int shownPosition(const SetupList& list, const Settings& settings) {
  const int count = static_cast<int>(list.entries.size());
  const int fallback = indexOr(Settings{}.*list.field - list.firstValue, count, 0);
  // Compared before it is subtracted from: a file may hold the least of all numbers.
  const int value = settings.*list.field;
  return value < list.firstValue ? fallback : indexOr(value - list.firstValue, count, fallback);
}

void takePosition(const SetupList& list, int position, Settings& settings) {
  if (position < 0 || position >= static_cast<int>(list.entries.size())) return;
  settings.*list.field = position + list.firstValue;
}

}  // namespace kalmira
