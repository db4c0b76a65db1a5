#include "gps/find_receiver.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "gps/nmea.h"

namespace kalmira {
namespace {

constexpr int kReadMs = 100;
constexpr std::size_t kAddressCharacters = 5;  // "GPGGA"

enum class Heard { nothing, noise, sentence, stopped };

LineSettings lineOf(const ReceiverLine& line) {
  Settings settings;
  takeReceiverLine(line, settings);
  return gpsPortLine(settings);
}

// `sentence` is what was heard.
Heard listen(Port& port, const Clock& clock, const std::atomic<bool>& stop, std::string& sentence) {
  NmeaFramer framer(NmeaFramer::kLoggingLimit);
  std::array<std::uint8_t, 256> bytes{};
  Heard heard = Heard::nothing;
  const std::uint32_t begin = clock.tick();
  while (clock.tick() - begin < kListenMs) {
    if (stop) return Heard::stopped;
    const auto result = port.read(bytes, kReadMs);
    if (result.count > 0) heard = Heard::noise;
    for (const auto byte : std::span(bytes).first(result.count)) {
      if (!framer.feed(byte, begin) || !isReceiverSentence(framer.line().text)) continue;
      sentence = framer.line().text;
      return Heard::sentence;
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
  // 9600 and 4800 are what receivers come with, 38400 and 115200 what they are set to; the rest is rare.
  for (const int baudIndex : {1, 0, 3, 5, 4, 2, 6, 7}) {
    const ReceiverLine line{.baudIndex = baudIndex};
    if (line != trials.front()) trials.push_back(line);
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
  for (std::size_t i = 0; i < trials.size(); ++i) {
    if (stop) return {.how = How::cancelled};
    onTrial(i);
    if (const auto error = port.open(device, lineOf(trials[i]))) {
      if (i == 0) return {.how = How::cannotOpen, .problem = error->text};
      continue;  // it was open before: a rate that the device does not take
    }
    port.purge();
    std::string sentence;
    const auto heard = listen(port, clock, stop, sentence);
    port.close();
    if (heard == Heard::stopped) return {.how = How::cancelled};
    if (heard == Heard::sentence) return {.how = How::found, .line = trials[i], .sentence = sentence};
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
