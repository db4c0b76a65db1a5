#include <gmock/gmock.h>

#include <bit>

#include <thread>

#include "gps/find_receiver.h"
#include "gps/gps_readers.h"
#include "support/fake_port.h"

namespace kalmira {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using What = MonitorRequest::What;

struct GpsReaders : testing::Test {
  FakeClock clock;
  std::atomic<bool> stop{false};
  FakeDevice device{.clock = &clock, .stop = &stop};
  FakePort port{device};
};

TEST_F(GpsReaders, LinesComeWithTheTickOfTheirFirstByte) {
  std::vector<std::string> lines;
  device.steps = {{.bytes = "junk$GPG", .silenceMs = 30}, {.bytes = "GA,1*00\r\n$GPGSA,2\r\n", .silenceMs = 70}};
  GpsReaderThread(port, clock, stop, [&](const GpsLine& line) {
    lines.push_back(fmt::format("{} {}", line.tick, line.text));
    return true;
  });
  EXPECT_THAT(lines, ElementsAre("100030 $GPGGA,1*00", "100100 $GPGSA,2"));
  EXPECT_EQ(device.trace.at(0), "0 purge") << "what came before it was listened to is of unknown age";
}

struct MonitorReader : GpsReaders {
  MonitorRequests requests;
  std::vector<std::string> shown;
  std::function<bool(const MonitorNews&)> show = [this](const MonitorNews& news) {
    shown.push_back(news.text);
    return true;
  };
  ReaderEnd run(std::deque<LineStep> steps = {}, bool cameBack = false) {
    stop = false;
    shown.clear();
    {
      const std::scoped_lock lock(device.mutex);
      device.steps = std::move(steps);
      device.trace.clear();
    }
    return GpsMonitorReaderThread(
        {.port = port, .clock = clock, .stop = stop, .requests = requests},
        [this](const MonitorNews& news) { return show(news); }, cameBack);
  }
  void ask(What what, std::string bytes = "") { requests.ask({.what = what, .bytes = std::move(bytes)}); }
};

TEST_F(MonitorReader, LinesComeOutHoweverTheStreamIsCut) {
  const std::string gga = "$GPGGA,101307,5230.1,N,01322.9,E,1,08,0.9,34.0,M,,,,*2F";
  const std::string stream = "907,M*11\r\n" + gga + "\r\n$NOSUM\r\n\r\n$A\xB0\x07Z*00\r\n$HALF";
  for (std::size_t cut = 1; cut < stream.size(); ++cut) {
    EXPECT_EQ(run({{.bytes = stream.substr(0, cut)}, {.bytes = stream.substr(cut)}}), ReaderEnd::stopped);
    EXPECT_THAT(shown, ElementsAre("907,M*11", gga, "$NOSUM", "", "$A??Z*00")) << cut;
  }
  // The byte that finds more than 180 in the line, here the 182nd, is the first of what is left.
  using Row = std::pair<std::size_t, std::string>;  // bytes before CR
  for (const auto& [bytes, text] :
       {Row{180, "$" + std::string(179, 'x')}, Row{181, ""}, Row{182, "x"}, Row{200, std::string(19, 'x')}}) {
    run({{.bytes = "$" + std::string(bytes - 1, 'x') + "\r\n"}});
    EXPECT_THAT(shown, ElementsAre(text)) << bytes;
  }
}

TEST_F(MonitorReader, NoDataAfterMoreThanSevenSecondsAgainAndAgain) {
  for (const auto begin : {100000U, 0xFFFFFF00U}) {
    clock.set(begin);
    run({{.bytes = "$A\r\n", .silenceMs = 7000},
         {.bytes = "$B\r\n", .silenceMs = 7001},
         {.bytes = "$", .silenceMs = 14002},  // half a line
         {.bytes = "C\r\n", .silenceMs = 6999}});
    EXPECT_THAT(shown, ElementsAre("$A", "NO DATA", "$B", "NO DATA", "NO DATA", "$C"));
  }
}

TEST_F(MonitorReader, AMessageGoesOutBetweenPurgesAndBeforeAnyRead) {
  ask(What::send, "$X\r\n");
  run();
  EXPECT_THAT(device.trace, ElementsAre("2 purge", "4 purge", "6 write $X\r\n", "6 read"));
  // From the pause it does not wait again, but reads on.
  device.start = clock.tick();
  ask(What::pause);
  ask(What::send, "$X\r\n");
  run();
  EXPECT_THAT(device.trace, ElementsAre("0 purge", "0 purge", "2 purge", "4 write $X\r\n", "4 read"));
  EXPECT_THAT(shown, IsEmpty());
  device.takesBytes = false;
  ask(What::send, "$X\r\n");
  run();
  EXPECT_THAT(shown, ElementsAre("Message not sent: the receiver takes none"));
}

TEST_F(MonitorReader, PausedItReadsNothingUntilGo) {
  ask(What::pause);
  std::jthread later([this] {
    std::this_thread::sleep_for(std::chrono::milliseconds(2 * kReadSliceMs));  // one that is not paused reads
    ask(What::go);
  });
  run();
  EXPECT_THAT(device.trace, ElementsAre("0 purge", "0 purge", "0 read"));
}

TEST_F(MonitorReader, AGoneReceiverIsToldAndGetsNoMessageThatIsTooOld) {
  show = [this](const MonitorNews& news) {
    shown.push_back(news.text);
    if (news.kind == MonitorNews::Kind::gone) {
      ask(What::pause);
      ask(What::send, "$OLD\r\n");
    }
    return news.text != "$A";  // and then nothing more is taken
  };
  EXPECT_EQ(run({{.gone = true}}), ReaderEnd::gone);
  EXPECT_THAT(shown,
              ElementsAre("Receiver unplugged: trying again every second", "Message not sent: receiver unplugged"));
  EXPECT_EQ(run({{.bytes = "$A\r\n$B\r\n"}, {.bytes = "$C\r\n"}}, true), ReaderEnd::stopped);
  EXPECT_THAT(device.trace, ElementsAre("0 purge", "0 purge", "0 read"));
  EXPECT_THAT(shown, ElementsAre("Receiver is back", "$A"));
}

struct FindReceiver : GpsReaders {
  Settings settings;
  std::vector<std::size_t> bauds;  // that were tried
  std::size_t lastTrial = 99;

  // A receiver set to one line, that sends `bytes`, or noise to whoever listens otherwise.
  FindOutcome find(const ReceiverLine& set, const std::string& bytes, const std::string& noise) {
    Settings right;
    takeReceiverLine(set, right);
    device.stop = nullptr;
    device.onOpen = [&](const LineSettings& line) {
      bauds.push_back(static_cast<std::size_t>(line.baud.value_or(0)));
      const auto& heard = line == gpsPortLine(right) ? bytes : noise;
      device.steps.clear();
      // Byte by byte, as a slow line has it.
      for (const char byte : heard + heard) device.steps.push_back({.bytes = {byte}, .silenceMs = 1});
    };
    return findReceiver(port, "/dev/gps", receiverTrials(settings), clock, stop,
                        [this](std::size_t trial) { lastTrial = trial; });
  }
};
using How = FindOutcome::How;

TEST_F(FindReceiver, FindsTheLineThroughTheNoiseOfTheOthersAndTellsWhatItHeardElse) {
  const ReceiverLine line{.baudIndex = 5};
  // The noise holds what looks nearly like sentences, but is none.
  const auto found = find(line, "CX,9*0A\r\n$GPGLL,1,2*53\r\n", "\x80$*\r\n$GPGLL,1,2*54\r\n\xFF");
  EXPECT_EQ(found.how, How::found);
  EXPECT_EQ(found.line, line);
  EXPECT_EQ(found.sentence, "$GPGLL,1,2*53");
  EXPECT_THAT(bauds, ElementsAre(4800, 9600, 38400, 115200));
  EXPECT_EQ(lastTrial, 3U);
  EXPECT_FALSE(device.isOpen);

  const auto begin = clock.tick();
  bauds.clear();
  EXPECT_EQ(find(line, "", "").how, How::nothingHeard);
  EXPECT_EQ(bauds.size(), 8U);
  EXPECT_EQ(clock.tick() - begin, 8 * kListenMs);
  EXPECT_EQ(find({.baudIndex = 5, .parityIndex = 1, .stopBitsIndex = 1}, "$GPGLL,1,2*53\r\n", "xyz").how,
            How::notUnderstood);
  // All 8-bit frames that are told from noise by listening with them.
  EXPECT_EQ(find({.baudIndex = 1, .parityIndex = 2}, "$GPGLL,1,2*53\r\n", "xyz").line,
            (ReceiverLine{.baudIndex = 1, .parityIndex = 2}));
  device.refusals = 1;
  const auto refused = find(line, "", "");
  EXPECT_EQ(refused.how, How::cannotOpen);
  EXPECT_EQ(refused.problem, "refused");
  stop = true;
  EXPECT_EQ(find(line, "", "").how, How::cancelled);
  EXPECT_FALSE(device.isOpen);
}

// With seven data bits the eighth that is heard is the parity, or the first of two stop bits.
TEST_F(FindReceiver, TellsSevenBitsAndTheirParityByListeningWithEight) {
  enum { even, odd, stopBit };
  for (const auto& [eighth, line] :
       {std::pair{even, ReceiverLine{.baudIndex = 1, .dataBitsIndex = 0, .parityIndex = 1}},
        {odd, {.baudIndex = 1, .dataBitsIndex = 0, .parityIndex = 2}},
        {stopBit, {.baudIndex = 1, .dataBitsIndex = 0, .parityIndex = 0, .stopBitsIndex = 1}}}) {
    std::string heard = "xx$GPGLL,1,2*53\r\n";
    for (char& byte : heard) {
      const bool ones = std::popcount(static_cast<unsigned char>(byte)) % 2 == 1;
      if (eighth == stopBit || ones == (eighth == even)) byte = static_cast<char>(byte | 0x80);
    }
    const auto found = find(line, "", heard);
    EXPECT_EQ(found.how, How::found);
    EXPECT_EQ(found.line.dataBitsIndex, 0);
    EXPECT_EQ(found.line.parityIndex, line.parityIndex);
    EXPECT_EQ(found.line.stopBitsIndex, line.stopBitsIndex);
    EXPECT_EQ(found.sentence, "$GPGLL,1,2*53");
  }
}

}  // namespace
}  // namespace kalmira
