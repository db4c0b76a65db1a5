#include "gps/monitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kalmira {
namespace {

using testing::ElementsAre;

std::string shownButtons(const MonitorState& state) {
  std::string out;
  for (int i = 0; i < kMonitorCommands; ++i) {
    const auto command = static_cast<MonitorCommand>(i);
    if (monitorButtonShown(state, command)) out += monitorButtonText(command);
  }
  return out;
}

TEST(MonitorKeys, LettersInBothCasesAndEnter) {
  struct Row {
    char key;
    int command;  // -1: none
  };
  for (const auto& [key, command] : {Row{'G', 0},
                                     {'g', 0},
                                     {'P', 1},
                                     {'p', 1},
                                     {'S', 2},
                                     {'s', 2},
                                     {'X', 3},
                                     {'x', 3},
                                     {'\r', 2},
                                     {'e', -1},
                                     {' ', -1},
                                     {'\x1b', -1},
                                     {'\0', -1}}) {
    MonitorState state{.monitorDefaultButton = 2};
    const auto found = typeMonitorKey(state, key);
    EXPECT_EQ(found ? static_cast<int>(*found) : -1, command) << static_cast<int>(key);
    EXPECT_EQ(state.monitorDefaultButton, 2);
  }
}

// 0 Go, 1 Pause, 2 Send, 3 Exit
TEST(MonitorKeys, TabSkipsTheButtonThatIsNotThere) {
  struct Row {
    int streaming, from, to;
  };
  for (const auto& [streaming, from, to] :
       {Row{1, 1, 2}, {1, 2, 3}, {1, 3, 1}, {0, 0, 2}, {0, 2, 3}, {0, 3, 0}}) {
    MonitorState state{
        .monitorPaused = 1 - streaming, .monitorStreaming = streaming, .monitorDefaultButton = from};
    EXPECT_FALSE(typeMonitorKey(state, '\t'));
    EXPECT_EQ(state.monitorDefaultButton, to) << streaming << " from " << from;
  }
}

TEST(MonitorState, GoAndPauseTakeTurnsInOnePlace) {
  MonitorState state;
  EXPECT_EQ(shownButtons(state), "&Pause&SendE&xit");
  EXPECT_EQ(typeMonitorKey(state, '\r'), MonitorCommand::pause);
  showPaused(state);
  EXPECT_EQ(shownButtons(state), "&Go&SendE&xit");
  EXPECT_EQ(state.monitorPaused, 1);
  EXPECT_EQ(typeMonitorKey(state, '\r'), MonitorCommand::go);
  state.monitorDefaultButton = 3;
  showStreaming(state);
  EXPECT_EQ(shownButtons(state), "&Pause&SendE&xit");
  EXPECT_EQ(state.monitorPaused, 0);
  EXPECT_EQ(state.monitorDefaultButton, 3);
}

TEST(GpsMessage, OneByteACharacterThenCrLf) {
  EXPECT_EQ(gpsMessageBytes(kInitialGpsMessage), "$PASHS,NME,SAT,A,ON\r\n");
  EXPECT_EQ(gpsMessageBytes("$Gr\xC3\xBC\xC3\x9F"
                            "e,\xE2\x82\xAC"),
            "$Gr??e,?\r\n");
  EXPECT_EQ(gpsMessageBytes(""), "\r\n");
}

TEST(MonitorRows, BreakBehindCommasAndLoseNothing) {
  EXPECT_THAT(monitorRows("$GPGGA,1,2*33", 13, 2), ElementsAre("$GPGGA,1,2*33"));
  EXPECT_THAT(monitorRows("$GPGGA,12345,6,,,*33", 10, 2), ElementsAre("$GPGGA,", "12345,6,", ",,*33"));
  EXPECT_THAT(monitorRows("$ABCDEFGHIJKL", 5, 2), ElementsAre("$ABCD", "EFG", "HIJ", "KL"));
  EXPECT_THAT(monitorRows("12345,", 6, 2), ElementsAre("12345,"));
  EXPECT_THAT(monitorRows("", 5, 2), ElementsAre(""));
  EXPECT_THAT(monitorRows("abc", 0, 2), ElementsAre("a", "b", "c"));
}

std::vector<int> numbers(const MonitorBox& box) {
  return {box.left, box.top, box.width, box.height};
}

TEST(MonitorLayout, UnitsTimesScale) {
  const auto upright = layOutMonitor(240, 320, 20);
  EXPECT_THAT(numbers(upright.list), ElementsAre(2, 2, 236, 260));
  EXPECT_THAT(numbers(upright.edit), ElementsAre(2, 264, 236, 26));
  EXPECT_THAT(numbers(upright.buttons[0]), ElementsAre(2, 292, 76, 26));
  EXPECT_THAT(numbers(upright.buttons[1]), ElementsAre(2, 292, 76, 26));
  EXPECT_THAT(numbers(upright.buttons[3]), ElementsAre(162, 292, 76, 26));

  const auto lying = layOutMonitor(640, 480, 35);
  EXPECT_THAT(numbers(lying.list), ElementsAre(4, 4, 632, 356));
  EXPECT_THAT(numbers(lying.buttons[2]), ElementsAre(216, 424, 208, 52));
  EXPECT_EQ(lying.scale, 2.0);
}

TEST(MonitorLayout, FingersTakeTheirRoomFromTheList) {
  for (const auto& [width, height] :
       {std::pair{240, 320}, {320, 240}, {480, 640}, {800, 480}, {1200, 1000}}) {
    constexpr int kTouch = 50;
    const auto layout = layOutMonitor(width, height, kTouch);
    EXPECT_GE(layout.edit.height, kTouch);
    EXPECT_GE(layout.list.height, height / 2);
    EXPECT_LE(layout.list.top + layout.list.height, layout.edit.top);
    for (const auto& button : layout.buttons) {
      EXPECT_GE(button.height, kTouch);
      EXPECT_LE(layout.edit.top + layout.edit.height, button.top);
      EXPECT_LE(button.top + button.height, height);
      EXPECT_LE(button.left + button.width, width);
    }
  }
}

}  // namespace
}  // namespace kalmira
