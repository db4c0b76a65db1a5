#include <gmock/gmock.h>

#include <chrono>
#include <semaphore>
#include <thread>

#include "logging/serial_session_ports.h"
#include "platform/power.h"
#include "support/fake_port.h"

namespace kalmira {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;

// The test's thread is the session's.
struct PortThreadsTest : testing::Test {
  FakeDevices devices;
  FakeDevice& instrument = devices["com1"];
  FakeDevice& gps = devices["com2"];
  FakeDevice& marker = devices["com7"];
  Settings settings;
  LinkState link;
  SystemClock clock{TickBase::program};
  std::counting_semaphore<> woken{0};
  HandOver handOver{[this] { woken.release(); }};
  std::vector<std::string> seen;
  std::function<void()> onRecord = [this] { seen.emplace_back(link.record()); };

  SerialSessionPorts makePorts(Kind kind) {
    return {
        kind,
        settings,
        [](int com) { return com == 12 ? std::string() : "com" + std::to_string(com); },
        link,
        handOver,
        clock,
        [this] { return std::make_unique<FakePort>(devices); },
        {.onRecord = [this] { onRecord(); }, .onSentence = [this](const GpsLine& line) { seen.push_back(line.text); }}};
  }
  bool handleOne() {
    if (!woken.try_acquire_for(std::chrono::seconds(10))) return false;
    handOver.run();
    return true;
  }
};

template <typename Action>
void expectPrompt(const Action& action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(200));
}

void waitUntil(const std::function<bool()>& happened) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!happened() && std::chrono::steady_clock::now() < end) std::this_thread::yield();
  EXPECT_TRUE(happened());
}

TEST_F(PortThreadsTest, ClosingIsPromptWhateverTheReadersDo) {
  settings.markerPortChoice = 6;
  std::atomic<int> reads{0};
  for (auto* device : {&instrument, &gps, &marker}) device->onRead = [&reads] { ++reads; };
  SerialSessionPorts ports = makePorts(Kind::tesk2);
  ASSERT_FALSE(ports.OpenInstrumentPort() || ports.OpenMarkerPort() || ports.OpenGpsPort());
  ports.startInstrumentReader();
  ports.startMarkerReader();
  ports.startGpsReader();
  waitUntil([&] { return reads >= 3; });
  expectPrompt([&] { ports.closeInstrumentPort(); });
  expectPrompt([&] { ports.closeMarkerPort(); });
  // A message waits and nobody looks.
  gps.send("$GPGGA,1\r\n");
  woken.acquire();
  expectPrompt([&] { ports.closeGpsPort(); });
  expectPrompt([&] { ports.closeGpsPort(); });
  handOver.run();
  EXPECT_TRUE(seen.empty());
  for (auto* device : {&instrument, &gps, &marker}) EXPECT_FALSE(device->isOpen);
}

TEST_F(PortThreadsTest, HandlingOfARecordMayCloseItsPortAndOpenItAgain) {
  SerialSessionPorts ports = makePorts(Kind::orla);
  ASSERT_FALSE(ports.OpenInstrumentPort());
  ports.startInstrumentReader();
  onRecord = [&] {
    seen.emplace_back(link.record());
    expectPrompt([&] { ports.closeInstrumentPort(); });
    EXPECT_FALSE(ports.OpenInstrumentPort());
    ports.startInstrumentReader();
  };
  for (const auto* record : {"T12345678901", "Tabcdefghijk"}) {
    instrument.send(record + std::string("\r"));
    ASSERT_TRUE(handleOne());
    EXPECT_EQ(seen.back(), record);
  }
}

TEST_F(PortThreadsTest, AVanishedInstrumentIsClosedAtOnceTriedWhenAskedAndReadOn) {
  SerialSessionPorts ports = makePorts(Kind::glaco);
  const auto gone = [&] { return ports.instrumentGone(); };
  ASSERT_FALSE(ports.OpenInstrumentPort());
  ports.startInstrumentReader();
  instrument.plug(false);
  waitUntil(gone);
  EXPECT_FALSE(instrument.locked(&FakeDevice::isOpen)) << "it would come back under another name";
  ports.reopenInstrumentPort();
  waitUntil([&] { return instrument.locked(&FakeDevice::opens) == 2; });
  EXPECT_TRUE(gone());
  instrument.plug(true);
  EXPECT_TRUE(gone());  // nobody has asked yet
  instrument.send("T123I045");
  ports.reopenInstrumentPort();
  ASSERT_TRUE(handleOne());
  EXPECT_FALSE(gone());
  EXPECT_THAT(seen, ElementsAre("T123I045"));
  instrument.plug(false);
  waitUntil(gone);
  expectPrompt([&] { ports.closeInstrumentPort(); });
}

TEST_F(PortThreadsTest, AVanishedReceiverComesBackByItself) {
  SerialSessionPorts ports = makePorts(Kind::orla);
  ASSERT_FALSE(ports.OpenGpsPort());
  ports.startGpsReader();
  gps.send("$GPGGA,1\r\n");
  ASSERT_TRUE(handleOne());
  gps.plug(false);
  waitUntil([&] { return !gps.locked(&FakeDevice::isOpen); });
  gps.plug(true);
  gps.send("$GPGGA,2\r\n");
  ASSERT_TRUE(handleOne());
  EXPECT_THAT(seen, ElementsAre("$GPGGA,1", "$GPGGA,2"));
}

TEST_F(PortThreadsTest, AReceiverIsTriedTenTimesTheOthersOnce) {
  SerialSessionPorts ports = makePorts(Kind::tesk2);
  settings.markerPortChoice = 6;
  gps.refusals = 9;
  EXPECT_FALSE(ports.OpenGpsPort());
  ports.closeGpsPort();
  gps.refusals = 10;
  instrument.refusals = marker.refusals = 1;
  std::vector<std::string> problems;
  const auto tell = [&](const std::optional<PortProblem>& problem) {
    problems.push_back(problem ? problem->message + ": " + problem->detail : "opened");
  };
  tell(ports.OpenGpsPort());
  tell(ports.OpenInstrumentPort());
  tell(ports.OpenMarkerPort());
  settings.instrumentPortIndex = 11;
  tell(ports.OpenInstrumentPort());
  EXPECT_THAT(problems, ElementsAre("Cannot open GPS port: refused", "Cannot open TESK2 port: refused",
                                    "Cannot open External Marker port: refused",
                                    "Cannot open TESK2 port: No device stands for COM12: plug one in or name one"));
  EXPECT_EQ(gps.opens, 20);
  EXPECT_EQ(gps.line, gpsPortLine(settings));
  EXPECT_EQ(marker.line, markerLine(Kind::tesk2));
}

TEST(KeepAwake, CallsAtOnceThenEveryPeriodAndEndsPromptly) {
  std::counting_semaphore<> calls{0};
  {
    const KeepAwakeThread thread([&] { calls.release(); }, milliseconds(1));
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(calls.try_acquire_for(std::chrono::seconds(10)));
  }
  std::optional<KeepAwakeThread> waiting;
  waiting.emplace([&] { calls.release(); }, std::chrono::hours(1));
  calls.acquire();
  expectPrompt([&] { waiting.reset(); });
}

}  // namespace
}  // namespace kalmira
