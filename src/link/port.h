#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "instruments/catalogue.h"
#include "settings/settings.h"

// Serial ports as the readers see them, and how each of a session's three lines is set up.
namespace kalmira {

enum class Parity { none, even, odd };

// What is not given is left as it is found on the device.
struct LineSettings {
  std::optional<int> baud{};
  std::optional<int> dataBits{};  // 7 or 8
  std::optional<Parity> parity{};
  std::optional<int> stopBits{};  // 1 or 2
  bool xonXoff = false;           // software flow control in both directions
  // Output waits for DSR. Nothing is ever sent on the marker line, the only one that asks for it, so a system without
  // this kind of flow control loses nothing.
  bool dsrOutputFlow = false;
  std::optional<bool> dtr{};
  std::optional<bool> rts{};

  bool operator==(const LineSettings&) const = default;
};

LineSettings instrumentLine(Kind kind);
LineSettings markerLine(Kind kind);
LineSettings gpsPortLine(const Settings& settings);

inline constexpr int kComPorts = 12;
// COM numbers, 1 to 12, as the settings name them; 0 for no marker port.
int instrumentComNumber(const Settings& settings);
int gpsComNumber(const Settings& settings);
// The choice skips COM6.
int markerComNumber(int markerPortChoice);
// "COM1:"
std::string comName(int comNumber);

// Where the marker line of this kind is: nowhere, on a port of its own, or on the instrument's cable.
enum class MarkerPlace { none, ownPort, instrumentPort };
MarkerPlace markerPlaceOf(Kind kind, const Settings& settings);

enum class PortErrorKind { missing, held, denied, notSerial, other };
struct PortError {
  PortErrorKind kind = PortErrorKind::other;
  std::string text;  // one line: why, and what helps
};

struct ReadResult {
  std::size_t count = 0;  // 0: the time was over, or the device is gone
  bool gone = false;      // nothing will come any more until the port is opened again
};

// Bits of the modem status word.
inline constexpr unsigned kCtsOn = 0x10;
inline constexpr unsigned kDsrOn = 0x20;
inline constexpr unsigned kRingOn = 0x40;
inline constexpr unsigned kRlsdOn = 0x80;

// A serial port. Belongs to one thread: the one that made it, for all members and its end.
class Port {
 public:
  Port() = default;
  Port(const Port&) = delete;
  Port& operator=(const Port&) = delete;
  virtual ~Port() = default;

  // Opening that waits for another machine gives up soon once this is set. It outlives the port.
  virtual void giveUpWhen(const std::atomic<bool>& /*set*/) {}
  // Takes the device for this program alone. The port must be closed.
  virtual std::optional<PortError> open(const std::string& device, const LineSettings& line) = 0;
  // Waits until anything has come, at most `timeoutMs`, and returns what is there, up to the size of `buffer`.
  virtual ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) = 0;
  // Drops what has not been sent, then what has not been read.
  virtual void purge() = 0;
  // The input lines, of the bits above; 0 on a device that has none.
  virtual unsigned modemStatus() = 0;
  // False when not all could be handed to the device within `timeoutMs`.
  virtual bool write(std::span<const std::uint8_t> bytes, int timeoutMs) = 0;
  // Does nothing on a closed port.
  virtual void close() = 0;
};

// Called on the thread that will use the port.
using PortFactory = std::function<std::unique_ptr<Port>()>;

// A port of this machine. A QCoreApplication must exist while it is used; no event loop has to run. A pseudo-terminal
// will do as a device: what it cannot do (modem lines) is passed over.
std::unique_ptr<Port> makeQtSerialPort();

}  // namespace kalmira
