#pragma once

#include <span>

// From Qt's keys to the handheld's virtual key codes, which keys.h knows.
namespace kalmira {

inline constexpr int kNoKey = 0;       // a modifier, or nothing: no key press at all
inline constexpr int kOtherKey = 255;  // a key without a code of its own; "any key" takes it, too

struct KeyRow {
  int qtKey;
  int keyCode;
};
// All but letters and digits, whose codes are their own.
std::span<const KeyRow> keyTable();

// `qtKey` as QKeyEvent::key() gives it. The space bar stands in for the keypad's full stop. `pauseKey` is the
// setting: when it is "Key S", that key stands in for the keypad's "0".
int keyCodeOf(int qtKey, int pauseKey);

}  // namespace kalmira
