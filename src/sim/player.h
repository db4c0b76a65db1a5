#pragma once

#include <csignal>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What goes wrong on purpose. Pure functions of the seed and the time.
namespace kalmira::sim {

// From `at_s` after the start up to, not including, `at_s + for_s`.
struct Window {
  double at_s = 0;
  double for_s = 0;
};

struct Faults {
  std::uint64_t seed = 1;
  double noise = 0;  // probability that a byte is replaced by another, 0 to 1
  std::vector<Window> silence{};
  std::vector<Window> unplug{};
};

// Whether the time is inside one of the windows.
bool within(const std::vector<Window>& windows, double time_s);

// All beginnings and ends, in order of time.
std::vector<double> windowEdges(const std::vector<Window>& windows);

// Corrupts transmission `number` (counted from 0 over both ports).
void addNoise(std::string& bytes, const Faults& faults, std::uint64_t number);

// When the next thing is due. Finer than the records' millisecond tick, so that 91 ms stay 91 ms and neither errors nor
// the time spent sending add up.
class Pace {
 public:
  Pace() = default;
  Pace(const Pace&) = delete;
  Pace& operator=(const Pace&) = delete;
  virtual ~Pace() = default;
  // Returns true `time_s` after the start (at once when that has passed), false when it is time to stop.
  virtual bool waitUntil(double time_s) = 0;
};

// Real time, counted from construction. SIGINT, SIGTERM and SIGHUP end a wait and make every further one end at once;
// the thread that constructs it keeps them blocked while it lives, and only that thread may wait.
class SignalPace final : public Pace {
 public:
  SignalPace();
  ~SignalPace() override;
  bool waitUntil(double time_s) override;
  double elapsed_s() const;

 private:
  double start_s_;
  bool stopped_ = false;
  sigset_t signals_{};
  sigset_t previous_{};
};

// Sends what an instrument and a receiver have to say, each piece at its time.

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

// Plays `next` until it has no more, until `end_s` or until `pace` says stop. The outlet is plugged when it begins.
// Silence and unplugging lose what falls into them; the survey walks on meanwhile. Returns an empty text, or why it had
// to give up.
std::string play(const TransmissionSource& next, const Faults& faults, double end_s, Pace& pace, Outlet& outlet);

}  // namespace kalmira::sim
