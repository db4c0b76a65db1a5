#include "logging/button_texts.h"

#include <gmock/gmock.h>

#include <Qt>

#include "support/session_fixture.h"
#include "ui/screen/key_table.h"

namespace kalmira {
namespace {

using testing::ElementsAre;

TEST(ButtonTexts, RowsOfEveryState) {
  TestSession orla(Kind::orla);
  TestSession tesk2(Kind::tesk2);
  EXPECT_THAT(buttonTexts(orla.session, {}), ElementsAre("&Create File", "E&xit"));
  EXPECT_THAT(buttonTexts(tesk2.session, {}),
              ElementsAre("&Create File", "C&alibrate", "D&el Calibr.", "E&xit"));
  tesk2.session.setup.smallScreen = true;
  EXPECT_THAT(buttonTexts(tesk2.session, {}), ElementsAre("&Cr. File", "C&alib.", "D&el Cal.", "E&xit"));
  tesk2.session.loggingState = kStandBy;
  EXPECT_THAT(buttonTexts(tesk2.session, {}),
              ElementsAre("&Go", "&Line", "&NStn", "&Cmnt", "&Menu", "E&xit"));
}

struct PromptCase {
  Keypad keypad;
  int pauseKey;
  bool manual;
  std::string_view text;
};

TEST(ButtonTexts, PromptsNameTheKeyThatPauses) {
  const std::vector<PromptCase> cases{
      {Keypad::full, 0, false, "TAP ME or press any key to Pause"},
      {Keypad::full, 1, false, "TAP ME or press SPACE bar to Pause"},
      {Keypad::full, 2, true, "Trigger to Log, Tap or press ENTER key to Pause"},
      {Keypad::full, 3, true, "Trigger to Log, Tap or press key S to Pause"},
      {Keypad::full, 77, false, "TAP ME or press any key to Pause"},
      {Keypad::narrow, 0, true, "Trigger to Log, Tap/any key to Pause"},
      {Keypad::narrow, 1, true, "Trigger to Log, Tap/SPACE to Pause"},
      {Keypad::narrow, 3, true, "Trigger to Log, Tap/<S> to Pause"},
      {Keypad::narrow, 3, false, "TAP ME or press key S to Pause"},
      {Keypad::tesk2, 0, false, "TAP ME or any non numeric key to Pause"},
      {Keypad::tesk2, 0, true, "Trigger to Log, Tap or non numeric key to Pause"},
      {Keypad::tesk2, 2, false, "TAP ME or press ENTER key to Pause"},
      {Keypad::numeric, 0, false, "TAP or non numeric or <0> to Pause"},
      {Keypad::numeric, 1, false, "TAP or <->, <0> or <.> to Pause"},
      {Keypad::numeric, 3, false, "TAP ME or press key <0> to Pause"},
      {Keypad::numeric, 0, true, "Trigger to Log, Tap or press any non numeric key to Pause"},
      {Keypad::numeric, 2, true, "Trigger to Log, Tap/ENTER to Pause"},
  };
  for (const auto& item : cases) EXPECT_EQ(pausePrompt(item.keypad, item.pauseKey, item.manual), item.text);
}

// What a key of the keyboard asks for in each state, pause key "any". -1: nothing.
struct KeyboardCase {
  int qtKey;
  int noFile;
  int standBy;
  int logging;
};

TEST(KeyTable, FromTheKeyboardToTheCodes) {
  const std::vector<KeyboardCase> cases{
      {Qt::Key_C, 0, 3, 0},          {Qt::Key_G, -1, 0, 0},         {Qt::Key_L, -1, 1, 0},
      {Qt::Key_N, 2, 2, 0},          {Qt::Key_M, 4, 4, 0},          {Qt::Key_X, 4, 5, 0},
      {Qt::Key_U, 1, -1, 0},         {Qt::Key_A, -1, -1, 0},        {Qt::Key_E, -1, -1, 0},
      {Qt::Key_B, -1, -1, 0},        {Qt::Key_0, -1, -1, 0},        {Qt::Key_5, -1, -1, 0},
      {Qt::Key_Return, 0, 0, 0},     {Qt::Key_Enter, 0, 0, 0},      {Qt::Key_Tab, -1, -1, 0},
      {Qt::Key_Space, -1, -1, 0},    {Qt::Key_Left, -1, -1, 0},     {Qt::Key_F5, -1, -1, 0},
      {Qt::Key_Escape, -1, -1, 0},   {Qt::Key_Minus, -1, -1, 0},    {Qt::Key_Shift, -1, -1, -1},
      {Qt::Key_Control, -1, -1, -1}, {Qt::Key_VolumeUp, -1, -1, -1}};
  TestSession test(Kind::orla);
  test.session.inputEnabled = true;
  for (const auto& item : cases) {
    for (const auto& [state, expected] : {std::pair{kNoFile, item.noFile}, std::pair{kStandBy, item.standBy},
                                          std::pair{kLogging, item.logging}}) {
      test.session.loggingState = state;
      Focus focus;
      const int keyCode = keyCodeOf(item.qtKey, 0);
      const int code = keyCode == kNoKey ? kNoCode : codeOfKey(test.session, focus, {}, keyCode);
      EXPECT_EQ(code, expected) << "key " << item.qtKey << " state " << state;
    }
  }
}

TEST(KeyTable, PauseKeys) {
  TestSession test(Kind::orla);
  auto& session = test.session;
  session.inputEnabled = true;
  const std::vector<std::pair<int, std::vector<int>>> pauses{
      {1, {Qt::Key_Space, Qt::Key_Minus, Qt::Key_Period, Qt::Key_0}},
      {2, {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Select}},
      {3, {Qt::Key_S, Qt::Key_0}}};
  for (const auto& [pauseKey, keys] : pauses) {
    session.settings.pauseKey = pauseKey;
    for (const int qtKey : {Qt::Key_Space, Qt::Key_Minus, Qt::Key_Period, Qt::Key_0, Qt::Key_Return,
                            Qt::Key_Enter, Qt::Key_Select, Qt::Key_S, Qt::Key_G, Qt::Key_5, Qt::Key_Left}) {
      const bool named = std::find(keys.begin(), keys.end(), qtKey) != keys.end();
      Focus focus;
      session.loggingState = kLogging;
      EXPECT_EQ(codeOfKey(session, focus, {}, keyCodeOf(qtKey, pauseKey)), named ? 0 : kNoCode)
          << pauseKey << " key " << qtKey;
      // The same keys start, but for Enter, which presses the focused button anyhow.
      session.loggingState = kStandBy;
      const int starts = codeOfKey(session, focus, {}, keyCodeOf(qtKey, pauseKey));
      if (qtKey != Qt::Key_G && pauseKey != 2) {
        const bool enter = qtKey == Qt::Key_Return || qtKey == Qt::Key_Enter || qtKey == Qt::Key_Select;
        EXPECT_EQ(starts, named || enter ? 0 : kNoCode) << pauseKey << " key " << qtKey;
      }
    }
  }
}

}  // namespace
}  // namespace kalmira
