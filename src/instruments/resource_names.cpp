#include "instruments/resource_names.h"

#include <array>

namespace kalmira {
namespace {

std::string_view orlaSurveySetup(bool portrait, int storageClass) {
  if (portrait) return "GetSurveySetupOrlaV";
  return storageClass == 0 || storageClass == 1 ? "GetSurveySetupOrlaH" : "GetSurveySetupOrlaHWIDE";
}

}  // namespace

std::string_view surveySetupTemplate(Kind kind, bool portrait, int storageClass) {
  switch (kind) {
    case Kind::orla:
      return orlaSurveySetup(portrait, storageClass);
    case Kind::teskb:
      return portrait ? "GetSurveySetupTeskBV" : "GetSurveySetupTeskB";
    case Kind::teskdd:
      return "GetSurveySetupTeskD";
    case Kind::tesk:
      return "GetSurveySetupTesk";
    case Kind::vardo:
      return "GetSurveySetupVardo";
    case Kind::mirka:
      return "GetSurveySetupMirka";
    case Kind::glaco:
      return "GetSurveySetupGlaco";
    // A TESK2 is set up as a TESKB is.
    case Kind::tesk2:
      return "GetSurveySetupTeskB";
  }
  return {};
}

std::string_view loggerSetupTemplate(Kind kind, bool iceOption) {
  switch (kind) {
    case Kind::orla:
      return iceOption ? "GetLoggerSetupOrlaIce" : "GetLoggerSetupOrla";
    case Kind::tesk2:
      return "GetLoggerSetupTesk2";
    default:
      return "GetLoggerSetupTesk";
  }
}

std::string_view displayOptionsTemplate(Kind kind, bool iceOption) {
  switch (kind) {
    case Kind::orla:
      return iceOption ? "GetOptionsIceNew" : "GetOptions";
    case Kind::vardo:
      return "GetOptionsVardo";
    case Kind::glaco:
      return "GetOptionsGlaco";
    case Kind::tesk2:
      return "GetOptionsTesk2";
    default:
      return "GetOptions";
  }
}

std::string_view profileScaleTemplate(Kind kind, bool iceOption, bool small) {
  if (kind == Kind::vardo) return "GetNewProfileScaleVardo";
  if (kind == Kind::orla && iceOption) return "GetNewProfileScaleICE";
  return small ? "GetNewProfileScaleOrlaH" : "GetNewProfileScaleOrla";
}

std::string_view newStationTemplate(bool small) {
  return small ? "GetNewStationwm6" : "GetNewStation";
}

std::span<const std::string_view> titlePictures(Kind kind, bool iceOption) {
  using Name = std::string_view;
  static constexpr std::array<Name, 5> kOrla{"STATICTIT_ORLA", "STATICTIT_ORLAMX", "STATICTIT_ORLAHVGA",
                                             "STATICTIT_ORLAVVGA", "STATICTIT_ORLAAR"};
  static constexpr std::array<Name, 4> kIce{"STATICTIT_ICEH_VGA", "STATICTIT_ICEMX", "STATICTIT_ICEV_VGA",
                                            "STATICTIT_ICEAR"};
  static constexpr std::array<Name, 4> kTeskb{"STATICTIT_TESKBHVGA", "STATICTIT_TESKBMX",
                                              "STATICTIT_TESKBVVGA", "STATICTIT_TESKBAR"};
  static constexpr std::array<Name, 4> kTeskdd{"STATICTIT_TESKDHVGA", "STATICTIT_TESKDMX",
                                               "STATICTIT_TESKDVVGA", "STATICTIT_TESKDAR"};
  static constexpr std::array<Name, 4> kTesk{"STATICTIT_TESKHVGA", "STATICTIT_TESKMX", "STATICTIT_TESKVVGA",
                                             "STATICTIT_TESKAR"};
  static constexpr std::array<Name, 4> kVardo{"STATICTIT_VARDOHVGA", "STATICTIT_VARDOMX",
                                              "STATICTIT_VARDOVVGA", "STATICTIT_VARDOAR"};
  static constexpr std::array<Name, 4> kGlaco{"STATICTIT_GLACOH_VGA", "STATICTIT_GLACOMX",
                                              "STATICTIT_GLACOV_VGA", "STATICTIT_GLACOAR"};
  static constexpr std::array<Name, 4> kTesk2{"STATICTIT_TESK2H_VGA", "STATICTIT_TESK2MX",
                                              "STATICTIT_TESK2ARVGA", "STATICTIT_TESK2AR"};
  switch (kind) {
    case Kind::orla:
      return iceOption ? std::span<const Name>(kIce) : std::span<const Name>(kOrla);
    case Kind::teskb:
      return kTeskb;
    case Kind::teskdd:
      return kTeskdd;
    case Kind::tesk:
      return kTesk;
    case Kind::vardo:
      return kVardo;
    case Kind::glaco:
      return kGlaco;
    case Kind::tesk2:
      return kTesk2;
    case Kind::mirka:
      break;
  }
  return {};
}

std::span<const std::string_view> commonTitlePictures() {
  static constexpr std::array<std::string_view, 8> kNames{
      "STATICBMPA",   "STATICBMPA_VGA",   "STATICBMPAAR", "STATICBMPAARVGA",
      "STATICLEAD_H", "STATICLEAD_H_VGA", "STATICLEADAR", "STATICLEADARVGA"};
  return kNames;
}

}  // namespace kalmira
