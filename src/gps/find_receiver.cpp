#include "gps/find_receiver.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <optional>
#include <vector>

#include "gps/nmea.h"

namespace kalmira {
namespace {

constexpr int kReadMs = 100;
constexpr std::size_t kAddressCharacters = 5;  // "GPGGA"

enum class Heard { nothing, noise, sentence, stopped };
constexpr int kSevenBits = 0, kEightBits = 1;      // places in the list of data bits
constexpr int kNoParity = 0, kEven = 1, kOdd = 2;  // of parities
constexpr int kOneStopBit = 0, kTwoStopBits = 1;   // of stop bits
constexpr int kBaudRates = 8;
constexpr std::array kOtherFrames{std::array{kEightBits, kEven}, std::array{kEightBits, kOdd},
                                  std::array{kSevenBits, kNoParity}};

// Heard with eight data bits, the eighth bit of a line with seven is its parity or its first stop bit. Nothing when it
// is neither.
std::optional<ReceiverLine> sevenBitLine(ReceiverLine line, const std::vector<std::uint8_t>& bytes) {
  const auto all = [&bytes](auto holds) { return std::all_of(bytes.begin(), bytes.end(), holds); };
  line.dataBitsIndex = kSevenBits;
  line.stopBitsIndex = kOneStopBit;
  if (all([](std::uint8_t byte) { return std::popcount(byte) % 2 == 0; })) {
    line.parityIndex = kEven;
  } else if (all([](std::uint8_t byte) { return std::popcount(byte) % 2 == 1; })) {
    line.parityIndex = kOdd;
  } else if (all([](std::uint8_t byte) { return byte >= 0x80; })) {
    line.parityIndex = kNoParity;
    line.stopBitsIndex = kTwoStopBits;
  } else {
    return std::nullopt;
  }
  return line;
}

// One line setting's stream, read as it comes and without its eighth bits.
class Listener {
 public:
  explicit Listener(const ReceiverLine& line) : line_(line) {}
  // True when a sentence is complete.
  bool take(std::uint8_t byte) {
    if (plain_.feed(byte, 0) && isReceiverSentence(plain_.line().text)) {
      sentence = plain_.line().text;
      found = line_;
      return true;
    }
    if (line_.dataBitsIndex == kSevenBits) return false;
    const auto seven = static_cast<std::uint8_t>(byte & 0x7F);
    if (seven == '$') bytes_.clear();
    bytes_.push_back(byte);
    if (bytes_.size() > NmeaFramer::kLoggingLimit) bytes_.clear();
    if (!stripped_.feed(seven, 0) || !isReceiverSentence(stripped_.line().text)) return false;
    const auto line = sevenBitLine(line_, bytes_);
    if (!line) return false;
    sentence = stripped_.line().text;
    found = *line;
    return true;
  }
  std::string sentence;
  ReceiverLine found;

 private:
  ReceiverLine line_;
  NmeaFramer plain_{NmeaFramer::kLoggingLimit};
  NmeaFramer stripped_{NmeaFramer::kLoggingLimit};
  std::vector<std::uint8_t> bytes_;  // of the sentence that is coming
};

LineSettings lineOf(const ReceiverLine& line) {
  Settings settings;
  takeReceiverLine(line, settings);
  return gpsPortLine(settings);
}

Heard listen(Port& port, const Clock& clock, const std::atomic<bool>& stop, Listener& listener) {
  std::array<std::uint8_t, 256> bytes{};
  Heard heard = Heard::nothing;
  const std::uint32_t begin = clock.tick();
  while (clock.tick() - begin < kListenMs) {
    if (stop) return Heard::stopped;
    const auto result = port.read(bytes, kReadMs);
    if (result.count > 0) heard = Heard::noise;
    for (const auto byte : std::span(bytes).first(result.count)) {
      if (listener.take(byte)) return Heard::sentence;
    }
    if (result.gone) return heard;
  }
  return heard;
}

}  // namespace

ReceiverLine receiverLineOf(const Settings& settings) {
  return {.baudIndex = settings.gpsBaudIndex,
          .dataBitsIndex = settings.gpsDataBitsIndex,
          .parityIndex = settings.gpsParityIndex,
          .stopBitsIndex = settings.gpsStopBitsIndex};
}

void takeReceiverLine(const ReceiverLine& line, Settings& settings) {
  settings.gpsBaudIndex = line.baudIndex;
  settings.gpsDataBitsIndex = line.dataBitsIndex;
  settings.gpsParityIndex = line.parityIndex;
  settings.gpsStopBitsIndex = line.stopBitsIndex;
}

std::vector<ReceiverLine> receiverTrials(const Settings& settings) {
  std::vector<ReceiverLine> trials{receiverLineOf(settings)};
  const auto add = [&trials](const ReceiverLine& line) {
    if (line != trials.front()) trials.push_back(line);
  };
  // 9600 and 4800 are what receivers come with, 38400 and 115200 what they are set to; the rest is rare.
  constexpr std::array<int, kBaudRates> kLikelyFirst{1, 0, 3, 5, 4, 2, 6, 7};
  for (const int baudIndex : kLikelyFirst) add({.baudIndex = baudIndex});
  for (const int baudIndex : kLikelyFirst) {
    for (const auto& [dataBits, parity] : kOtherFrames) {
      add({.baudIndex = baudIndex, .dataBitsIndex = dataBits, .parityIndex = parity});
    }
  }
  return trials;
}

bool isReceiverSentence(std::string_view line) {
  const auto star = line.rfind('*');
  if (star == std::string_view::npos || star < 1 + kAddressCharacters || line.size() != star + 3) return false;
  const auto isHex = [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; };
  const auto isPrintable = [](char c) { return c >= ' ' && c <= '~'; };
  return isHex(line[star + 1]) && isHex(line[star + 2]) && std::all_of(line.begin(), line.end(), isPrintable) &&
         nmeaChecksumOk(line);
}

FindOutcome findReceiver(Port& port, const std::string& device, const std::vector<ReceiverLine>& trials,
                         const Clock& clock, const std::atomic<bool>& stop,
                         const std::function<void(std::size_t)>& onTrial) {
  using How = FindOutcome::How;
  bool noise = false;
  std::array<bool, kBaudRates> silent{};  // with the usual eight bits: then with any
  for (std::size_t i = 0; i < trials.size(); ++i) {
    if (stop) return {.how = How::cancelled};
    const bool usual = trials[i] == ReceiverLine{.baudIndex = trials[i].baudIndex};
    auto& isSilent = silent.at(static_cast<std::size_t>(trials[i].baudIndex) % kBaudRates);
    if (!usual && isSilent) continue;
    onTrial(i);
    if (const auto error = port.open(device, lineOf(trials[i]))) {
      if (i == 0) return {.how = How::cannotOpen, .problem = error->text};
      continue;  // it was open before: a rate that the device does not take
    }
    port.purge();
    Listener listener(trials[i]);
    const auto heard = listen(port, clock, stop, listener);
    port.close();
    if (heard == Heard::stopped) return {.how = How::cancelled};
    if (heard == Heard::sentence) return {.how = How::found, .line = listener.found, .sentence = listener.sentence};
    isSilent = usual && heard == Heard::nothing;
    noise = noise || heard == Heard::noise;
  }
  return {.how = noise ? How::notUnderstood : How::nothingHeard};
}

ReceiverSearch::ReceiverSearch(PortFactory factory, std::string device, std::vector<ReceiverLine> trials,
                               const Clock& clock)
    : factory_(std::move(factory)), device_(std::move(device)), trials_(std::move(trials)), clock_(clock) {
  worker_.start([this] {
    const auto port = factory_();
    auto outcome = findReceiver(*port, device_, trials_, clock_, worker_.stopping(),
                                [this](std::size_t trial) { trial_ = trial; });
    const auto held = worker_.lock();
    outcome_ = std::move(outcome);
  });
}

std::optional<FindOutcome> ReceiverSearch::outcome() {
  const auto held = worker_.lock();
  return outcome_;
}

}  // namespace kalmira
