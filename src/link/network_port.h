#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "link/port.h"

namespace kalmira {

// A source over the network, written as a device: "tcp://HOST:PORT", a serial server, or "gpsd://HOST[:PORT]", whose
// NMEA stream is read. An IPv6 address stands in brackets.
struct NetworkAddress {
  bool gpsd = false;
  std::string host;
  std::string port;  // its number; of gpsd 2947 unless another is given
  bool operator==(const NetworkAddress&) const = default;
};

// Whether a device's name means to be an address: anything with "://".
bool isNetworkName(std::string_view device);
// Nothing when it is malformed.
std::optional<NetworkAddress> parseNetworkAddress(std::string_view device);
// Why the device cannot be an instrument's port, a receiver's or a marker's; empty: it can, or is no address.
enum class PortRole { instrument, gps, marker };
std::string networkProblem(std::string_view device, PortRole role);

// gpsd answers the wish for its NMEA stream with lines of reports ("{...}") of its own, and may send more of them
// between the sentences: they are taken out, also where a block of bytes ends within one.
class ReportFilter {
 public:
  // Moves the rest together at the beginning and returns its length.
  std::size_t withoutReports(std::span<std::uint8_t> bytes);

 private:
  bool in_report_ = false;
  bool at_line_start_ = true;
};

// A connection read like a serial port: line settings mean nothing to it. Opening takes 0.9 s at the most, name lookup
// included. A connection that brings nothing for 3 s counts as gone, for a peer may die without a word. Of gpsd, lines
// of reports ("{...}") are dropped.
std::unique_ptr<Port> makeNetworkPort();

// A port for whatever device it is opened with: a serial one or an address.
std::unique_ptr<Port> makePort();

}  // namespace kalmira
