#pragma once

// From Qt's keys to the handheld's virtual key codes, which keys.h knows: what every window's keys go by.
namespace kalmira {

inline constexpr int kNoKey = 0;       // a modifier, or nothing: no key press at all
inline constexpr int kOtherKey = 255;  // a key without a code of its own; "any key" takes it, too

// `qtKey` as QKeyEvent::key() gives it. `pauseKey` is the setting: when it is "Key S", that key stands in for the
// keypad's "0".
int keyCodeOf(int qtKey, int pauseKey = 0);

// The rows by which a key scrolls a list, down or (negative) up; 0 for other keys.
int scrollStepOf(int keyCode, int page);

// Those are the program's, whichever of its windows is shown.
bool isFunctionKey(int qtKey);

}  // namespace kalmira
