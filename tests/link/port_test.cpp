#include "link/port.h"

#include <gtest/gtest.h>

#include "link/device_claim.h"

namespace kalmira {
namespace {

TEST(InstrumentLine, OnlyTesk2RunsFaster) {
  for (int index = 0; index < kKindCount; ++index) {
    const Kind kind = static_cast<Kind>(index);
    const LineSettings expected{.baud = kind == Kind::tesk2 ? 19200 : 9600,
                                .dataBits = 8,
                                .parity = Parity::none,
                                .stopBits = 1,
                                .xonXoff = false,
                                .dsrOutputFlow = false,
                                .dtr = true,
                                .rts = false};
    EXPECT_EQ(instrumentLine(kind), expected) << index;
    LineSettings marker = expected;
    marker.dsrOutputFlow = true;
    EXPECT_EQ(markerLine(kind), marker) << index;
  }
}

TEST(GpsLine, FollowsTheListsAndLeavesTheRestAsItIs) {
  struct Case {
    int baud, dataBits, parity, stopBits;
    LineSettings line;
  };
  const Case cases[] = {
      {0, 1, 0, 0, {4800, 8, Parity::none, 1}},
      {1, 0, 1, 1, {9600, 7, Parity::even, 2}},
      {2, 1, 2, 0, {19200, 8, Parity::odd, 1}},
      {3, 1, 0, 0, {38400, 8, Parity::none, 1}},
      {4, 1, 0, 0, {57600, 8, Parity::none, 1}},
      {5, 1, 0, 0, {115200, 8, Parity::none, 1}},
      {6, 1, 0, 0, {230400, 8, Parity::none, 1}},
      {7, 1, 0, 0, {460800, 8, Parity::none, 1}},
      {8, 2, 3, 2, {{}, {}, {}, {}}},
      {-1, -1, -1, -1, {{}, {}, {}, {}}},
  };
  for (const Case& testCase : cases) {
    Settings settings;
    settings.gpsBaudIndex = testCase.baud;
    settings.gpsDataBitsIndex = testCase.dataBits;
    settings.gpsParityIndex = testCase.parity;
    settings.gpsStopBitsIndex = testCase.stopBits;
    LineSettings expected = testCase.line;
    expected.xonXoff = true;
    EXPECT_EQ(gpsLine(settings), expected) << testCase.baud;
  }
}

TEST(MarkerPort, SkipsCom6) {
  const int numbers[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12};
  for (int choice = 0; choice < 12; ++choice) EXPECT_EQ(markerComNumber(choice), numbers[choice]);
  EXPECT_EQ(markerComNumber(-1), 0);
  EXPECT_EQ(markerComNumber(12), 0);
  EXPECT_EQ(comName(12), "COM12:");
}

TEST(MarkerPort, PlaceComparesListPositions) {
  struct Case {
    Kind kind;
    int choice, instrumentIndex;
    MarkerPlace place;
  };
  const Case cases[] = {
      {Kind::tesk2, 0, 0, MarkerPlace::none},    {Kind::tesk2, 1, 0, MarkerPlace::instrumentPort},
      {Kind::tesk2, 2, 0, MarkerPlace::ownPort}, {Kind::tesk2, 6, 5, MarkerPlace::instrumentPort},
      {Kind::tesk2, 6, 6, MarkerPlace::ownPort}, {Kind::orla, 2, 0, MarkerPlace::none},
  };
  for (const Case& testCase : cases) {
    Settings settings;
    settings.markerPortChoice = testCase.choice;
    settings.instrumentPortIndex = testCase.instrumentIndex;
    EXPECT_EQ(markerPlace(testCase.kind, settings), testCase.place) << testCase.choice;
  }
}

TEST(PortErrors, SayWhyAndWhatHelps) {
  EXPECT_EQ(deniedText("/dev/ttyUSB0", "root", "dialout"),
            "No permission: /dev/ttyUSB0 is for members of the group dialout: "
            "run \"sudo usermod -a -G dialout $USER\" and log in again");
  EXPECT_EQ(deniedText("/dev/ttyS0", "root", ""), "No permission: only root may use /dev/ttyS0");
  EXPECT_EQ(heldText("/dev/ttyS0", "logger", 41),
            "/dev/ttyS0 is held by logger (process 41): end that program");
  EXPECT_EQ(heldText("/dev/ttyS0", "", 0), "/dev/ttyS0 is held by another program: end that program");
}

}  // namespace
}  // namespace kalmira
