// The GPS line framing, checksum and fields on any stream.
#include <cstdlib>
#include <string>

#include "gps/nmea.h"

using namespace kalmira;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

// Fields that are put together again give the sentence back.
void checkFields(const std::string& text) {
  std::string joined;
  std::string field;
  int n = 1;
  for (; GetNmeaField(text, n, ',', field) == 1; ++n) {
    require(field.find(',') == std::string::npos);
    joined += (n > 1 ? "," : "") + field;
  }
  require(n > 1 && joined == text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const std::size_t limit : {NmeaFramer::kLoggingLimit, NmeaFramer::kMonitorLimit}) {
    NmeaFramer framer(limit);
    for (std::size_t i = 0; i < size; ++i) {
      if (!framer.feed(data[i], static_cast<std::uint32_t>(i))) continue;
      const GpsLine& line = framer.line();
      require(line.text.size() <= limit && line.text.find('\0') == std::string::npos);
      require(line.tick + line.text.size() < i);
      require(!nmeaChecksumOk(line.text) || line.text.starts_with('$'));
      checkFields(line.text);
    }
  }
  return 0;
}
