#include "link/readers.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

namespace kalmira {
namespace {

constexpr std::size_t kBlockBytes = 512;
using Block = std::array<std::uint8_t, kBlockBytes>;
using Result = FrameStep::Result;

void beginReading(const ReaderContext& context, int recordLength) {
  context.port.purge();
  context.link.recordLength = recordLength;
  context.link.recordCount = 0;
}

void countBadRecord(LinkState& link) {
  if (++link.recordCount >= link.recordsPerReading) link.recordCount = 0;
}

void storeRecord(LinkState& link, std::string_view record) {
  std::memcpy(link.recordText.data(), record.data(), record.size());
  link.recordText[record.size()] = '\0';
}

// Raises the second byte: 16 for the marker line, 8 for the marker key. The decoder finds them there.
void addMarkerBits(LinkState& link) {
  unsigned mode = static_cast<std::uint8_t>(link.recordText[1]);
  if (link.markerLineState > 0) mode += 16;
  if (link.markerKeyPending > 0) mode += 8;
  link.recordText[1] = static_cast<char>(static_cast<std::uint8_t>(mode));
}

// For the record just stored. False when the link is being closed.
bool countGoodRecord(const ReaderContext& context, const RecordHandOver& handOver) {
  LinkState& link = context.link;
  link.lastRecordTick = context.clock.tick();
  link.missedTicks = 0;
  if (++link.recordCount < link.recordsPerReading) return true;
  link.recordCount = 0;
  return handOver();
}

bool takeGoodRecord(const ReaderContext& context, std::string_view record, const RecordHandOver& handOver) {
  storeRecord(context.link, record);
  return countGoodRecord(context, handOver);
}

// Feeds all of `block`. False when the link is being closed.
template <typename Framer, typename OnGood>
bool feedBlock(Framer& framer, Bytes block, LinkState& link, const OnGood& onGood) {
  link.recordOf = link.recording;
  while (!block.empty()) {
    const FrameStep step = framer.feed(block);
    block = block.subspan(step.used);
    if (step.result == Result::bad) countBadRecord(link);
    if (step.result == Result::good && !onGood(framer.record())) return false;
  }
  return true;
}

// Truncated to 1 or more; what is no number gives 1.
int atLeastOne(double value) {
  if (!(value >= 1.0)) return 1;
  return value >= std::numeric_limits<int>::max() ? std::numeric_limits<int>::max() : static_cast<int>(value);
}

}  // namespace

ReaderEnd readBlocks(Port& port, const std::atomic<bool>& stop, int sliceMs,
                     const std::function<bool(Bytes)>& onBlock) {
  Block buffer;
  while (!stop) {
    const ReadResult read = port.read(buffer, sliceMs);
    if (read.gone) return ReaderEnd::gone;
    if (!onBlock(Bytes(buffer).first(read.count))) break;
  }
  return ReaderEnd::stopped;
}

ReaderEnd InstrumentReaderAscii(const ReaderContext& context, Kind kind, const RecordHandOver& handOver) {
  const auto& instrument = instrumentOf(kind);
  beginReading(context, instrument.asksRecordLength ? context.link.recordLength : instrument.instrumentLength);
  AsciiFramer framer(context.link.recordLength);
  return readBlocks(context.port, context.stop, kReadSliceMs, [&](Bytes block) {
    return feedBlock(framer, block, context.link,
                     [&](std::string_view record) { return takeGoodRecord(context, record, handOver); });
  });
}

ReaderEnd InstrumentReaderIce(const ReaderContext& context, const RecordHandOver& handOver) {
  beginReading(context, static_cast<int>(IceFramer::kRecordLength));
  IceFramer framer;
  std::uint32_t lastByteTick = context.clock.tick();
  const auto badRecord = [&] {
    countBadRecord(context.link);
    context.port.purge();
    framer.reset();
  };
  const auto feed = [&](Bytes block) {
    context.link.recordOf = context.link.recording;
    while (!block.empty()) {
      const FrameStep step = framer.feed(block);
      block = block.subspan(step.used);
      if (step.result == Result::bad) {
        // The rest of the block has been received too: it goes with what the port still holds.
        badRecord();
        return true;
      }
      if (step.result == Result::good && !takeGoodRecord(context, framer.record(), handOver)) return false;
    }
    return true;
  };
  return readBlocks(context.port, context.stop, kReadSliceMs, [&](Bytes block) {
    const std::uint32_t now = context.clock.tick();
    if (!block.empty()) {
      lastByteTick = now;
    } else if (framer.inRecord() && ticksSince(now, lastByteTick) >= kReadTimeoutMs) {
      badRecord();
    }
    return feed(block);
  });
}

ReaderEnd InstrumentReaderTesk2(const ReaderContext& context, bool markerOnInstrumentPort,
                                const RecordHandOver& handOver) {
  beginReading(context, static_cast<int>(Tesk2Framer::kRecordLength));
  Tesk2Framer framer;
  const auto onGood = [&](std::string_view record) {
    storeRecord(context.link, record);
    addMarkerBits(context.link);
    return countGoodRecord(context, handOver);
  };
  return readBlocks(context.port, context.stop, kReadSliceMs, [&](Bytes block) {
    // Taken after the wait, so that the record which has just come gets the marker of this moment.
    if (markerOnInstrumentPort) context.link.markerLineState = static_cast<int>(context.port.modemStatus());
    return feedBlock(framer, block, context.link, onGood);
  });
}

ReaderEnd MarkerLineThread(const ReaderContext& context) {
  unsigned lastCts = context.port.modemStatus() & kCtsOn;
  // No call waits for a change of a modem line on every system and can be ended from outside as well, so the line is
  // looked at often. Reading does the waiting: it notices when the device goes.
  const ReaderEnd end = readBlocks(context.port, context.stop, kMarkerPollMs, [&](Bytes) {
    const unsigned status = context.port.modemStatus();
    if ((status & kCtsOn) != lastCts) context.link.markerLineState = static_cast<int>(status);
    lastCts = status & kCtsOn;
    return true;
  });
  if (end == ReaderEnd::gone) context.link.markerLineState = 0;
  return end;
}

namespace {

// The port byte after byte until a deadline.
class ByteReader {
 public:
  explicit ByteReader(const ReaderContext& context) : context_(context) {}

  // Nothing when `limitMs` have passed since `start`, and when the port was closed or has gone.
  std::optional<std::uint8_t> next(std::uint32_t start, std::uint32_t limitMs) {
    while (left_.empty() && !context_.stop) {
      const std::uint32_t passed = ticksSince(context_.clock.tick(), start);
      if (passed >= limitMs) return std::nullopt;
      const int wait = std::min(kProbeSliceMs, static_cast<int>(limitMs - passed));
      const ReadResult read = context_.port.read(buffer_, wait);
      if (read.gone) {
        gone_ = true;
        return std::nullopt;
      }
      left_ = Bytes(buffer_).first(read.count);
    }
    if (left_.empty()) return std::nullopt;
    const std::uint8_t byte = left_.front();
    left_ = left_.subspan(1);
    return byte;
  }

  bool gone() const { return gone_; }

 private:
  static constexpr int kProbeSliceMs = 50;
  const ReaderContext& context_;
  Block buffer_{};
  Bytes left_;
  bool gone_ = false;
};

// Bytes from the "T" up to, not including, the carriage return; 0 when none came in time.
int measureRecord(const ReaderContext& context, ByteReader& bytes) {
  constexpr std::uint32_t kAnswerMs = 2000;
  constexpr std::uint32_t kRecordMs = 1000;
  constexpr std::uint8_t kCarriageReturn = 13;
  const std::uint32_t start = context.clock.tick();
  std::optional<std::uint8_t> byte;
  do byte = bytes.next(start, kAnswerMs);
  while (byte && *byte != 'T');
  if (!byte) return 0;
  const std::uint32_t begun = context.clock.tick();
  for (int length = 1;; ++length) {
    byte = bytes.next(begun, kRecordMs);
    if (!byte) return 0;
    if (*byte == kCarriageReturn) return length;
  }
}

struct TeskStream {
  int recordLength;
  float recordPeriodMs;
};
constexpr std::array<TeskStream, 2> kTeskStreams{{{7, 72.0F}, {12, 91.0F}}};

}  // namespace

bool ProbeTeskRecord(const ReaderContext& context, bool* gone) {
  constexpr std::uint32_t kSettleMs = 10;
  context.link.recordLength = kTeskStreams[0].recordLength;
  context.clock.pause(kSettleMs);
  ByteReader bytes(context);
  const int length = measureRecord(context, bytes);
  if (gone != nullptr) *gone = bytes.gone();
  for (const TeskStream& stream : kTeskStreams) {
    if (stream.recordLength != length) continue;
    context.link.recordLength = stream.recordLength;
    context.link.recordPeriodMs = stream.recordPeriodMs;
    return true;
  }
  return false;
}

RecordRates recordRatesOf(float intervalSeconds, float recordPeriodMs) {
  RecordRates rates;
  rates.recordsPerInterval = atLeastOne(static_cast<double>(intervalSeconds) * 1000.0 / recordPeriodMs + 0.5);
  // In single precision, where 1 / 0.1 is 10 and not 9.99.
  const double perSecond = std::trunc(1.0F / intervalSeconds) + (intervalSeconds <= 1.0F ? 0.0 : 1.0);
  rates.ratePerSecond = std::min(atLeastOne(perSecond), atLeastOne(std::round(1000.0 / recordPeriodMs)));
  return rates;
}

}  // namespace kalmira
