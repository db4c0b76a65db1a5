// A gpsd's stream cut into blocks, and addresses as they are typed. The first byte is the size of the blocks.
#include <cstdlib>
#include <string>
#include <vector>

#include "link/network_port.h"

using namespace kalmira;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

// Line by line, as one would do it with the whole stream at hand.
std::string sentencesOf(std::string_view stream) {
  std::string out;
  while (!stream.empty()) {
    const auto end = std::min(stream.find('\n'), stream.size() - 1);
    if (stream.front() != '{') out += stream.substr(0, end + 1);
    stream.remove_prefix(end + 1);
  }
  return out;
}

void checkAddress(std::string_view text) {
  const auto address = parseNetworkAddress(text);
  if (!address) return;
  require(isNetworkName(text) && !address->host.empty() && !address->port.empty());
  const bool sixth = address->host.find(':') != std::string::npos;
  const auto again = std::string(address->gpsd ? "gpsd://" : "tcp://") + (sixth ? "[" : "") + address->host +
                     (sixth ? "]:" : ":") + address->port;
  require(parseNetworkAddress(again) == address);
  require(networkProblem(text, PortRole::gps).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string stream(data + 1, data + size);
  checkAddress(stream);
  ReportFilter filter;
  std::string got;
  const std::size_t block = 1 + data[0];
  for (std::size_t at = 0; at < stream.size(); at += block) {
    const auto part = stream.substr(at, block);
    std::vector<std::uint8_t> bytes(part.begin(), part.end());
    const auto kept = filter.withoutReports(bytes);
    require(kept <= bytes.size());
    got.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(kept));
  }
  require(got == sentencesOf(stream));
  return 0;
}
