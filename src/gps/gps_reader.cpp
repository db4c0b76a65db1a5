#include "gps/gps_reader.h"

#include "instruments/framing.h"

namespace kalmira {

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

}  // namespace kalmira
