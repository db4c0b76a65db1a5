#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "sim/faults.h"
#include "sim/pace.h"

// Sends what an instrument and a receiver have to say, each piece at its time.
namespace kalmira::sim {

enum class Port { instrument, gps };

// One record or sentence, terminators included.
struct Transmission {
  double time_s = 0;  // after the start
  Port port = Port::instrument;
  std::string bytes;
};

// Gives the transmissions in order of time; nothing when there are no more.
using TransmissionSource = std::function<std::optional<Transmission>()>;

// Where transmissions go.
class Outlet {
 public:
  Outlet() = default;
  Outlet(const Outlet&) = delete;
  Outlet& operator=(const Outlet&) = delete;
  virtual ~Outlet() = default;

  // Never waits: bytes that nobody takes are lost, as on a wire. Not called while unplugged.
  virtual void send(Port port, std::string_view bytes, double time_s) = 0;
  virtual void unplug() = 0;
  // An empty text, or why the devices could not be made again.
  virtual std::string plug() = 0;
};

// Plays `next` until it has no more, until `end_s` or until `pace` says stop. The outlet is plugged when it
// begins. Silence and unplugging lose what falls into them; the survey walks on meanwhile. Returns an empty
// text, or why it had to give up.
std::string play(const TransmissionSource& next, const Faults& faults, double end_s, Pace& pace, Outlet& outlet);

}  // namespace kalmira::sim
