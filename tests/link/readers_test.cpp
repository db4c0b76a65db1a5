#include "link/readers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/scripted_port.h"

namespace kalmira {
namespace {

using testing::ElementsAre;

struct ReadersTest : testing::Test {
  FakeClock clock;
  std::atomic<bool> stop{false};
  ScriptedPort port{clock, stop};
  LinkState link;
  ReaderContext context{port, link, clock, stop};
  std::vector<std::string> handed;
  bool goOn = true;
  const RecordHandOver handOver = [this] {
    handed.emplace_back(link.record());
    EXPECT_EQ(link.recordText[static_cast<std::size_t>(link.recordLength)], '\0');
    EXPECT_EQ(link.recordCount, 0);
    return goOn;
  };

  void play(const std::string& stream) {
    stop = false;
    handed.clear();
    port.steps = {{.bytes = stream}};
  }
};

const std::string kTeskTail = std::string("345678901234") + "\xff\xff";

TEST_F(ReadersTest, GoodRecordsFillTheCountAndBadOnesUseItUp) {
  struct Case {
    std::string_view records;  // "g"ood and "b"ad
    int perReading;
    int countLeft;
    std::size_t handOvers;
  };
  const Case cases[] = {{"g", 1, 0, 1},   {"b", 1, 0, 0},     {"ggg", 3, 0, 1},   {"ggb", 3, 0, 0},
                        {"gbg", 3, 0, 1}, {"bbb", 3, 0, 0},   {"ggbgg", 3, 2, 0}, {"ggbggg", 3, 0, 1},
                        {"gg", 3, 2, 0},  {"gggggg", 2, 0, 3}};
  for (const Case& testCase : cases) {
    std::string stream;
    for (const char c : testCase.records) stream += c == 'g' ? "T12345678901\r" : "X12345678901\r";
    link.recordsPerReading = testCase.perReading;
    link.recordCount = 99;
    play(stream);
    InstrumentReaderAscii(context, Kind::vardo, handOver);
    EXPECT_EQ(handed.size(), testCase.handOvers) << testCase.records;
    EXPECT_EQ(link.recordCount, testCase.countLeft) << testCase.records;
  }
}

TEST_F(ReadersTest, GoodRecordIsNotedAndTheWatchSetBack) {
  link.missedTicks = 4;
  link.recordsPerReading = 5;
  port.steps = {{.bytes = "T12345678901\r", .silenceMs = 250}};
  InstrumentReaderAscii(context, Kind::teskdd, handOver);
  EXPECT_EQ(link.missedTicks, 0);
  EXPECT_EQ(link.lastRecordTick, 100250U);
  EXPECT_EQ(link.recordLength, 12);
  EXPECT_EQ(port.purges, 1);
}

TEST_F(ReadersTest, RefusedHandOverEndsTheReaderAtOnce) {
  goOn = false;
  port.steps = {{.bytes = "T12345678901\rT12345678901\r"}, {.bytes = "T12345678901\r"}};
  EXPECT_EQ(InstrumentReaderAscii(context, Kind::orla, handOver), ReaderEnd::stopped);
  EXPECT_EQ(handed.size(), 1U);
  EXPECT_EQ(port.steps.size(), 1U);
}

TEST_F(ReadersTest, VanishedDeviceEndsTheReader) {
  port.steps = {{.bytes = "T12345678901\r"}, {.gone = true}};
  EXPECT_EQ(InstrumentReaderAscii(context, Kind::orla, handOver), ReaderEnd::gone);
  EXPECT_EQ(handed.size(), 1U);
}

TEST_F(ReadersTest, WrongByteInAnIceRecordDropsAllThatHasArrived) {
  link.recordsPerReading = 2;
  port.steps = {{.bytes = "T12xT123I045T123I045"}, {.bytes = "T678I901"}};
  InstrumentReaderIce(context, handOver);
  EXPECT_THAT(handed, ElementsAre("T678I901"));  // the bad one took the first place
  EXPECT_EQ(port.purges, 2);
  EXPECT_EQ(link.recordLength, 8);
}

TEST_F(ReadersTest, PauseWithinAnIceRecordMayBeShort) {
  struct Case {
    std::uint32_t silenceMs;
    std::size_t handOvers;
    int purges;
  };
  // After the long pause the rest is a wrong byte of its own.
  for (const Case& testCase : {Case{1900, 1, 1}, Case{2000, 0, 3}}) {
    stop = false;
    handed.clear();
    port.purges = 0;
    port.steps = {{.bytes = "T12"}, {.bytes = "3I045", .silenceMs = testCase.silenceMs}};
    InstrumentReaderIce(context, handOver);
    EXPECT_EQ(handed.size(), testCase.handOvers) << testCase.silenceMs;
    EXPECT_EQ(port.purges, testCase.purges) << testCase.silenceMs;
  }
}

TEST_F(ReadersTest, Tesk2RecordsCarryTheMarkers) {
  struct Case {
    unsigned status;
    int keyPending;
    int modeByte;
    int expected;
    bool onInstrumentPort;
  };
  const Case cases[] = {{0, 0, 0x41, 0x41, true},
                        {kCtsOn, 0, 0x41, 0x51, true},
                        {kDsrOn, 2, 0x41, 0x59, true},
                        {kCtsOn, 1, 0x41, 0x49, false},
                        {kRlsdOn, 1, 250, 18, true}};  // wraps
  for (const Case& testCase : cases) {
    stop = false;
    handed.clear();
    link.markerLineState = 0;
    link.markerKeyPending = testCase.keyPending;
    port.steps = {{.bytes = std::string("T") + static_cast<char>(testCase.modeByte) + kTeskTail,
                   .status = testCase.status}};
    InstrumentReaderTesk2(context, testCase.onInstrumentPort, handOver);
    ASSERT_EQ(handed.size(), 1U);
    EXPECT_EQ(static_cast<unsigned char>(handed[0][1]), testCase.expected);
  }
}

TEST_F(ReadersTest, MarkerLineIsStoredWhenCtsChanges) {
  const int both = static_cast<int>(kDsrOn | kCtsOn);
  const int dsr = static_cast<int>(kDsrOn);
  std::vector<int> seen;  // at each read: what the step before left
  port.onRead = [&] { seen.push_back(link.markerLineState); };
  port.steps = {{.bytes = "x", .status = kDsrOn},
                {.bytes = "x", .status = kDsrOn | kCtsOn},
                {.bytes = "x", .status = kCtsOn},
                {.bytes = "x", .status = kDsrOn}};
  MarkerLineThread(context);
  EXPECT_THAT(seen, ElementsAre(0, 0, both, both, dsr));
}

TEST_F(ReadersTest, VanishedMarkerLineIsOff) {
  port.steps = {{.bytes = "x", .status = kCtsOn}, {.gone = true}};
  EXPECT_EQ(MarkerLineThread(context), ReaderEnd::gone);
  EXPECT_EQ(link.markerLineState, 0);
}

TEST_F(ReadersTest, ProbeKnowsTheTwoTeskStreams) {
  struct Case {
    std::string_view what;
    std::deque<LineStep> steps;
    bool known;
    int length;
    float periodMs;
    std::uint32_t atMostMs;
  };
  const Case cases[] = {
      {"7 bytes", {{.bytes = "56\rT123456\r", .silenceMs = 100}}, true, 7, 72.0F, 200},
      {"12 bytes, in two parts",
       {{.bytes = "T1234"}, {.bytes = "5678901\r", .silenceMs = 90}},
       true,
       12,
       91.0F,
       200},
      {"9 bytes", {{.bytes = "T12345678\r"}}, false, 7, 5.0F, 200},
      {"silence", {}, false, 7, 5.0F, 2010},
      {"no start letter for 2 s", {{.bytes = "123\r", .silenceMs = 1500}}, false, 7, 5.0F, 2010},
      {"start letter just in time", {{.bytes = "T123456\r", .silenceMs = 1999}}, true, 7, 72.0F, 2010},
      {"no end for 1 s", {{.bytes = "T123456"}, {.bytes = "\r", .silenceMs = 1000}}, false, 7, 5.0F, 1010},
      {"gone", {{.bytes = "T1"}, {.gone = true}}, false, 7, 5.0F, 10},
  };
  port.stopAtEnd = false;
  for (const Case& testCase : cases) {
    link.recordLength = 0;
    link.recordPeriodMs = 5.0F;
    port.steps = testCase.steps;
    const std::uint32_t start = clock.tick();
    EXPECT_EQ(ProbeTeskRecord(context), testCase.known) << testCase.what;
    EXPECT_EQ(link.recordLength, testCase.length) << testCase.what;
    EXPECT_EQ(link.recordPeriodMs, testCase.periodMs) << testCase.what;
    EXPECT_LE(clock.tick() - start, testCase.atMostMs) << testCase.what;
  }
}

}  // namespace
}  // namespace kalmira
