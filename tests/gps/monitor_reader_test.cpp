#include "gps/monitor_reader.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <thread>
#include <vector>

#include "support/fake_clock.h"

namespace kalmira {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using What = MonitorRequest::What;

// What one read brings. Of a time in between the whole passes.
struct Step {
  std::string bytes{};
  std::uint32_t afterMs = 0;
  bool gone = false;
};

// Plays the steps, then is silent and stops the reader. Notes what is done with it, and how many ms after the
// beginning.
class TracedPort final : public Port {
 public:
  TracedPort(FakeClock& clock, std::atomic<bool>& stop) : clock_(clock), stop_(stop), start_(clock.tick()) {}

  std::deque<Step> steps;
  std::vector<std::string> trace;
  bool takesBytes = true;

  std::optional<PortError> open(const std::string&, const LineSettings&) override { return std::nullopt; }
  ReadResult read(std::span<std::uint8_t> buffer, int) override {
    note("read");
    if (steps.empty()) {
      stop_ = true;
      return {};
    }
    const Step step = steps.front();
    steps.pop_front();
    clock_.advance(step.afterMs);
    std::copy(step.bytes.begin(), step.bytes.end(), buffer.begin());
    return {.count = step.bytes.size(), .gone = step.gone};
  }
  void purge() override { note("purge"); }
  unsigned modemStatus() override { return 0; }
  bool write(std::span<const std::uint8_t> bytes, int) override {
    note("write " + std::string(bytes.begin(), bytes.end()));
    return takesBytes;
  }
  void close() override {}

 private:
  void note(const std::string& what) {
    trace.push_back(fmt::format("{} {}", ticksSince(clock_.tick(), start_), what));
  }
  FakeClock& clock_;
  std::atomic<bool>& stop_;
  std::uint32_t start_;
};

struct MonitorReaderTest : testing::Test {
  FakeClock clock;
  std::atomic<bool> stop{false};
  TracedPort port{clock, stop};
  MonitorRequests requests;
  std::vector<std::string> shown;

  ReaderEnd run(bool cameBack = false) {
    stop = false;
    return GpsMonitorReaderThread(
        {.port = port, .clock = clock, .stop = stop, .requests = requests},
        [this](const MonitorNews& news) {
          shown.push_back(news.text);
          return true;
        },
        cameBack);
  }
};

const std::string kGga = "$GPGGA,101307,5230.1,N,01322.9,E,1,08,0.9,34.0,M,,,,*2F";

TEST_F(MonitorReaderTest, LinesComeOutHoweverTheStreamIsCut) {
  const std::string stream = "907,M*11\r\n" + kGga + "\r\n$NOSUM\r\n\r\n$A\xB0\x07Z*00\r\n$HALF";
  for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
    shown.clear();
    for (const auto& part : {stream.substr(0, cut), stream.substr(cut)}) {
      if (!part.empty()) port.steps.push_back({.bytes = part});
    }
    EXPECT_EQ(run(), ReaderEnd::stopped);
    EXPECT_THAT(shown, ElementsAre("907,M*11", kGga, "$NOSUM", "", "$A??Z*00")) << cut;
  }
}

TEST_F(MonitorReaderTest, ALineOfMoreThan181BytesBeginsAnew) {
  struct Row {
    std::size_t bytes;  // before CR
    std::string shown;
  };
  // The byte that finds more than 180 in the line, here the 182nd, is the first of what is left.
  for (const auto& [bytes, expected] :
       {Row{180, "$" + std::string(179, 'x')}, {181, ""}, {182, "x"}, {200, std::string(19, 'x')}}) {
    shown.clear();
    port.steps.push_back({.bytes = "$" + std::string(bytes - 1, 'x') + "\r\n"});
    run();
    EXPECT_THAT(shown, ElementsAre(expected)) << bytes;
  }
}

TEST_F(MonitorReaderTest, NoDataAfterMoreThanSevenSecondsAgainAndAgain) {
  port.steps = {{.afterMs = 7000},
                {.afterMs = 1},
                {.afterMs = 7000},
                {.afterMs = 1},
                {.bytes = "$A\r\n", .afterMs = 6999},
                {.bytes = "$", .afterMs = 7500},
                {.afterMs = 1}};
  run();
  EXPECT_THAT(shown, ElementsAre("NO DATA", "NO DATA", "$A", "NO DATA"));
  shown.clear();
  clock.set(0xFFFFFF00);
  port.steps = {{.afterMs = 7000}, {.afterMs = 1}};
  run();
  EXPECT_THAT(shown, ElementsAre("NO DATA"));
}

TEST_F(MonitorReaderTest, AMessageGoesOutBetweenPurgesAndBeforeAnyRead) {
  requests.ask({.what = What::send, .bytes = "$X\r\n"});
  run();
  EXPECT_THAT(port.trace, ElementsAre("2 purge", "4 purge", "6 write $X\r\n", "6 read"));
}

TEST_F(MonitorReaderTest, AMessageFromThePauseDoesNotWaitAgainButReadsOn) {
  requests.ask({.what = What::pause});
  requests.ask({.what = What::send, .bytes = "$X\r\n"});
  run();
  EXPECT_THAT(port.trace, ElementsAre("0 purge", "0 purge", "2 purge", "4 write $X\r\n", "4 read"));
  EXPECT_THAT(shown, IsEmpty());
}

TEST_F(MonitorReaderTest, PausedItReadsNothingUntilGo) {
  requests.ask({.what = What::pause});
  std::jthread stopper([this] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    stop = true;
  });
  EXPECT_EQ(run(), ReaderEnd::stopped);
  EXPECT_THAT(port.trace, ElementsAre("0 purge"));
  stopper.join();
  port.trace.clear();
  requests.ask({.what = What::pause});
  requests.ask({.what = What::go});
  run();
  EXPECT_THAT(port.trace, ElementsAre("0 purge", "0 purge", "0 read"));
}

TEST_F(MonitorReaderTest, ARefusedMessageIsTold) {
  port.takesBytes = false;
  requests.ask({.what = What::send, .bytes = "$X\r\n"});
  run();
  EXPECT_THAT(shown, ElementsAre("Message not sent: the receiver takes none"));
}

TEST_F(MonitorReaderTest, AGoneReceiverIsToldAndGetsNoMessageThatIsTooOld) {
  port.steps = {{.gone = true}};
  struct AskOnGone {
    MonitorRequests& requests;
    std::vector<std::string>& shown;
    bool operator()(const MonitorNews& news) const {
      shown.push_back(news.text);
      if (news.kind == MonitorNews::Kind::gone) {
        requests.ask({.what = What::pause});
        requests.ask({.what = What::send, .bytes = "$OLD\r\n"});
      }
      return true;
    }
  };
  const MonitorReaderContext context{.port = port, .clock = clock, .stop = stop, .requests = requests};
  EXPECT_EQ(GpsMonitorReaderThread(context, AskOnGone{requests, shown}, false), ReaderEnd::gone);
  EXPECT_THAT(shown, ElementsAre("Receiver unplugged: trying again every second",
                                 "Message not sent: receiver unplugged"));
  shown.clear();
  port.trace.clear();
  port.steps = {{.bytes = "$A\r\n"}};
  EXPECT_EQ(run(true), ReaderEnd::stopped);
  EXPECT_THAT(port.trace, ElementsAre("0 purge", "0 purge", "0 read", "0 read"));
  EXPECT_THAT(shown, ElementsAre("Receiver is back", "$A"));
}

TEST_F(MonitorReaderTest, EndsWhenItsLinesAreNoLongerTaken) {
  port.steps = {{.bytes = "$A\r\n$B\r\n"}, {.bytes = "$C\r\n"}};
  const MonitorReaderContext context{.port = port, .clock = clock, .stop = stop, .requests = requests};
  const auto refuse = [this](const MonitorNews& news) {
    shown.push_back(news.text);
    return false;
  };
  EXPECT_EQ(GpsMonitorReaderThread(context, refuse, false), ReaderEnd::stopped);
  EXPECT_THAT(shown, ElementsAre("$A"));
  EXPECT_EQ(port.steps.size(), 1U);
}

}  // namespace
}  // namespace kalmira
