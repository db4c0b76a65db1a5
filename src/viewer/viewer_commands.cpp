#include "viewer/viewer_commands.h"

#include <algorithm>

#include "instruments/resource_names.h"
#include "logging/keys.h"

namespace kalmira {

const std::array<ViewEntry, kViewButtons>& viewEntries() {
  using enum ViewCommand;
  static constexpr std::array<ViewEntry, kViewButtons> kEntries{{
      {lineStart, "<<--", "", {key::kHome, 0}, true, "Start of line"},
      {pageLeft, "<---", "", {key::kPageUp, 0}, true, "80 stations left"},
      {barLeft, "|<--", "", {key::kLeft, key::kUp}, true, "Bar one station left"},
      {barRight, "-->|", "", {key::kRight, key::kDown}, true, "Bar one station right"},
      {pageRight, "--->", "", {key::kPageDown, 0}, true, "80 stations right"},
      {lineEnd, "-->>", "", {key::kEnd, 0}, true, "End of line"},
      {openFile, "&File", "F", {}, false, "Open a data file"},
      {scale, "&Scale", "S", {}, false, "Scale of the profile"},
      {exit, "E&xit", "XE", {}, false, "Back to the menu"},
      {help, "?", "", {}, false, "Help"},
      {kSavePicture, "&Picture", "P", {}, true, "Save picture"},
      {kExportCsv, "&CSV", "C", {}, true, "Export CSV"},
  }};
  return kEntries;
}

std::optional<ViewCommand> viewCommandOfKey(int keyCode) {
  if (keyCode == 'L' || keyCode == 'l') return ViewCommand::lineList;
  const bool small = keyCode >= 'a' && keyCode <= 'z';
  const bool letter = small || (keyCode >= 'A' && keyCode <= 'Z');
  for (const auto& entry : viewEntries()) {
    const auto capital = static_cast<char>(letter ? keyCode & ~0x20 : 0);
    if (letter && entry.keys.find(capital) != std::string_view::npos) return entry.command;
    const bool isOne = std::find(entry.keyCodes.begin(), entry.keyCodes.end(), keyCode) != entry.keyCodes.end();
    if (keyCode != 0 && isOne) return entry.command;
  }
  return std::nullopt;
}

std::string viewHelpText(int storageClass) {
  static constexpr std::array<std::string_view, 11> kLong{
      "Select Survey Line in combo box (L)ine.",
      "  ",
      "To move profile along survey line:",
      "  Start Line     - tap <<--  or key Home",
      "  End Line      - tap -->>  or key End  ",
      "  80 Stn left   - tap <---  or key PgUp ",
      "  80 Stn right - tap --->  or key PgDn",
      "  ",
      "To move vertical bar:",
      "  1 Stn left   - tap  |<--  or key Left ",
      "  1 Stn right - tap  -->|  or key Right",
  };
  static constexpr std::array<std::string_view, 11> kShort{
      "Select Line in box (L)ine.", "  ",
      "To move along line:",        " to Start- tap <<-- /Home",
      " to End  - tap -->> /End ",  " 80 left  - tap <--- /PgUp",
      " 80 right- tap ---> /PgDn",  "  ",
      "To move vertical bar:",      " 1 left   - tap |<-- /Left ",
      " 1 right - tap -->| /Right",
  };
  std::string text;
  for (const auto line : storageClass == 0 ? kLong : kShort) {
    if (!text.empty()) text += "\r\n";
    text += line;
  }
  return text;
}

std::string_view viewScaleTemplate(Kind kind) { return profileScaleTemplate(kind, false, false); }

}  // namespace kalmira
