#include "gps/gps_readers.h"

#include <array>
#include <span>
#include <utility>

#include "instruments/framing.h"
#include "platform/text.h"

namespace kalmira {
namespace {

using What = MonitorRequest::What;

constexpr std::uint32_t kSettleMs = 2;  // for bytes on their way while the port is purged
// What the system does not take at once is held up by the receiver (XOFF). Short, for a closing port waits for it.
constexpr int kWriteMs = 150;
constexpr std::chrono::milliseconds kPausedSlice{kReadSliceMs};
constexpr std::size_t kBlockBytes = 512;

class MonitorReader {
 public:
  MonitorReader(const MonitorReaderContext& context, const NewsHandOver& handOver)
      : context_(context), hand_over_(handOver), last_line_tick_(context.clock.tick()) {}

  ReaderEnd run();

 private:
  bool carryOut(const MonitorRequest& request);
  bool sendMessage(const std::string& bytes);
  bool show(std::string text);
  bool show(std::span<const std::uint8_t> block);
  bool showSilence();
  ReaderEnd tellGone();

  const MonitorReaderContext& context_;
  const NewsHandOver& hand_over_;
  NmeaFramer framer_{NmeaFramer::kMonitorLimit};
  std::uint32_t last_line_tick_;
  bool paused_ = false;
};

ReaderEnd MonitorReader::run() {
  std::array<std::uint8_t, kBlockBytes> buffer{};
  while (!context_.stop) {
    const auto request = paused_ ? context_.requests.take(kPausedSlice) : context_.requests.take();
    if (request && !carryOut(*request)) break;
    if (request || paused_) continue;
    const ReadResult read = context_.port.read(buffer, kReadSliceMs);
    if (read.gone) return tellGone();
    const bool shown = read.count > 0 ? show(std::span(buffer).first(read.count)) : showSilence();
    if (!shown) break;
  }
  return ReaderEnd::stopped;
}

// False, as of all the others: the port is being closed.
bool MonitorReader::carryOut(const MonitorRequest& request) {
  // What has been purged is missing in the middle: no line may be made of its two ends.
  framer_ = NmeaFramer(NmeaFramer::kMonitorLimit);
  if (request.what == What::send) return sendMessage(request.bytes);
  context_.port.purge();
  paused_ = request.what == What::pause;
  return true;
}

bool MonitorReader::sendMessage(const std::string& bytes) {
  if (!std::exchange(paused_, false)) context_.clock.pause(kSettleMs);
  // The second takes what came in while the first was at work.
  for (int purged = 0; purged < 2; ++purged) {
    context_.port.purge();
    context_.clock.pause(kSettleMs);
  }
  const auto* first = reinterpret_cast<const std::uint8_t*>(bytes.data());
  if (context_.port.write({first, bytes.size()}, kWriteMs)) return true;
  return hand_over_({.kind = MonitorNews::Kind::notSent, .text = "Message not sent: the receiver takes none"});
}

bool MonitorReader::show(std::string text) {
  const bool shown = hand_over_({.kind = MonitorNews::Kind::line, .text = std::move(text)});
  last_line_tick_ = context_.clock.tick();
  return shown;
}

bool MonitorReader::show(std::span<const std::uint8_t> block) {
  const std::uint32_t tick = context_.clock.tick();
  for (const std::uint8_t byte : block) {
    if (framer_.feed(byte, tick) && !show(narrow(framer_.line().text))) return false;
  }
  return true;
}

bool MonitorReader::showSilence() {
  if (ticksSince(context_.clock.tick(), last_line_tick_) <= kNoDataMs) return true;
  return show(std::string(kNoData));
}

ReaderEnd MonitorReader::tellGone() {
  const NewsHandOver& tell = hand_over_;
  bool open = tell({.kind = MonitorNews::Kind::gone, .text = "Receiver unplugged: trying again every second"});
  for (int dropped = context_.requests.dropMessages(); open && dropped > 0; --dropped) {
    open = tell({.kind = MonitorNews::Kind::notSent, .text = "Message not sent: receiver unplugged"});
  }
  return ReaderEnd::gone;
}

}  // namespace

ReaderEnd GpsReaderThread(Port& port, const Clock& clock, const std::atomic<bool>& stop, const LineHandOver& handOver) {
  // What came before is of unknown age, and would get the tick of this moment.
  port.purge();
  NmeaFramer framer(NmeaFramer::kLoggingLimit);
  return readBlocks(port, stop, kReadSliceMs, [&](Bytes block) {
    const std::uint32_t tick = clock.tick();
    for (const std::uint8_t byte : block) {
      if (framer.feed(byte, tick) && !handOver(framer.line())) return false;
    }
    return true;
  });
}

void MonitorRequests::ask(MonitorRequest request) {
  {
    const std::scoped_lock lock(mutex_);
    waiting_.push_back(std::move(request));
  }
  asked_.notify_all();
}

std::optional<MonitorRequest> MonitorRequests::take(std::chrono::milliseconds wait) {
  std::unique_lock lock(mutex_);
  if (!asked_.wait_for(lock, wait, [this] { return !waiting_.empty(); })) return std::nullopt;
  MonitorRequest request = std::move(waiting_.front());
  waiting_.pop_front();
  return request;
}

int MonitorRequests::dropMessages() {
  const std::scoped_lock lock(mutex_);
  int dropped = 0;
  for (auto& request : waiting_) {
    if (request.what != What::send) continue;
    request = {.what = What::go};
    ++dropped;
  }
  return dropped;
}

void MonitorRequests::clear() {
  const std::scoped_lock lock(mutex_);
  waiting_.clear();
}

ReaderEnd GpsMonitorReaderThread(const MonitorReaderContext& context, const NewsHandOver& handOver, bool cameBack) {
  if (cameBack && !handOver({.kind = MonitorNews::Kind::back, .text = "Receiver is back"})) {
    return ReaderEnd::stopped;
  }
  return MonitorReader(context, handOver).run();
}

}  // namespace kalmira
