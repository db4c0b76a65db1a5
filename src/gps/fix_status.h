#pragma once

#include <optional>
#include <string>
#include <string_view>

// What the GPS part of the panel shows for one sentence.
namespace kalmira {

// The panel texts a sentence changes; nothing where a field stays as it is. An empty text clears the field.
struct FixTexts {
  bool activity = false;  // a good GGA: the activity mark turns
  std::optional<std::string> satellites;
  std::optional<std::string> fix;
  std::optional<std::string> pdop;
};

FixTexts fixTexts(std::string_view sentence, bool checksumOk);

// The word for a GGA quality digit; empty for anything but a digit.
std::string_view fixWord(char quality);

}  // namespace kalmira
