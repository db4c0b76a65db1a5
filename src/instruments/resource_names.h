#pragma once

#include <span>
#include <string_view>

#include "instruments/catalogue.h"

// The names of dialog templates and title pictures, by kind and screen. A dialog is loaded by the name given
// here.
namespace kalmira {

std::string_view surveySetupTemplate(Kind kind, bool portrait, int storageClass);
std::string_view loggerSetupTemplate(Kind kind, bool iceOption);
std::string_view displayOptionsTemplate(Kind kind, bool iceOption);
// `small`: storage class 1 without the wide layout.
std::string_view profileScaleTemplate(Kind kind, bool iceOption, bool small);
std::string_view newStationTemplate(bool small);
inline constexpr std::string_view kGpsPortSetupTemplate = "GetGPSPortSetup";
inline constexpr std::string_view kNewLineTemplate = "GetNewLine";
inline constexpr std::string_view kCommentTemplate = "GetComment";

// The title pictures of a kind, largest choice first as the screens came; MIRKA has none of its own.
std::span<const std::string_view> titlePictures(Kind kind, bool iceOption);
// The pictures that every kind's title shows.
std::span<const std::string_view> commonTitlePictures();

}  // namespace kalmira
