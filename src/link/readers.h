#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <string_view>

#include "instruments/catalogue.h"
#include "instruments/framing.h"
#include "link/port.h"
#include "platform/clock.h"

namespace kalmira {

// What one session's instrument reader and its session share. Atomics may be touched from both threads at any time. The
// record buffer is written by the reader and belongs to the session while the reader waits for the record to be
// handled.
struct LinkState {
  // The last good record: `recordLength` bytes from the start letter up to, not including, the terminator, then a NUL.
  // The session sets the first byte to NUL when it has consumed the record.
  std::array<char, 184> recordText{};
  int recordLength = 12;

  // Counts the beginnings of recording. The reader keeps with each record the number that stood when the record's last
  // bytes were read: one read before recording began is told by it.
  std::atomic<unsigned> recording{0};
  unsigned recordOf = 0;  // of recordText

  // Good and bad records since the last hand-over; one is handed over whenever this reaches recordsPerReading.
  std::atomic<int> recordCount{0};
  std::atomic<int> recordsPerReading{1};  // at least 1
  std::atomic<std::uint32_t> lastRecordTick{0};
  // Watch periods in a row without a good record; every good record sets it back to 0.
  std::atomic<int> missedTicks{0};

  // Modem status word of the marker line; anything but 0 is "marker on".
  std::atomic<int> markerLineState{0};
  // Above 0 while the operator holds (or has asked for) the marker key.
  std::atomic<int> markerKeyPending{0};

  std::atomic<float> recordPeriodMs{91.0F};  // time between two records of the stream

  std::string_view record() const { return {recordText.data(), static_cast<std::size_t>(recordLength)}; }
};

// How many records make one logged reading, and how many readings come a second.
struct RecordRates {
  int recordsPerInterval = 1;  // at least 1
  int ratePerSecond = 1;       // at least 1, at most what the stream delivers
};

// `intervalSeconds` is the readings interval of the settings, above 0; `recordPeriodMs` above 0. Other values (and
// values that are no number) still give rates within their bounds.
RecordRates recordRatesOf(float intervalSeconds, float recordPeriodMs);

// The loops that run on the ports' threads: bytes from a port through a framer to the session.

// Every loop looks at `stop` at least this often: a closing port waits for that, and is promised 200 ms. Longer than
// the pause between two records or sentences, so that a stream that flows wakes nobody in vain.
inline constexpr int kReadSliceMs = 150;
// The instrument port's read time-out: an ice record that pauses so long is bad.
inline constexpr std::uint32_t kReadTimeoutMs = 2000;
inline constexpr int kMarkerPollMs = 10;

enum class ReaderEnd {
  stopped,  // was told to
  gone,     // the device has vanished
};

// Calls `onBlock` with what arrives until it returns false, `stop` is set or the device vanishes. Nothing arriving
// within `sliceMs` is an empty block. On the thread of `port`.
ReaderEnd readBlocks(Port& port, const std::atomic<bool>& stop, int sliceMs, const std::function<bool(Bytes)>& onBlock);

// What a reader works with; all of it must outlive the reader's loop, and the loop runs on the thread of `port`.
struct ReaderContext {
  Port& port;
  LinkState& link;
  const Clock& clock;
  const std::atomic<bool>& stop;
};

// Hands the record in the link state over and waits until it has been handled. False: the link is being closed; the
// reader then ends and touches nothing any more.
using RecordHandOver = std::function<bool()>;

// All three purge the port and count from 0 when they begin. A good record that fills the count is handed over; a bad
// one only uses up a place in the count. `kind` is one of the ASCII kinds; a TESK keeps the record length that the
// probe found.
ReaderEnd InstrumentReaderAscii(const ReaderContext& context, Kind kind, const RecordHandOver& handOver);
ReaderEnd InstrumentReaderIce(const ReaderContext& context, const RecordHandOver& handOver);
// With `markerOnInstrumentPort` the marker line is a modem line of the instrument's own cable.
ReaderEnd InstrumentReaderTesk2(const ReaderContext& context, bool markerOnInstrumentPort,
                                const RecordHandOver& handOver);

// Stores the whole status word in markerLineState at every change of CTS; 0 when the device vanishes.
ReaderEnd MarkerLineThread(const ReaderContext& context);

// TESK: waits at most 2 s for a record to begin and 1 s for its end. A record of 7 or 12 bytes sets recordLength and
// recordPeriodMs; with any other answer, or none, false and recordLength 7. `gone`, where given, tells whether the
// device has vanished. Ends 50 ms after `stop`.
bool ProbeTeskRecord(const ReaderContext& context, bool* gone = nullptr);

}  // namespace kalmira
