#include "logging/keys.h"

#include <gmock/gmock.h>

#include <QFontMetrics>

#include "support/session_fixture.h"
#include "ui/screen/key_table.h"
#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

TEST(ButtonTexts, PromptsNameTheKeyThatPauses) {
  const struct {
    Keypad keypad;
    int pauseKey;
    bool manual;
    std::string_view text;
  } cases[]{{Keypad::full, 1, false, "TAP ME or press SPACE bar to Pause"},
            {Keypad::full, 2, true, "Trigger to Log, Tap or press ENTER key to Pause"},
            {Keypad::full, 77, false, "TAP ME or press any key to Pause"},
            {Keypad::narrow, 3, true, "Trigger to Log, Tap/<S> to Pause"},
            {Keypad::narrow, 3, false, "TAP ME or press key S to Pause"},
            {Keypad::tesk2, 0, true, "Trigger to Log, Tap or non numeric key to Pause"},
            {Keypad::tesk2, 2, false, "TAP ME or press ENTER key to Pause"},
            {Keypad::numeric, 1, false, "TAP or <->, <0> or <.> to Pause"},
            {Keypad::numeric, 2, true, "Trigger to Log, Tap/ENTER to Pause"}};
  for (const auto& item : cases) EXPECT_EQ(pausePrompt(item.keypad, item.pauseKey, item.manual), item.text);
}

// A row is 240 units wide.
TEST(ButtonTexts, NoneIsCutInItsRow) {
  std::vector<std::pair<std::string_view, std::size_t>> texts;
  for (const auto keypad : {Keypad::full, Keypad::narrow, Keypad::tesk2, Keypad::numeric}) {
    for (int i = 0; i < 8; ++i) texts.emplace_back(pausePrompt(keypad, i / 2, i % 2 == 0), 1);
  }
  TestSession tesk2(Kind::tesk2);
  for (const auto state : {kNoFile, kStandBy}) {
    tesk2.session.loggingState = state;
    const auto row = buttonTexts(tesk2.session, {});
    for (const auto text : row) texts.emplace_back(text, row.size());
  }
  tesk2.session.loggingState = kNoFile;
  tesk2.session.setup.smallScreen = true;
  EXPECT_THAT(buttonTexts(tesk2.session, {}), testing::ElementsAre("&Cr. File", "C&alib.", "D&el Cal.", "E&xit"));
  for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
    for (const auto& [bytes, inRow] : texts) {
      SCOPED_TRACE(testing::Message() << bytes << " at " << scale);
      const auto text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
      TouchButton button(text, dayTheme());
      QFont wished;
      wished.setPixelSize(static_cast<int>(12 * scale));
      button.setDefault(true);  // the thicker frame
      button.resize(static_cast<int>(240 * scale) / static_cast<int>(inRow), static_cast<int>(34 * scale));
      const QSize room = button.textRoom().size();
      const QFont font = fittedFont(text, wished, room);
      const QSize needed =
          QFontMetrics(font)
              .boundingRect({{}, room}, Qt::AlignCenter | Qt::TextWordWrap | Qt::TextShowMnemonic, text)
              .size();
      EXPECT_EQ(room.expandedTo(needed), room);
      EXPECT_GE(font.pixelSize(), static_cast<int>(8 * scale));
    }
  }
}

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
