#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <semaphore>
#include <string>
#include <thread>

#include "link/keep_awake.h"
#include "logging/serial_session_ports.h"

namespace kalmira {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;

// A device at the other end of a cable that tests can pull.
struct Device {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<char> bytes;
  bool plugged = true;
  int refusals = 0;  // opens that fail before one succeeds
  int opens = 0;     // tried
  LineSettings line;

  void send(std::string_view text) {
    const std::scoped_lock lock(mutex);
    bytes.insert(bytes.end(), text.begin(), text.end());
    changed.notify_all();
  }
  void plug(bool in) {
    const std::scoped_lock lock(mutex);
    plugged = in;
    changed.notify_all();
  }
  int openCount() {
    const std::scoped_lock lock(mutex);
    return opens;
  }
};

using Devices = std::map<std::string, Device>;

class FakePort final : public Port {
 public:
  explicit FakePort(Devices& devices) : devices_(devices) {}

  std::optional<PortError> open(const std::string& name, const LineSettings& line) override {
    device_ = &devices_.at(name);
    const std::scoped_lock lock(device_->mutex);
    ++device_->opens;
    device_->line = line;
    if (!device_->plugged) return PortError{PortErrorKind::missing, "not plugged"};
    if (device_->refusals > 0) {
      --device_->refusals;
      return PortError{PortErrorKind::held, "refused"};
    }
    return std::nullopt;
  }
  ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) override {
    std::unique_lock lock(device_->mutex);
    device_->changed.wait_for(lock, milliseconds(timeoutMs),
                              [this] { return !device_->bytes.empty() || !device_->plugged; });
    if (!device_->plugged) return {.count = 0, .gone = true};
    std::size_t count = 0;
    for (; count < buffer.size() && !device_->bytes.empty(); ++count) {
      buffer[count] = static_cast<std::uint8_t>(device_->bytes.front());
      device_->bytes.pop_front();
    }
    return {.count = count, .gone = false};
  }
  void purge() override {}
  unsigned modemStatus() override { return 0; }
  bool write(std::span<const std::uint8_t>, int) override { return true; }
  void close() override {}

 private:
  Devices& devices_;
  Device* device_ = nullptr;
};

// The test's thread is the session's.
struct PortThreadsTest : testing::Test {
  Devices devices;
  Device& instrument = devices["com1"];
  Device& gps = devices["com2"];
  Device& marker = devices["com7"];
  Settings settings;
  LinkState link;
  SystemClock clock{TickBase::program};
  std::counting_semaphore<> woken{0};
  HandOver handOver{[this] { woken.release(); }};
  std::vector<std::string> seen;
  std::function<void()> onRecord = [this] { seen.emplace_back(link.record()); };

  SerialSessionPorts makePorts(Kind kind) {
    return {kind,
            settings,
            [](int com) { return com == 12 ? std::string() : "com" + std::to_string(com); },
            link,
            handOver,
            clock,
            [this] { return std::make_unique<FakePort>(devices); },
            {.onRecord = [this] { onRecord(); },
             .onGpsLine = [this](const GpsLine& line) { seen.push_back(line.text); }}};
  }
  bool handleOne() {
    if (!woken.try_acquire_for(std::chrono::seconds(10))) return false;
    handOver.run();
    return true;
  }
};

template <typename Action>
milliseconds timeOf(const Action& action) {
  const auto start = steady_clock::now();
  action();
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
}
constexpr milliseconds kClosingLimit{200};

TEST_F(PortThreadsTest, ClosingIsPromptWhileReadersWaitForBytes) {
  settings.markerPortChoice = 6;
  SerialSessionPorts ports = makePorts(Kind::tesk2);
  ASSERT_FALSE(ports.OpenInstrumentPort());
  ASSERT_FALSE(ports.OpenMarkerPort());
  ASSERT_FALSE(ports.OpenGpsPort());
  ports.startInstrumentReader();
  ports.startMarkerReader();
  ports.startGpsReader();
  std::this_thread::sleep_for(milliseconds(30));
  EXPECT_LT(timeOf([&] { ports.closeInstrumentPort(); }), kClosingLimit);
  EXPECT_LT(timeOf([&] { ports.closeMarkerPort(); }), kClosingLimit);
  EXPECT_LT(timeOf([&] { ports.closeGpsPort(); }), kClosingLimit);
  EXPECT_LT(timeOf([&] { ports.closeGpsPort(); }), kClosingLimit);
}

TEST_F(PortThreadsTest, ClosingIsPromptWhileAMessageWaitsAndNobodyLooks) {
  SerialSessionPorts ports = makePorts(Kind::orla);
  ASSERT_FALSE(ports.OpenInstrumentPort());
  ports.startInstrumentReader();
  instrument.send("T12345678901\r");
  woken.acquire();
  EXPECT_LT(timeOf([&] { ports.closeInstrumentPort(); }), kClosingLimit);
  handOver.run();
  EXPECT_TRUE(seen.empty());
}

TEST_F(PortThreadsTest, HandlingOfARecordMayCloseItsPortAndOpenItAgain) {
  SerialSessionPorts ports = makePorts(Kind::orla);
  ASSERT_FALSE(ports.OpenInstrumentPort());
  ports.startInstrumentReader();
  onRecord = [&] {
    seen.emplace_back(link.record());
    if (seen.size() > 1) return;
    EXPECT_LT(timeOf([&] { ports.closeInstrumentPort(); }), kClosingLimit);
    EXPECT_FALSE(ports.OpenInstrumentPort());
    ports.startInstrumentReader();
  };
  instrument.send("T12345678901\r");
  ASSERT_TRUE(handleOne());
  instrument.send("Tabcdefghijk\r");
  ASSERT_TRUE(handleOne());
  EXPECT_THAT(seen, ElementsAre("T12345678901", "Tabcdefghijk"));
}

TEST_F(PortThreadsTest, VanishedInstrumentIsTriedWhenAskedAndReadOn) {
  SerialSessionPorts ports = makePorts(Kind::glaco);
  ASSERT_FALSE(ports.OpenInstrumentPort());
  ports.startInstrumentReader();
  instrument.plug(false);
  while (!ports.instrumentGone()) std::this_thread::yield();
  ports.reopenInstrumentPort();
  while (instrument.openCount() < 2) std::this_thread::yield();
  EXPECT_TRUE(ports.instrumentGone());
  instrument.plug(true);
  EXPECT_TRUE(ports.instrumentGone());  // nobody has asked yet
  ports.reopenInstrumentPort();
  instrument.send("T123I045");
  ASSERT_TRUE(handleOne());
  EXPECT_FALSE(ports.instrumentGone());
  EXPECT_THAT(seen, ElementsAre("T123I045"));
  instrument.plug(false);
  while (!ports.instrumentGone()) std::this_thread::yield();
  EXPECT_LT(timeOf([&] { ports.closeInstrumentPort(); }), kClosingLimit);
}

TEST_F(PortThreadsTest, VanishedReceiverComesBackByItself) {
  SerialSessionPorts ports = makePorts(Kind::orla);
  ASSERT_FALSE(ports.OpenGpsPort());
  ports.startGpsReader();
  gps.send("$GPGGA,1\r\n");
  ASSERT_TRUE(handleOne());
  gps.plug(false);
  std::this_thread::sleep_for(milliseconds(50));
  gps.plug(true);
  gps.send("$GPGGA,2\r\n");
  ASSERT_TRUE(handleOne());
  EXPECT_THAT(seen, ElementsAre("$GPGGA,1", "$GPGGA,2"));
}

TEST_F(PortThreadsTest, ReceiverIsTriedTenTimesTheOthersOnce) {
  SerialSessionPorts ports = makePorts(Kind::tesk2);
  settings.markerPortChoice = 6;
  gps.refusals = 9;
  EXPECT_FALSE(ports.OpenGpsPort());
  EXPECT_EQ(gps.line, gpsLine(settings));
  ports.closeGpsPort();
  gps.refusals = 10;
  const auto gpsProblem = ports.OpenGpsPort();
  EXPECT_EQ(gps.opens, 20);
  instrument.refusals = marker.refusals = 1;
  const auto instrumentProblem = ports.OpenInstrumentPort();
  const auto markerProblem = ports.OpenMarkerPort();
  ASSERT_TRUE(gpsProblem && instrumentProblem && markerProblem);
  EXPECT_EQ(gpsProblem->message, "Cannot open GPS port");
  EXPECT_EQ(instrumentProblem->message, "Cannot open TESK2 port");
  EXPECT_EQ(markerProblem->message, "Cannot open External Marker port");
  EXPECT_EQ(markerProblem->detail, "refused");
  EXPECT_EQ(marker.opens, 1);
  EXPECT_EQ(marker.line, markerLine(Kind::tesk2));
  settings.instrumentPortIndex = 11;
  const auto unassigned = ports.OpenInstrumentPort();
  ASSERT_TRUE(unassigned);
  EXPECT_EQ(unassigned->detail, "No device stands for COM12: plug one in or name one");
}

TEST(KeepAwake, CallsAtOnceThenEveryPeriodAndEndsPromptly) {
  std::counting_semaphore<> calls{0};
  {
    const KeepAwakeThread thread([&] { calls.release(); }, milliseconds(5));
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(calls.try_acquire_for(std::chrono::seconds(10)));
  }
  std::optional<KeepAwakeThread> waiting;
  waiting.emplace([&] { calls.release(); }, std::chrono::hours(1));
  calls.acquire();
  EXPECT_LT(timeOf([&] { waiting.reset(); }), kClosingLimit);
}

}  // namespace
}  // namespace kalmira
