#pragma once

#include <csignal>

namespace kalmira::sim {

// When the next thing is due. Finer than the records' millisecond tick, so that 91 ms stay 91 ms and neither
// errors nor the time spent sending add up.
class Pace {
 public:
  Pace() = default;
  Pace(const Pace&) = delete;
  Pace& operator=(const Pace&) = delete;
  virtual ~Pace() = default;
  // Returns true `time_s` after the start (at once when that has passed), false when it is time to stop.
  virtual bool waitUntil(double time_s) = 0;
};

// Real time, counted from construction. SIGINT, SIGTERM and SIGHUP end a wait and make every further one end
// at once; the thread that constructs it keeps them blocked while it lives, and only that thread may wait.
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

}  // namespace kalmira::sim
