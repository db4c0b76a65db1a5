#include "gps/monitor.h"

#include <gmock/gmock.h>

namespace kalmira {
namespace {

using testing::ElementsAre;

TEST(MonitorKeys, LettersInBothCasesEnterAndTab) {
  // 0 Go, 1 Pause, 2 Send, 3 Exit
  const std::string_view keys("GgPpSsXx\re \x1b\0", 13);
  const int commands[] = {0, 0, 1, 1, 2, 2, 3, 3, 2, -1, -1, -1, -1};
  for (std::size_t i = 0; i < keys.size(); ++i) {
    MonitorState state{.monitorDefaultButton = 2};
    const auto found = typeMonitorKey(state, keys[i]);
    EXPECT_EQ(found ? static_cast<int>(*found) : -1, commands[i]) << i;
    EXPECT_EQ(state.monitorDefaultButton, 2);
  }
  // Tab skips the button that is not there.
  for (const auto& [streaming, order] : {std::pair{1, "1231"}, {0, "0230"}}) {
    MonitorState state{.monitorPaused = 1 - streaming, .monitorStreaming = streaming};
    state.monitorDefaultButton = order[0] - '0';
    for (int i = 1; i < 4; ++i) {
      EXPECT_FALSE(typeMonitorKey(state, '\t'));
      EXPECT_EQ(state.monitorDefaultButton, order[i] - '0') << order;
    }
  }
}

TEST(MonitorState, GoAndPauseTakeTurnsInOnePlace) {
  MonitorState state;
  const auto shown = [&state] {
    std::string out;
    for (int i = 0; i < kMonitorCommands; ++i) {
      const auto command = static_cast<MonitorCommand>(i);
      if (monitorButtonShown(state, command)) out += monitorButtonText(command);
    }
    return out;
  };
  EXPECT_EQ(shown(), "&Pause&SendE&xit");
  EXPECT_EQ(typeMonitorKey(state, '\r'), MonitorCommand::pause);
  showPaused(state);
  EXPECT_EQ(shown(), "&Go&SendE&xit");
  EXPECT_EQ(state.monitorPaused, 1);
  EXPECT_EQ(typeMonitorKey(state, '\r'), MonitorCommand::go);
  state.monitorDefaultButton = 3;
  showStreaming(state);
  EXPECT_EQ(shown(), "&Pause&SendE&xit");
  EXPECT_EQ(state.monitorPaused, 0);
  EXPECT_EQ(state.monitorDefaultButton, 3);
}

TEST(GpsMessage, IsOneByteACharacterAndRowsBreakBehindCommas) {
  EXPECT_EQ(gpsMessageBytes("$Gr\xC3\xBC\xC3\x9F,\xE2\x82\xAC"), "$Gr??,?\r\n");
  EXPECT_EQ(gpsMessageBytes(""), "\r\n");
  struct Row {
    std::string text;
    int width;
    std::vector<std::string_view> rows;
  };
  for (const auto& [text, width, rows] :
       std::initializer_list<Row>{{"$GPGGA,1,2*33", 13, {"$GPGGA,1,2*33"}},
                                  {"$GPGGA,12345,6,,,*33", 10, {"$GPGGA,", "12345,6,", ",,*33"}},
                                  {"$ABCDEFGHIJKL", 5, {"$ABCD", "EFG", "HIJ", "KL"}},
                                  {"12345,", 6, {"12345,"}},
                                  {"", 5, {""}},
                                  {"abc", 0, {"a", "b", "c"}}}) {
    EXPECT_EQ(monitorRows(text, static_cast<std::size_t>(width), 2), rows) << text;
  }
}

TEST(MonitorLayout, GivesFingersTheirRoomFromTheList) {
  const auto numbers = [](const MonitorBox& box) { return std::vector<int>{box.left, box.top, box.width, box.height}; };
  const auto upright = layOutMonitor(240, 320, 20);
  EXPECT_THAT(numbers(upright.list), ElementsAre(2, 2, 236, 260));
  EXPECT_THAT(numbers(upright.edit), ElementsAre(2, 264, 236, 26));
  EXPECT_THAT(numbers(upright.buttons[1]), ElementsAre(2, 292, 76, 26));
  EXPECT_THAT(numbers(upright.buttons[3]), ElementsAre(162, 292, 76, 26));
  const auto lying = layOutMonitor(640, 480, 35);
  EXPECT_THAT(numbers(lying.list), ElementsAre(4, 4, 632, 356));
  EXPECT_THAT(numbers(lying.buttons[2]), ElementsAre(216, 424, 208, 52));
  EXPECT_EQ(lying.scale, 2.0);
  for (const auto& [width, height] : {std::pair{240, 320}, {320, 240}, {800, 480}, {1200, 1000}}) {
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
