#include "ui/screen/key_table.h"

#include <Qt>
#include <algorithm>
#include <array>

#include "logging/keys.h"

namespace kalmira {
namespace {

constexpr int kPauseS = 3;

struct KeyRow {
  int qtKey;
  int keyCode;
};
// All but letters and digits, whose codes are their own. The space bar stands in for the keypad's full stop.
constexpr std::array kRows{
    KeyRow{Qt::Key_Tab, key::kTab},      KeyRow{Qt::Key_Backtab, key::kTab},   KeyRow{Qt::Key_Return, key::kEnter},
    KeyRow{Qt::Key_Enter, key::kEnter},  KeyRow{Qt::Key_Select, key::kEnter},  KeyRow{Qt::Key_Home, key::kHome},
    KeyRow{Qt::Key_End, key::kEnd},      KeyRow{Qt::Key_PageUp, key::kPageUp}, KeyRow{Qt::Key_PageDown, key::kPageDown},
    KeyRow{Qt::Key_Left, key::kLeft},    KeyRow{Qt::Key_Up, key::kUp},         KeyRow{Qt::Key_Right, key::kRight},
    KeyRow{Qt::Key_Down, key::kDown},    KeyRow{Qt::Key_Minus, key::kMinus},   KeyRow{Qt::Key_Period, key::kPeriod},
    KeyRow{Qt::Key_Comma, key::kPeriod}, KeyRow{Qt::Key_Space, key::kPeriod},
};

// Modifiers, and keys that are for the machine.
constexpr std::array<int, 19> kSilent{
    Qt::Key_Shift,
    Qt::Key_Control,
    Qt::Key_Meta,
    Qt::Key_Alt,
    Qt::Key_AltGr,
    Qt::Key_CapsLock,
    Qt::Key_NumLock,
    Qt::Key_ScrollLock,
    Qt::Key_Super_L,
    Qt::Key_Super_R,
    Qt::Key_VolumeUp,
    Qt::Key_VolumeDown,
    Qt::Key_VolumeMute,
    Qt::Key_PowerOff,
    Qt::Key_Sleep,
    Qt::Key_MonBrightnessUp,
    Qt::Key_unknown,
    Qt::Key_MonBrightnessDown,
    0,
};

}  // namespace

int keyCodeOf(int qtKey, int pauseKey) {
  if (qtKey == Qt::Key_S && pauseKey == kPauseS) return '0';
  if ((qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) || (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9)) return qtKey;
  for (const auto& row : kRows) {
    if (row.qtKey == qtKey) return row.keyCode;
  }
  return std::find(kSilent.begin(), kSilent.end(), qtKey) == kSilent.end() ? kOtherKey : kNoKey;
}

int scrollStepOf(int keyCode, int page) {
  switch (keyCode) {
    case key::kUp: return -1;
    case key::kDown: return 1;
    case key::kPageUp: return -page;
    case key::kPageDown: return page;
    default: return 0;
  }
}

bool isFunctionKey(int qtKey) { return qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F35; }

}  // namespace kalmira
