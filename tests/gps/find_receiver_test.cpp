#include "gps/find_receiver.h"

#include <gmock/gmock.h>

#include "support/fake_clock.h"

namespace kalmira {
namespace {

using How = FindOutcome::How;

// A receiver set to one line, that sends `bytes` every second, or noise to whoever listens otherwise.
class Receiver final : public Port {
 public:
  Receiver(FakeClock& clock, LineSettings set, std::string bytes, std::string noise)
      : clock_(clock), set_(std::move(set)), bytes_(std::move(bytes)), noise_(std::move(noise)) {}

  std::vector<int> bauds;  // that were tried
  bool isOpen = false;
  std::optional<PortError> refusal;

  std::optional<PortError> open(const std::string& device, const LineSettings& line) override {
    EXPECT_EQ(device, "/dev/gps");
    EXPECT_FALSE(isOpen);
    if (refusal) return refusal;
    isOpen = true;
    bauds.push_back(line.baud.value_or(0));
    heard_ = line == set_ ? bytes_ : noise_;
    return std::nullopt;
  }
  // Byte by byte, as a slow line has it, once a second.
  ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) override {
    EXPECT_TRUE(isOpen);
    if (heard_.empty()) {
      clock_.pause(static_cast<std::uint32_t>(timeoutMs));
      return {};
    }
    if (at_ == heard_.size()) {
      at_ = 0;
      clock_.pause(static_cast<std::uint32_t>(timeoutMs));
      return {};
    }
    clock_.pause(1);
    buffer[0] = static_cast<std::uint8_t>(heard_[at_++]);
    return {.count = 1, .gone = false};
  }
  void purge() override {}
  unsigned modemStatus() override { return 0; }
  bool write(std::span<const std::uint8_t>, int) override { return true; }
  void close() override { isOpen = false; }

 private:
  FakeClock& clock_;
  LineSettings set_;
  std::string bytes_, noise_, heard_;
  std::size_t at_ = 0;
};

LineSettings lineAt(const ReceiverLine& line) {
  Settings settings;
  takeReceiverLine(line, settings);
  return gpsLine(settings);
}

class FindReceiver : public ::testing::Test {
 protected:
  FindOutcome find(Receiver& port) {
    return findReceiver(port, "/dev/gps", receiverTrials(settings), clock, stop,
                        [this](std::size_t trial) { lastTrial = trial; });
  }

  FakeClock clock;
  Settings settings;
  std::atomic<bool> stop{false};
  std::size_t lastTrial = 99;
};

TEST_F(FindReceiver, TriesWhatIsSetUpAndThenEveryRateMostLikelyFirst) {
  settings.gpsBaudIndex = 3;
  settings.gpsParityIndex = 2;
  const auto trials = receiverTrials(settings);
  ASSERT_EQ(trials.size(), 9U);
  EXPECT_EQ(trials[0], (ReceiverLine{.baudIndex = 3, .parityIndex = 2}));
  EXPECT_EQ(trials[1], (ReceiverLine{.baudIndex = 1}));
  EXPECT_EQ(receiverTrials(Settings{}).size(), 8U) << "none twice";
}

TEST_F(FindReceiver, FindsTheLineThroughTheNoiseOfTheOthers) {
  // The noise holds what looks nearly like sentences, but is none.
  Receiver port(clock, lineAt({.baudIndex = 5}), "CX,9*0A\r\n$GPGLL,1,2*53\r\n",
                "\x80$*\r\n$GPGLL,1,2*54\r\n\xFF");
  const auto outcome = find(port);
  EXPECT_EQ(outcome.how, How::found);
  EXPECT_EQ(outcome.line, (ReceiverLine{.baudIndex = 5}));
  EXPECT_EQ(outcome.sentence, "$GPGLL,1,2*53");
  EXPECT_THAT(port.bauds, ::testing::ElementsAre(4800, 9600, 38400, 115200));
  EXPECT_EQ(lastTrial, 3U);
  EXPECT_FALSE(port.isOpen);
}

TEST_F(FindReceiver, TellsSilenceFromNoiseAndRefusal) {
  const auto begin = clock.tick();
  Receiver silent(clock, lineAt({.baudIndex = 5}), "", "");
  EXPECT_EQ(find(silent).how, How::nothingHeard);
  EXPECT_EQ(silent.bauds.size(), 8U);
  EXPECT_EQ(clock.tick() - begin, 8 * kListenMs);

  Receiver noisy(clock, lineAt({.baudIndex = 5, .parityIndex = 1}), "$GPGLL,1,2*53\r\n", "xyz");
  EXPECT_EQ(find(noisy).how, How::notUnderstood);
  EXPECT_FALSE(noisy.isOpen);

  noisy.refusal = PortError{.kind = PortErrorKind::held, .text = "held by gpsd"};
  EXPECT_EQ(find(noisy).how, How::cannotOpen);
  EXPECT_EQ(find(noisy).problem, "held by gpsd");
  stop = true;
  EXPECT_EQ(find(silent).how, How::cancelled);
  EXPECT_FALSE(silent.isOpen);
}

TEST(ReceiverSentence, IsMoreThanARightChecksum) {
  const struct {
    const char* line;
    bool sentence;
  } cases[] = {{"$GPGLL,1,2*53", true},
               {"$GPGLL,1,2*54", false},
               {"$GPGLL,1,2*053", false},
               {"$GPGLL,1,2*5", false},
               {"GPGLL,1,2*53", false},
               {"$*00", false},
               {"$*", false},
               {"", false},
               {"$GPGL\x80,1,2*9F", false}};
  for (const auto& each : cases) EXPECT_EQ(isReceiverSentence(each.line), each.sentence) << each.line;
}

}  // namespace
}  // namespace kalmira
