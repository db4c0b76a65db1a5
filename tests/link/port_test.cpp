#include "link/port.h"

#include <gmock/gmock.h>

namespace kalmira {
namespace {

TEST(GpsLine, FollowsTheListsAndLeavesTheRestAsItIs) {
  using Parity::even, Parity::odd;
  struct Case {
    int dataBits, parity, stopBits;
    LineSettings line;  // without the rate
  };
  Settings settings;
  int index = -1;
  for (const std::optional<int> baud :
       {std::optional<int>(), {4800}, {9600}, {19200}, {38400}, {57600}, {115200}, {230400}, {460800}, {}}) {
    settings.gpsBaudIndex = index++;
    EXPECT_EQ(gpsPortLine(settings).baud, baud) << index;
  }
  for (const auto& item : {Case{1, 0, 0, {{}, 8, Parity::none, 1, true}}, Case{0, 1, 1, {{}, 7, even, 2, true}},
                           Case{1, 2, 0, {{}, 8, odd, 1, true}}, Case{2, 3, 2, {{}, {}, {}, {}, true}},
                           Case{-1, -1, -1, {{}, {}, {}, {}, true}}}) {
    settings.gpsDataBitsIndex = item.dataBits;
    settings.gpsParityIndex = item.parity;
    settings.gpsStopBitsIndex = item.stopBits;
    EXPECT_EQ(gpsPortLine(settings), item.line) << item.dataBits;
  }
}

TEST(MarkerPort, SkipsCom6AndIsPlacedByListPositions) {
  std::vector<int> numbers;
  for (int choice = -1; choice <= 12; ++choice) numbers.push_back(markerComNumber(choice));
  EXPECT_THAT(numbers, testing::ElementsAre(0, 0, 1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12, 0));
  struct Case {
    Kind kind;
    int choice, instrumentIndex;
    MarkerPlace place;
  };
  using enum MarkerPlace;
  for (const auto& item :
       {Case{Kind::tesk2, 0, 0, none}, Case{Kind::tesk2, 1, 0, instrumentPort}, Case{Kind::tesk2, 2, 0, ownPort},
        Case{Kind::tesk2, 6, 5, instrumentPort}, Case{Kind::tesk2, 6, 6, ownPort}, Case{Kind::orla, 2, 0, none}}) {
    Settings settings;
    settings.markerPortChoice = item.choice;
    settings.instrumentPortIndex = item.instrumentIndex;
    EXPECT_EQ(markerPlaceOf(item.kind, settings), item.place) << item.choice;
  }
}

}  // namespace
}  // namespace kalmira
