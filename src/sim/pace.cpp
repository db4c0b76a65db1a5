#include "sim/pace.h"

#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <ctime>

namespace kalmira::sim {
namespace {

// A day at most in one wait: what a timespec surely holds.
constexpr double kLongestWait_s = 86400;

double now_s() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

timespec waitOf(double seconds) {
  const double whole = std::floor(seconds);
  return {.tv_sec = static_cast<std::time_t>(whole), .tv_nsec = static_cast<long>((seconds - whole) * 1e9)};
}

}  // namespace

SignalPace::SignalPace() : start_s_(now_s()) {
  sigemptyset(&signals_);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals_, signal);
  pthread_sigmask(SIG_BLOCK, &signals_, &previous_);
}

SignalPace::~SignalPace() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }

double SignalPace::elapsed_s() const { return now_s() - start_s_; }

bool SignalPace::waitUntil(double time_s) {
  while (!stopped_) {
    const double left_s = time_s - elapsed_s();
    const auto wait = waitOf(std::clamp(left_s, 0.0, kLongestWait_s));
    // Also when nothing is left to wait for: a stream that is always late can still be stopped.
    stopped_ = sigtimedwait(&signals_, nullptr, &wait) > 0;
    if (left_s <= 0) break;
  }
  return !stopped_;
}

}  // namespace kalmira::sim
