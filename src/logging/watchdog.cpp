#include "logging/watchdog.h"

#include <fmt/format.h>

#include "logging/commands.h"

namespace kalmira {
namespace {

constexpr std::uint32_t kReopenPauseMs = 10;

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
  showMessage(session, "Please Wait...");
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
  stopTimer(session);
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
  session.loggingStartTick = session.clock.tick();
  session.link.lastRecordTick = session.loggingStartTick;
  pleaseWait(session);
  startTimer(session);
  session.view.redrawProfile();
}

}  // namespace

void startTimer(Session& session) { session.timer = {.running = true, .since = session.clock.tick()}; }

void stopTimer(Session& session) { session.timer.running = false; }

void onTimer(Session& session) {
  session.timer.since = session.clock.tick();
  if (ticksSince(session.clock.tick(), session.link.lastRecordTick) <= session.connectionTimeoutMs) return;

  if (session.link.missedTicks == 0 && session.loggingState != kNoFile) writeEvent(session, "$CONN BREAK");
  if (++session.link.missedTicks < kMissedPeriodsToGiveUp) {
    pleaseWait(session);
    tryPortAgain(session);
    startTimer(session);
    return;
  }
  session.linkActive = false;
  stopTimer(session);
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
