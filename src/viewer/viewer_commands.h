#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "instruments/catalogue.h"
#include "viewer/navigation.h"

// The viewer's commands: their buttons and keys, and the texts that go with them.
namespace kalmira {

// Behind the numbered commands: the two that save.
inline constexpr ViewCommand kSavePicture{11};
inline constexpr ViewCommand kExportCsv{12};

struct ViewEntry {
  ViewCommand command;
  std::string_view text;          // of the button, with "&" before the letter that is underlined
  std::string_view keys;          // capital letters
  std::array<int, 2> keyCodes;    // the handheld's, 0 for none
  bool needsFile = true;          // greyed while none is open
  std::string_view toolTip = {};  // for who has a mouse, and for screen readers
};
inline constexpr int kViewButtons = 12;
// In the order in which Tab goes over the buttons.
const std::array<ViewEntry, kViewButtons>& viewEntries();

// What a key asks for, by the handheld's virtual key codes (letters of either case by their ASCII codes);
// nothing for Tab and Enter, which go by the highlight.
std::optional<ViewCommand> viewCommandOfKey(int keyCode);

// "View Files Help"; there is a shorter wording for storage classes other than 0, whose screens are smaller.
std::string viewHelpText(int storageClass);

// The profile scale dialog's template.
std::string_view viewScaleTemplate(Kind kind);

}  // namespace kalmira
