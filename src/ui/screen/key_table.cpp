#include "ui/screen/key_table.h"

#include <Qt>
#include <array>

#include "logging/keys.h"

namespace kalmira {
namespace {

constexpr int kPauseS = 3;

constexpr std::array kRows{
    KeyRow{Qt::Key_Tab, key::kTab},
    KeyRow{Qt::Key_Backtab, key::kTab},
    KeyRow{Qt::Key_Return, key::kEnter},
    KeyRow{Qt::Key_Enter, key::kEnter},
    KeyRow{Qt::Key_Select, key::kEnter},
    KeyRow{Qt::Key_Home, key::kHome},
    KeyRow{Qt::Key_End, key::kEnd},
    KeyRow{Qt::Key_PageUp, key::kPageUp},
    KeyRow{Qt::Key_PageDown, key::kPageDown},
    KeyRow{Qt::Key_Left, key::kLeft},
    KeyRow{Qt::Key_Up, key::kUp},
    KeyRow{Qt::Key_Right, key::kRight},
    KeyRow{Qt::Key_Down, key::kDown},
    KeyRow{Qt::Key_Minus, key::kMinus},
    KeyRow{Qt::Key_Period, key::kPeriod},
    KeyRow{Qt::Key_Comma, key::kPeriod},
    KeyRow{Qt::Key_Space, key::kPeriod},
    KeyRow{Qt::Key_Shift, kNoKey},
    KeyRow{Qt::Key_Control, kNoKey},
    KeyRow{Qt::Key_Meta, kNoKey},
    KeyRow{Qt::Key_Alt, kNoKey},
    KeyRow{Qt::Key_AltGr, kNoKey},
    KeyRow{Qt::Key_CapsLock, kNoKey},
    KeyRow{Qt::Key_NumLock, kNoKey},
    KeyRow{Qt::Key_ScrollLock, kNoKey},
    KeyRow{Qt::Key_Super_L, kNoKey},
    KeyRow{Qt::Key_Super_R, kNoKey},
    KeyRow{Qt::Key_VolumeUp, kNoKey},
    KeyRow{Qt::Key_VolumeDown, kNoKey},
    KeyRow{Qt::Key_VolumeMute, kNoKey},
    KeyRow{Qt::Key_PowerOff, kNoKey},
    KeyRow{Qt::Key_Sleep, kNoKey},
    KeyRow{Qt::Key_MonBrightnessUp, kNoKey},
    KeyRow{Qt::Key_MonBrightnessDown, kNoKey},
    KeyRow{0, kNoKey},
    KeyRow{Qt::Key_unknown, kNoKey},
};

}  // namespace

std::span<const KeyRow> keyTable() {
  return kRows;
}

int keyCodeOf(int qtKey, int pauseKey) {
  if (qtKey == Qt::Key_S && pauseKey == kPauseS) return '0';
  if ((qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) || (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9)) return qtKey;
  for (const auto& row : kRows) {
    if (row.qtKey == qtKey) return row.keyCode;
  }
  return kOtherKey;
}

}  // namespace kalmira
