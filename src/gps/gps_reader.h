#pragma once

#include <atomic>
#include <functional>

#include "gps/nmea.h"
#include "link/port.h"
#include "link/readers.h"
#include "platform/clock.h"

namespace kalmira {

// Hands a completed line from the receiver over and waits until it has been handled; the line is valid during
// the call only. False: the link is being closed; the reader then ends and touches nothing any more.
using LineHandOver = std::function<bool(const GpsLine&)>;

// The loop that runs on the GPS port's thread. What is handed in must outlive it. Purges the port when it
// begins.
ReaderEnd GpsReaderThread(Port& port, const Clock& clock, const std::atomic<bool>& stop, const LineHandOver& handOver);

}  // namespace kalmira
