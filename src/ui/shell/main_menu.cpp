#include "ui/shell/main_menu.h"

#include <cctype>

#include "logging/keys.h"

namespace kalmira {
namespace {

// The next button in that direction that can be pressed; the same one when there is no other.
int neighbour(int highlight, int step, const MenuEnabled& enabled) {
  int index = highlight;
  for (int tried = 0; tried < kMenuCommands; ++tried) {
    index = (index + step + kMenuCommands) % kMenuCommands;
    if (enabled[static_cast<std::size_t>(index)]) return index;
  }
  return highlight;
}

std::optional<MenuCommand> ifEnabled(MenuCommand command, const MenuEnabled& enabled) {
  if (!enabled[static_cast<std::size_t>(command)]) return std::nullopt;
  return command;
}

std::optional<MenuCommand> commandOfLetter(int keyCode) {
  if (keyCode < 'A' || keyCode > 'z' || std::isalpha(keyCode) == 0) return std::nullopt;
  const auto letter = static_cast<char>(std::toupper(keyCode));
  for (const auto& entry : menuEntries()) {
    if (entry.keys.find(letter) != std::string_view::npos) return entry.command;
  }
  return std::nullopt;
}

}  // namespace

const std::array<MenuEntry, kMenuCommands>& menuEntries() {
  static constexpr std::array<MenuEntry, kMenuCommands> kEntries{{
      {MenuCommand::monitorLog, "Monitor/&Log", "L"},
      {MenuCommand::surveySetup, "&Survey Setup", "S"},
      {MenuCommand::loggerSetup, "L&ogger Setup", "O"},
      {MenuCommand::setGpsPort, "Set &GPS Port", "G"},
      {MenuCommand::displayOptions, "&Display Options", "D"},
      {MenuCommand::viewFiles, "&View Files", "V"},
      {MenuCommand::exit, "E&xit", "XE"},
  }};
  return kEntries;
}

MenuStep stepOfKey(int keyCode, int highlight, const MenuEnabled& enabled) {
  switch (keyCode) {
    case key::kLeft:
    case key::kUp:
      return {.highlight = neighbour(highlight, -1, enabled), .act = {}};
    case key::kRight:
    case key::kDown:
    case key::kTab:
      return {.highlight = neighbour(highlight, 1, enabled), .act = {}};
    case key::kEnter:
      return {.highlight = highlight, .act = ifEnabled(static_cast<MenuCommand>(highlight), enabled)};
    default:
      break;
  }
  const auto command = commandOfLetter(keyCode);
  if (!command || !ifEnabled(*command, enabled)) return {.highlight = highlight, .act = {}};
  return {.highlight = static_cast<int>(*command), .act = command};
}

}  // namespace kalmira
