#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "logging/commands.h"
#include "logging/session.h"

// From keys to what they do in the logging window. Key numbers are the handheld's virtual key codes: letters and digits
// by their ASCII codes (letters of either case), the rest below.
namespace kalmira {

namespace key {
inline constexpr int kTab = 9;
inline constexpr int kEnter = 13;
inline constexpr int kPageUp = 33;
inline constexpr int kPageDown = 34;
inline constexpr int kEnd = 35;
inline constexpr int kHome = 36;
inline constexpr int kLeft = 37;
inline constexpr int kUp = 38;
inline constexpr int kRight = 39;
inline constexpr int kDown = 40;
inline constexpr int kMinus = 189;
inline constexpr int kPeriod = 190;
}  // namespace key

// The buttons of the present row, as the keyboard moves over them.
struct Focus {
  int focusIndex = 0;
  int firstFocusIndex = 0;
  int buttonCount = 2;
};

// What the window knows besides the session.
struct KeyContext {
  bool keypadEntry = false;     // the soft marker is on
  bool digitsPlatform = false;  // a numeric keypad: digits mark, where elsewhere arrows do
};

// What a button or key asks for in state 0 (no file), Stand By and Logging: codes 0 to 5 of the window's rows, for a
// TESK2 without a file also the menu commands 107 and 108.
inline constexpr int kNoCode = -1;
inline constexpr int kMenuCalibrate = 107;
inline constexpr int kMenuDeleteCalibration = 108;
inline constexpr int kFit = 109;  // the chart's button, and F where it does not pause

// The code of button `index` of the present row.
int codeOfButton(const Session& session, int index);
// The code of a key press, or kNoCode. Moves the focus and sets the marker key where the key asks for that.
int codeOfKey(Session& session, Focus& focus, const KeyContext& context, int keyCode);
// A key was released.
void keyReleased(Session& session, const KeyContext& context, int keyCode);

// What a code does in the session's present state; nothing where it does nothing.
std::optional<Command> commandOf(const Session& session, int code);

// The command behind a menu identifier 1101 to 1112: 101 to 108; kNoCode for others.
int menuCommandOf(int menuIdentifier);

// The texts of the logging window's buttons. "&" marks the letter that is underlined.

// What decides which keys a prompt may name.
enum class Keypad {
  full,     // letters and all
  narrow,   // the same, on a screen too narrow for the long texts
  tesk2,    // digits mark while logging, so that they cannot pause
  numeric,  // a numeric keypad, whose digits mark
};
Keypad keypadOf(const Session& session, const KeyContext& context);

// The prompt of the Logging row, by the pause key and the trigger mode.
std::string_view pausePrompt(Keypad keypad, int pauseKey, bool manual);

// The row of buttons for the session's present state, in the order of their codes.
std::vector<std::string_view> buttonTexts(const Session& session, const KeyContext& context);

// What the logging window knows of its keys: the TESK2's soft marker, and whether digits do the marking.
KeyContext keyContextOf(const Session& session);

}  // namespace kalmira
