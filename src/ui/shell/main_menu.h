#pragma once

#include <array>
#include <optional>
#include <string_view>

// The main menu: its commands, their texts and keys, and how a key moves over them.
namespace kalmira {

enum class MenuCommand : int {
  monitorLog = 0,
  surveySetup,
  loggerSetup,
  setGpsPort,
  displayOptions,
  viewFiles,
  exit,
};
inline constexpr int kMenuCommands = 7;
// A button's command identifier is this plus its index.
inline constexpr int kFirstMenuIdentifier = 420;

struct MenuEntry {
  MenuCommand command;
  std::string_view text;  // of the button, with "&" before the letter that is underlined
  std::string_view keys;  // capital letters
};
const std::array<MenuEntry, kMenuCommands>& menuEntries();

// By index; a command that is not there yet is passed over by the highlight and its keys do nothing.
using MenuEnabled = std::array<bool, kMenuCommands>;

struct MenuStep {
  int highlight = 0;
  std::optional<MenuCommand> act;
};
// What a key does, by the handheld's virtual key codes (see logging/keys.h; letters of either case by their
// ASCII codes), with the button `highlight` marked. Past either end the highlight goes round.
MenuStep stepOfKey(int keyCode, int highlight, const MenuEnabled& enabled);

}  // namespace kalmira
