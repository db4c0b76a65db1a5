#include "instruments/resource_names.h"

#include <array>

namespace kalmira {
namespace {

// What an ORLA started for ice work has of its own, or what it shares.
template <typename Names>
Names iceOr(bool iceOption, const Names& ice, const Names& usual) {
  return iceOption && !ice.empty() ? ice : usual;
}

}  // namespace

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
