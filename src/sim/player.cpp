#include "sim/player.h"

#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <ctime>
#include <limits>

#include "sim/world.h"

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

bool within(const std::vector<Window>& windows, double time_s) {
  return std::any_of(windows.begin(), windows.end(), [time_s](const Window& window) {
    return time_s >= window.at_s && time_s < window.at_s + window.for_s;
  });
}

std::vector<double> windowEdges(const std::vector<Window>& windows) {
  std::vector<double> edges;
  for (const auto& window : windows) {
    edges.push_back(window.at_s);
    edges.push_back(window.at_s + window.for_s);
  }
  std::sort(edges.begin(), edges.end());
  return edges;
}

void addNoise(std::string& bytes, const Faults& faults, std::uint64_t number) {
  if (faults.noise <= 0) return;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (fraction(faults.seed, Use::noise, number, 2 * i) >= faults.noise) continue;
    // Exclusive-or with 1 to 255: never the byte itself.
    const auto change = 1 + draw(faults.seed, Use::noise, number, 2 * i + 1) % 255;
    bytes[i] = static_cast<char>(static_cast<unsigned char>(bytes[i]) ^ change);
  }
}

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

std::string play(const TransmissionSource& next, const Faults& faults, double end_s, Pace& pace, Outlet& outlet) {
  const auto edges = windowEdges(faults.unplug);
  auto edge = edges.begin();
  bool plugged = true;
  std::uint64_t number = 0;
  for (auto transmission = next(); transmission;) {
    const double due_s = std::min(transmission->time_s, end_s);
    if (edge != edges.end() && *edge <= due_s) {
      if (!pace.waitUntil(*edge)) return {};
      const bool wanted = !within(faults.unplug, *edge);
      if (plugged && !wanted) outlet.unplug();
      if (!plugged && wanted) {
        if (auto error = outlet.plug(); !error.empty()) return error;
      }
      plugged = wanted;
      ++edge;
      continue;
    }
    if (!pace.waitUntil(due_s) || transmission->time_s >= end_s) return {};
    if (plugged && !within(faults.silence, due_s)) {
      addNoise(transmission->bytes, faults, number);
      outlet.send(transmission->port, transmission->bytes, due_s);
    }
    ++number;
    transmission = next();
  }
  return {};
}

}  // namespace kalmira::sim
