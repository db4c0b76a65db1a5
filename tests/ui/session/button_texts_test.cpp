#include "logging/keys.h"

#include <gmock/gmock.h>

#include <Qt>
#include <set>

#include "support/session_fixture.h"
#include "ui/screen/key_table.h"

namespace kalmira {
namespace {

struct KeyTable : testing::Test {
  KeyTable() { test.session.inputEnabled = true; }
  int codeOf(int state, int qtKey, int pauseKey = 0) {
    test.session.loggingState = state;
    test.session.settings.pauseKey = pauseKey;
    Focus focus;
    const int keyCode = keyCodeOf(qtKey, pauseKey);
    return keyCode == kNoKey ? kNoCode : codeOfKey(test.session, focus, {}, keyCode);
  }
  TestSession test{Kind::orla};
};

// What a key of the keyboard asks for in each state, pause key "any". -1: nothing.
TEST_F(KeyTable, FromTheKeyboardToTheCodesWithoutALoneShiftThatPauses) {
  const struct {
    std::vector<int> qtKeys;
    int noFile, standBy, logging;
  } cases[]{{{Qt::Key_C}, 0, 3, 0},
            {{Qt::Key_G}, -1, 0, 0},
            {{Qt::Key_L}, -1, 1, 0},
            {{Qt::Key_N}, 2, 2, 0},
            {{Qt::Key_M}, 4, 4, 0},
            {{Qt::Key_X}, 4, 5, 0},
            {{Qt::Key_U}, 1, -1, 0},
            {{Qt::Key_A, Qt::Key_E, Qt::Key_0, Qt::Key_Tab, Qt::Key_Space, Qt::Key_F5, Qt::Key_Escape}, -1, -1, 0},
            {{Qt::Key_Return, Qt::Key_Enter, Qt::Key_Select}, 0, 0, 0},
            {{Qt::Key_Shift, Qt::Key_Control, Qt::Key_VolumeUp}, -1, -1, -1}};
  for (const auto& item : cases) {
    for (const int key : item.qtKeys) {
      EXPECT_EQ(codeOf(kNoFile, key), item.noFile) << key;
      EXPECT_EQ(codeOf(kStandBy, key), item.standBy) << key;
      EXPECT_EQ(codeOf(kLogging, key), item.logging) << key;
    }
  }
  test.session.inputEnabled = false;
  EXPECT_EQ(codeOf(kStandBy, Qt::Key_C), kNoCode);
}

TEST_F(KeyTable, PauseKeysAlsoStartButForEnterWhichPressesTheFocusedButton) {
  const std::set<int> enters{Qt::Key_Return, Qt::Key_Enter, Qt::Key_Select};
  for (const auto& [pauseKey, pauses] :
       {std::pair{1, std::set<int>{Qt::Key_Space, Qt::Key_Minus, Qt::Key_Period, Qt::Key_0}},
        {2, enters},
        {3, {Qt::Key_S, Qt::Key_0}}}) {
    for (const int key : {Qt::Key_Space, Qt::Key_Minus, Qt::Key_Period, Qt::Key_0, Qt::Key_Return, Qt::Key_Enter,
                          Qt::Key_Select, Qt::Key_S, Qt::Key_5, Qt::Key_Left}) {
      SCOPED_TRACE(testing::Message() << pauseKey << " key " << key);
      EXPECT_EQ(codeOf(kLogging, key, pauseKey), pauses.count(key) != 0 ? 0 : kNoCode);
      if (pauseKey == 2) continue;
      EXPECT_EQ(codeOf(kStandBy, key, pauseKey), pauses.count(key) + enters.count(key) != 0 ? 0 : kNoCode);
    }
  }
}

}  // namespace
}  // namespace kalmira
