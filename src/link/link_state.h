#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string_view>

#include "instruments/catalogue.h"

namespace kalmira {

// What one session's instrument reader and its session share. Atomics may be touched from both threads at any
// time. The record buffer is written by the reader and belongs to the session while the reader waits for the
// record to be handled.
struct LinkState {
  // The last good record: `recordLength` bytes from the start letter up to, not including, the terminator,
  // then a NUL. The session sets the first byte to NUL when it has consumed the record.
  std::array<char, 184> recordText{};
  int recordLength = 12;

  // Counts the beginnings of recording. The reader keeps with each record the number that stood when the
  // record's last bytes were read: one framed before recording began is told by it.
  std::atomic<unsigned> recording{0};
  unsigned recordOf = 0;  // of recordText

  // Good and bad records since the last hand-over; one is handed over whenever this reaches
  // recordsPerReading.
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

// `intervalSeconds` is the readings interval of the settings, above 0; `recordPeriodMs` above 0. Other values
// (and values that are no number) still give rates within their bounds.
RecordRates recordRates(float intervalSeconds, float recordPeriodMs);

}  // namespace kalmira
