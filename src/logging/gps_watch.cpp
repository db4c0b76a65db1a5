#include "logging/gps_watch.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "logging/file_guard.h"

namespace kalmira {
namespace {

// A fix that comes and goes, under trees, is told no more often.
constexpr std::uint32_t kFixPauseMs = 10000;
// 460800 baud with start and stop bit.
constexpr double kFastestBytes_s = 46080;
constexpr std::string_view kNoFixWord = "NO FIX";

std::uint32_t since(const Session& session, std::uint32_t tick) { return ticksSince(session.clock.tick(), tick); }

void watchPort(Session& session) {
  auto& gps = session.gps;
  const bool gone = session.ports->gpsGone();
  if (gone == gps.gone) return;
  gps.gone = gone;
  if (!gone) gps.lastGoodTick = session.clock.tick();  // it gets its time to speak
  gps.silent = false;
  showMessage(session, gone ? "GPS receiver gone: it is tried every second" : "GPS receiver is back");
}

void watchSilence(Session& session) {
  auto& gps = session.gps;
  if (since(session, gps.lastGoodTick) <= kGpsSilenceMs) {
    if (std::exchange(gps.silent, false)) showMessage(session, "GPS data again");
    return;
  }
  if (!std::exchange(gps.silent, true)) {
    if (!gps.gone) showMessage(session, "No GPS data");
    gps.fix.clear();
  }
}

// What is true no longer does not stay on the panel, whoever is to blame: a machine that slept, too.
void blankOldTexts(Session& session) {
  auto& gps = session.gps;
  if (session.calibration.calibrationActive != 0) return;  // the calibration has the panel to itself
  if (since(session, gps.goodTick) <= kGpsSilenceMs) return;
  if (!std::exchange(gps.fixBlank, true)) session.view.show(PanelField::fix, "");
  if (since(session, gps.lastLineTick) <= kGpsSilenceMs || std::exchange(gps.allBlank, true)) return;
  session.view.show(PanelField::satellites, "");
  session.view.show(PanelField::pdop, "");
}

void watchFix(Session& session) {
  auto& gps = session.gps;
  if (gps.fix.empty() || gps.fix == gps.fixTold) return;
  if (!gps.fixTold.empty()) {
    if (since(session, gps.fixToldTick) < kFixPauseMs) return;
    showMessage(session, gps.fix == kNoFixWord ? std::string("GPS has no fix") : "GPS fix: " + gps.fix);
    gps.fixToldTick = session.clock.tick();
  }
  gps.fixTold = gps.fix;
}

void watchNoise(Session& session) {
  auto& noise = session.gps.noise;
  if (noise.leftOut == noise.told || since(session, noise.toldTick) < kFixPauseMs) return;
  noise.told = noise.leftOut;
  noise.toldTick = session.clock.tick();
  showMessage(session, fmt::format("GPS port: {} lines of noise left out", noise.leftOut));
}

}  // namespace

void noteGpsLine(Session& session, bool checksumOk) {
  auto& gps = session.gps;
  gps.lastLineTick = session.clock.tick();
  gps.allBlank = false;
  if (!checksumOk) return;
  gps.goodTick = gps.lastGoodTick = gps.lastLineTick;
  gps.fixBlank = false;
  gps.everGood = true;
}

bool takesNoise(Session& session, std::size_t bytes) {
  auto& noise = session.gps.noise;
  const auto now = session.clock.tick();
  noise.room = std::min(kFastestBytes_s, noise.room + kFastestBytes_s * ticksSince(now, noise.tick) / 1000.0);
  noise.tick = now;
  if (noise.room < static_cast<double>(bytes)) {
    ++noise.leftOut;
    return false;
  }
  noise.room -= static_cast<double>(bytes);
  return true;
}

void watchGps(Session& session) {
  if (!session.gpsEnabled() || !session.sessionActive) return;
  watchPort(session);
  watchSilence(session);
  blankOldTexts(session);
  watchFix(session);
  watchNoise(session);
  session.gps.everFixed = session.gps.everFixed || (!session.gps.fix.empty() && session.gps.fix != kNoFixWord);
}

void noteGpsAtEnd(Session& session) {
  if (!session.gpsEnabled()) return;
  if (const auto lines = session.gps.noise.leftOut; lines > 0) {
    session.remarks.push_back(
        fmt::format("{} lines from the GPS port were no sentences and came too fast: left out.", lines));
  }
  if (!session.gps.everGood) {
    noteShortfall(session, "The GPS receiver never gave a good sentence: the survey has no positions.");
  } else if (!session.gps.everFixed) {
    session.remarks.emplace_back("GPS had no fix all through: the survey has no positions.");
  }
}

}  // namespace kalmira
