#pragma once

#include <array>
#include <optional>

#include "ui/shell/main_menu.h"

// Where the main window opens, and where its parts stand, in pixels.
namespace kalmira {

struct Box {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

struct MenuLayout {
  Box title;
  std::array<Box, kMenuCommands> buttons{};
  Box model;  // "Model", beside the theme's button
  Box theme;
  Box fonts;  // small, at the right edge of the title, above its last line
};

// Title above the buttons in a window that is higher than wide, else beside them. Buttons stand in one column
// where that leaves room for the title, else in two, and are `touchHeight` high or more while the window has
// any room for that.
MenuLayout layOutMenu(int width, int height, int touchHeight);

struct ScreenRoom {
  int width = 0;  // what the desktop leaves to windows
  int height = 0;
};
struct OpeningPlace {
  int width = 0;  // of the window's inside
  int height = 0;
  bool fullScreen = false;  // the screen has no room for a window of good size
};
// 240 x 320 units, at scale 2 where the screen has room, else at the largest of 1.5 and 1 that fits. What the
// command line asks for is taken as it is.
OpeningPlace openingPlace(ScreenRoom room, std::optional<bool> portrait, std::optional<double> scale);

}  // namespace kalmira
