#include "instruments/catalogue.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

#include "instruments/rows.h"

namespace kalmira {
namespace {

constexpr std::array<const Instrument*, kKindCount> kCatalogue{&kOrla,  &kTeskb, &kTeskdd, &kTesk,
                                                               &kVardo, &kMirka, &kGlaco,  &kTesk2};

// The store a folder lies in: "C_DRIVE", "Storage" or "" for the root.
std::string_view storeName(const Instrument& instrument, int storageClass) {
  if (instrument.fixedStorageFolder || storageClass == 0) return "C_DRIVE";
  if (storageClass == 1) return "Storage";
  return "";
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](unsigned char x, unsigned char y) { return std::toupper(x) == std::toupper(y); });
}

// What an ORLA started for ice work has of its own, or what it shares.
template <typename Names>
Names iceOr(bool iceOption, const Names& ice, const Names& usual) {
  return iceOption && !ice.empty() ? ice : usual;
}

}  // namespace

const Instrument* findInstrument(int kindIndex) {
  if (kindIndex < 0 || kindIndex >= kKindCount) return nullptr;
  return kCatalogue[static_cast<std::size_t>(kindIndex)];
}

const Instrument& instrumentOf(Kind kind) { return *kCatalogue[static_cast<std::size_t>(kind)]; }

const Instrument* findInstrumentByName(std::string_view nameOrIndex) {
  if (nameOrIndex.size() == 1 && nameOrIndex[0] >= '0' && nameOrIndex[0] <= '7') {
    return findInstrument(nameOrIndex[0] - '0');
  }
  for (const auto* row : kCatalogue) {
    if (equalIgnoringCase(row->name, nameOrIndex)) return row;
  }
  return nullptr;
}

std::span<const Channel> channelsOf(const Instrument& instrument, bool ice) {
  const auto all = instrument.channels;
  return ice || !instrument.hasIce() ? all : all.first(all.size() - 1);
}

std::string settingsPath(Kind kind, bool iceOption, int storageClass) {
  const auto& instrument = instrumentOf(kind);
  const bool iceFile = instrument.hasIce() && iceOption;
  return fmt::format("{}\\KALINI\\{}", storeName(instrument, storageClass),
                     iceFile ? instrument.iceSettingsFile : instrument.settingsFile);
}

std::string dataFolder(Kind kind, int storageClass) {
  const auto& instrument = instrumentOf(kind);
  const auto store = storeName(instrument, storageClass);
  if (!store.empty()) return fmt::format("{}\\{}", store, instrument.dataFolder);
  if (instrument.documentsFolder.empty()) return fmt::format("Storage\\{}", instrument.dataFolder);
  return fmt::format("My Documents\\{}", instrument.documentsFolder);
}

std::string dataFolderPrefix(Kind kind, int storageClass) {
  return fmt::format("{}\\", dataFolder(kind, storageClass));
}

std::string filterPattern(Kind kind) { return fmt::format("*{}", instrumentOf(kind).extension); }

std::string headerTag(Kind kind, bool shortInstrument, bool gps) {
  const auto& instrument = instrumentOf(kind);
  const auto model = instrument.hasLengths() && shortInstrument ? instrument.shortModelTag : instrument.modelTag;
  return fmt::format("{:<8}{}{}", model, instrument.programVersion, gps ? "GPS" : "GRD");
}

const Instrument* findInstrumentByHeader(std::string_view header1) {
  if (header1.size() < 15 || header1[12] != 'G') return nullptr;
  const auto model = header1.substr(0, 5);
  const auto program = header1.substr(8, 4);
  const auto survey = header1.substr(12, 3);
  if (survey != "GRD" && survey != "GPS") return nullptr;
  for (const auto* row : kCatalogue) {
    const bool modelFits = model == row->modelTag || (row->hasLengths() && model == row->shortModelTag);
    if (modelFits && program == row->programVersion) return row;
  }
  return nullptr;
}

int readingsPerStationOf(Kind kind, int surveyMode, int listA, int listB) {
  const auto& instrument = instrumentOf(kind);
  if (surveyMode != kModeManual || instrument.readingsAtStation == nullptr) return 1;
  return instrument.readingsAtStation(listA, listB);
}

std::string_view surveySetupTemplate(Kind kind, bool portrait, int storageClass) {
  const auto& row = instrumentOf(kind);
  if (portrait) return row.surveySetupUpright.empty() ? row.surveySetup : row.surveySetupUpright;
  const bool small = storageClass == 0 || storageClass == 1;
  return small || row.surveySetupWide.empty() ? row.surveySetup : row.surveySetupWide;
}

std::string_view loggerSetupTemplate(Kind kind, bool iceOption) {
  const auto& row = instrumentOf(kind);
  return iceOr(iceOption, row.loggerSetupIce, row.loggerSetup);
}

std::string_view displayOptionsTemplate(Kind kind, bool iceOption) {
  const auto& row = instrumentOf(kind);
  return iceOr(iceOption, row.displayOptionsIce, row.displayOptions);
}

std::string_view profileScaleTemplate(Kind kind, bool iceOption, bool small) {
  const auto& row = instrumentOf(kind);
  if (!row.profileScale.empty()) return row.profileScale;
  if (row.hasIce() && iceOption) return "GetNewProfileScaleICE";
  return small ? "GetNewProfileScaleOrlaH" : "GetNewProfileScaleOrla";
}

std::string_view newStationTemplate(bool small) { return small ? "GetNewStationwm6" : "GetNewStation"; }

std::span<const std::string_view> titlePictures(Kind kind, bool iceOption) {
  const auto& row = instrumentOf(kind);
  return iceOr(iceOption, row.titlePicturesIce, row.titlePictures);
}

std::span<const std::string_view> commonTitlePictures() {
  static constexpr std::array<std::string_view, 8> kNames{"STATICBMPA",      "STATICBMPA_VGA", "STATICBMPAAR",
                                                          "STATICBMPAARVGA", "STATICLEAD_H",   "STATICLEAD_H_VGA",
                                                          "STATICLEADAR",    "STATICLEADARVGA"};
  return kNames;
}

}  // namespace kalmira
