#pragma once

#include <string_view>
#include <vector>

#include "logging/keys.h"
#include "logging/session.h"

// The texts of the logging window's buttons. "&" marks the letter that is underlined.
namespace kalmira {

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
