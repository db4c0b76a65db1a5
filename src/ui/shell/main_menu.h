#pragma once

#include <QRect>
#include <array>
#include <optional>

#include "ui/screen/action_bar.h"

// The main menu: its commands, where the main window opens, and where its parts stand, in pixels.
namespace kalmira {

enum class MenuCommand : int { monitorLog = 0, surveySetup, loggerSetup, setGpsPort, displayOptions, viewFiles, exit };
inline constexpr int kMenuCommands = 7;
// A button's identifier is this plus its index.
inline constexpr int kFirstMenuIdentifier = 420;
const std::array<Action, kMenuCommands>& menuEntries();

struct MenuLayout {
  QRect title;
  std::array<QRect, kMenuCommands> buttons;
  QRect model;  // "Model", beside the theme's button
  QRect theme;
};

// Title above the buttons in a window that is higher than wide, else beside them. Buttons stand in one column where
// that leaves room for the title, else in two, and are `touchHeight` high or more while the window has any room for
// that.
MenuLayout layOutMenu(int width, int height, int touchHeight);

struct WindowPlace {
  int width = 0;  // of the window's inside
  int height = 0;
  bool fullScreen = false;  // the screen has no room for a window of good size
};
// In `room`, what the desktop leaves to windows: 240 x 320 units, at scale 2 where the screen has room, else at the
// largest of 1.5 and 1 that fits. What the command line asks for is taken as it is.
WindowPlace openingPlace(QSize room, std::optional<bool> portrait, std::optional<double> scale);

}  // namespace kalmira
