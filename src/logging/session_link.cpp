#include "logging/session_link.h"

#include <fmt/format.h>

#include "logging/commands.h"
#include "logging/panel.h"
#include "settings/line_entry.h"

namespace kalmira {
namespace {

constexpr std::uint32_t kReaderPauseMs = 50;
constexpr std::uint32_t kReopenPauseMs = 10;
// Periods in a row without a record before the link is given up and the operator is asked.
constexpr int kMissedPeriodsToGiveUp = 6;

void startTimer(Session& session) { session.timer = {.running = true, .since = session.clock.tick()}; }

void tellPortProblem(Session& session, const PortProblem& problem) {
  session.view.tell({.title = "Serial Port", .text = problem.message + "\r\n" + problem.detail, .icon = Icon::none});
}

// Positions are compared as they stand, although the marker list skips COM6.
bool markerOnGpsPort(const Session& session) {
  const auto& settings = session.settings;
  return session.instrument.hasMarker && settings.markerPortChoice >= 1 && session.gpsEnabled() &&
         (settings.markerPortChoice - 1 == settings.gpsPortIndex ||
          session.ports->isSameDevice(markerComNumber(settings.markerPortChoice), gpsComNumber(settings)));
}

bool instrumentOnGpsPort(const Session& session) {
  return session.gpsEnabled() &&
         session.ports->isSameDevice(instrumentComNumber(session.settings), gpsComNumber(session.settings));
}

bool ownMarkerPort(const Session& session) {
  const auto& settings = session.settings;
  return session.instrument.hasMarker && settings.markerPortChoice >= 1 &&
         settings.markerPortChoice - 1 != settings.instrumentPortIndex &&
         !session.ports->isSameDevice(markerComNumber(settings.markerPortChoice), instrumentComNumber(settings));
}

void resetCounters(Session& session) {
  takeSettings(session);
  session.loggingState = kNoFile;
  session.linkLost = false;
  // Also of settings made by hand or by an older program.
  takeAsFile(session.settings);
  session.station = session.settings.startStation;
  session.stationReadingCount = 0;
  session.lineStarted = false;
  session.triggerLatch = 0;
  session.beepCounter = 0;
  session.averaging = {};
  session.held = {};
  session.readingLogged = false;
  session.gpsHeldWritten = false;
  session.gpsRecordCount = 0;
  session.counts = {};
  session.shortfalls.clear();
  session.remarks.clear();
  session.guard = {};
  session.saving = {};
  session.gps = {};
  session.gps.goodTick = session.gps.lastGoodTick = session.gps.lastLineTick = session.clock.tick();
  session.sleptMs = session.clock.sleptMs();
  session.chartPointCount = 0;
  clearTraces(session);
  session.link.recordCount = 0;
  session.link.recordsPerReading = 1;
  session.link.missedTicks = 0;
  session.link.markerLineState = 0;
  session.link.markerKeyPending = 0;
  session.link.recordLength = session.instrument.instrumentLength;
  session.link.recordPeriodMs = static_cast<float>(session.instrument.recordPeriodMs);
}

bool refuse(Session& session, const Message& message) {
  session.view.tell(message);
  session.sessionActive = false;
  return false;
}

bool portsConflict(Session& session) {
  if (!markerOnGpsPort(session) && !instrumentOnGpsPort(session)) return false;
  refuse(session, {.title = "Serial Port", .text = "Same Port Assigned"});
  return true;
}

// Opens the instrument's port and, for a TESK, hears what it sends.
bool connectInstrument(Session& session) {
  session.sessionActive = true;
  if (const auto problem = session.ports->OpenInstrumentPort()) {
    tellPortProblem(session, *problem);
    session.sessionActive = false;
    return false;
  }
  if (session.instrument.asksRecordLength && !session.ports->ProbeTeskRecord(session.interrupted)) {
    session.ports->closeInstrumentPort();
    if (session.interrupted()) {
      session.sessionActive = false;
      return false;
    }
    return refuse(session, {.title = "Connection", .text = "Instrument OFF or Disconnected"});
  }
  return true;
}

void startReaders(Session& session) {
  takeRecordRates(session);
  session.link.lastRecordTick = session.clock.tick();
  session.ports->startInstrumentReader();
  if (ownMarkerPort(session)) {
    if (const auto problem = session.ports->OpenMarkerPort()) {
      tellPortProblem(session, *problem);
    }
    session.ports->startMarkerReader();
  }
  if (!session.sessionActive) return;  // left behind that message
  session.clock.pause(kReaderPauseMs);
  startTimer(session);
  if (!session.gpsEnabled()) return;
  if (const auto problem = session.ports->OpenGpsPort()) {
    tellPortProblem(session, *problem);
    session.gps.gone = true;  // told; it is tried again
  }
  session.ports->startGpsReader();
}

Message linkLostQuestion(const Instrument& instrument) {
  if (instrument.savesBattery) {
    return {.title = "VARDO Battery Save Mode",
            .text = "After the instrument is ON\r\npress YES to connect.\r\nPress NO to exit Logging Mode.\r\n",
            .icon = Icon::exclamation};
  }
  return {.title = "No Connection/Instrument OFF",
          .text = "Fix the problem and\r\npress YES to try.\r\nPress NO to exit Logging Mode.\r\n",
          .icon = Icon::exclamation};
}

void pleaseWait(Session& session) {
  clearTraces(session);
  session.pleaseWait = true;
  session.pleaseWaitTick = session.link.lastRecordTick;
  showMessage(session, kPleaseWaitText);
}

// A pulled cable may be back in its socket.
void tryPortAgain(Session& session) {
  if (session.instrumentOpen) {
    if (session.ports->instrumentGone()) session.ports->reopenInstrumentPort();
  } else if (!session.ports->OpenInstrumentPort()) {
    session.instrumentOpen = true;
    session.ports->startInstrumentReader();
  }
}

void giveUpForGood(Session& session) {
  session.timer.running = false;
  if (session.loggingState != kNoFile) writeEvent(session, "$CONN END  ");
  // A file that was never created stays so: only an open one can be standing by.
  if (session.loggingState != kNoFile) session.loggingState = kStandBy;
  showMessage(session, "");
  session.view.closeDialogs();
  LeaveLogging(session, true);
}

void connectAgain(Session& session) {
  session.linkActive = true;
  session.link.missedTicks = 0;
  const auto problem = session.ports->OpenInstrumentPort();
  session.instrumentOpen = !problem;
  if (problem) tellPortProblem(session, *problem);
  if (!session.sessionActive) return;  // left behind that message
  session.clock.pause(kReopenPauseMs);
  session.link.lastRecordTick = session.clock.tick();
  session.ports->startInstrumentReader();
  session.link.lastRecordTick = session.clock.tick();
  pleaseWait(session);
  startTimer(session);
  session.view.redrawProfile();
}

}  // namespace

bool uptimeExceeded(const Clock& clock) { return clock.tick() > kLongestUptimeMs; }

Message uptimeMessage() {
  return {.title = "PROGRAM STOP",
          .text =
              "Windows has run for more than 20 days.\r\n"
              "To assure accurate clock operation\r\n"
              "please restart the system.\r\n"
              "Press and hold On/Off key till blue screen\r\n"
              "and \"Warm Reset Detected\" is displayed.",
          .icon = Icon::exclamation};
}

StartOutcome startSession(Session& session) {
  if (uptimeExceeded(session.clock)) {
    session.view.tell(uptimeMessage());
    return StartOutcome::uptimeExceeded;
  }
  resetCounters(session);
  if (session.iceOption) {
    LoadIceTable(indexOr(session.settings.seaWaterChoice, kSeaWaterCases, 0), session.settings.instrumentLength == 1,
                 session.iceModel);
  }
  if (portsConflict(session) || !connectInstrument(session)) return StartOutcome::refused;
  session.linkActive = true;
  session.instrumentOpen = true;
  startReaders(session);
  if (!session.sessionActive) return StartOutcome::refused;
  session.inputEnabled = true;
  paintPanel(session);
  return StartOutcome::started;
}

void onTimer(Session& session) {
  // Before the clock: a record that comes in between would seem to lie ahead, and a silence of weeks behind it.
  const std::uint32_t last = session.link.lastRecordTick;
  session.timer.since = session.clock.tick();
  if (ticksSince(session.timer.since, last) <= session.connectionTimeoutMs) return;

  if (session.link.missedTicks == 0 && session.loggingState != kNoFile) writeEvent(session, "$CONN BREAK");
  if (++session.link.missedTicks < kMissedPeriodsToGiveUp) {
    pleaseWait(session);
    tryPortAgain(session);
    startTimer(session);
    return;
  }
  session.linkActive = false;
  session.timer.running = false;
  session.ports->closeInstrumentPort();
  session.linkLost = true;
  const bool again = session.view.ask(Question::linkLost, linkLostQuestion(session.instrument));
  if (!session.sessionActive) return;  // the program was told to end meanwhile
  if (again) {
    connectAgain(session);
  } else {
    giveUpForGood(session);
  }
}

}  // namespace kalmira
