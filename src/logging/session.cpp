#include "logging/session.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "logging/file_guard.h"
#include "logging/gps_watch.h"
#include "logging/notes.h"
#include "logging/saving.h"
#include "logging/session_link.h"
#include "platform/power.h"

namespace kalmira {
namespace {

constexpr std::uint32_t kBatteryPeriodMs = 180000;
// How often the data file is looked after: its trouble must be known within a second.
constexpr std::uint32_t kServicePeriodMs = 500;
constexpr std::uint32_t kNoTriggerTimeoutMs = 2000;
constexpr std::uint32_t kLookForPortsMs = 1000;
// Shorter than that is no sleep but the two clocks read one after the other.
constexpr std::uint64_t kShortestSleepMs = 1000;
// The watch is called at most this late, and that long after it was put off.
constexpr std::uint32_t kHeldUpMs = 300;
constexpr std::uint32_t kMomentMs = 200;

std::uint32_t watchPeriod(const Session& session) {
  // Without a trigger nothing but the wheel says how often a record comes.
  if (!session.instrument.hasTrigger && session.surveyMode() != kModeWheel) return kNoTriggerTimeoutMs;
  return std::max(1000U, static_cast<std::uint32_t>(readingsIntervalOf(session.settings) * 1000.0F));
}

void showFileTrouble(Session& session) {
  const auto& problem = session.file.problem();
  if (problem.empty() && !session.fileTrouble) return;
  session.fileTrouble = !problem.empty();
  // Another message may have taken its place meanwhile; this one stays until the records are through.
  if (session.message != problem) showMessage(session, problem);
}

// "Please Wait..." has been answered: records come again.
void endWaiting(Session& session) {
  if (!session.pleaseWait || session.link.lastRecordTick == session.pleaseWaitTick) return;
  session.pleaseWait = false;
  showMessage(session, "");
}

void lookForPorts(Session& session) {
  const auto now = session.clock.tick();
  if (!session.sessionActive || ticksSince(now, session.portsLookedForTick) < kLookForPortsMs) return;
  session.portsLookedForTick = now;
  session.ports->lookForAbsentPorts();
}

// A machine that slept has missed what the instrument sent meanwhile: the file says so.
void noticeSleep(Session& session) {
  const auto slept = session.clock.sleptMs();
  const auto gap = slept - std::min(session.sleptMs, slept);
  session.sleptMs = slept;
  if (gap < kShortestSleepMs || !session.sessionActive) return;
  if (session.loggingState != kNoFile && session.link.missedTicks == 0) {
    writeEvent(session, "$CONN BREAK");
    session.link.missedTicks = 1;  // written: the watch need not do so again
  }
  clearTraces(session);
  session.timer = {.running = true, .since = session.clock.tick()};
  session.gps.lastGoodTick = session.clock.tick();
  showMessage(session, fmt::format("The machine slept for {} s", (gap + 500) / 1000));
}

// The watch period is over when it is. A session that was held up itself has kept records waiting: they get a moment to
// be handled before anyone calls the instrument silent.
void watchLink(Session& session) {
  const auto passed = ticksSince(session.clock.tick(), session.timer.since);
  if (passed < session.connectionTimeoutMs) return;
  if (passed > session.connectionTimeoutMs + kHeldUpMs) {
    session.timer.since = session.clock.tick() - session.connectionTimeoutMs + kMomentMs;
    return;
  }
  onTimer(session);
}

}  // namespace

Session::Session(SessionSetup setupOfRun, Settings& settingsRecord, LinkState& linkState, const Clock& clockOfRun,
                 Disk& diskOfRun, SessionView& viewOfRun, std::function<std::string(const Settings&)> save)
    : setup(std::move(setupOfRun)),
      instrument(instrumentOf(setup.kind)),
      settings(settingsRecord),
      link(linkState),
      clock(clockOfRun),
      disk(diskOfRun),
      view(viewOfRun),
      saveSettings(std::move(save)),
      readBattery([] { return batteryPercent(); }),
      readBatteryHours([] { return batteryHours(); }) {
  link.recordLength = instrument.instrumentLength;
  link.recordPeriodMs = static_cast<float>(instrument.recordPeriodMs);
}

void takeSettings(Session& session) {
  const auto& settings = session.settings;
  const int mode = surveyModeOf(settings);
  session.triggerMode = mode;
  session.samplesPerAverage = readingsCountOf(settings);
  session.averageOnTrigger = mode == kModeManual && session.samplesPerAverage >= 2 && session.instrument.hasTrigger;
  session.readingsPerStation =
      readingsPerStationOf(session.instrument.kind, mode, settings.surveyListA, settings.surveyListB);
  session.connectionTimeoutMs = watchPeriod(session);
  session.iceOption = session.instrument.hasIce() && session.setup.iceChosen && settings.iceDisplay == 1;
  session.recorded = ReadingDecoder(header1Of(session.writer()), session.setup.teskRangeTimes10);
}

void takeRecordRates(Session& session) {
  session.periodOfRates = session.link.recordPeriodMs;
  const auto rates = recordRatesOf(readingsIntervalOf(session.settings), session.periodOfRates);
  session.recordInterval = rates.recordsPerInterval;
  session.beepInterval = session.surveyMode() == kModeAuto ? rates.ratePerSecond : 1;
}

DecodeOptions decodeOptionsOf(const Session& session) {
  return {.teskRangeTimes10 = session.setup.teskRangeTimes10,
          .orlaModelOption = session.settings.instrumentLength == 1,
          .listA = session.settings.surveyListA,
          .gpsLoggingMode = session.triggerMode,
          .calibration = session.settings.calibrationFactors};
}

std::string stationText(double station) { return fmt::format("{:<11.2f}", station); }

void showMessage(Session& session, std::string_view text) {
  session.message = text;
  session.view.show(PanelField::message, text);
}

void clearTraces(Session& session) { session.traceStarted.fill(0); }

void showBattery(Session& session) {
  const auto percent = session.readBattery();
  session.view.show(PanelField::battery, percent ? fmt::format("{:>3}%", *percent) : std::string{});
  session.lastBatteryTick = session.clock.tick();
}

void showBatteryWhenDue(Session& session) {
  if (ticksSince(session.clock.tick(), session.lastBatteryTick) > kBatteryPeriodMs) showBattery(session);
}

void writeEvent(Session& session, std::string_view text) {
  WriteNoteRecord(session.writer(), text, tag::kEvent);
  ++session.counts.events;
}

void saveSettingsOrTell(Session& session) {
  Settings saved = session.settings;
  saved.calibrationFactors = session.factorsThatHold();
  const auto problem = session.saveSettings(saved);
  if (!problem.empty()) {
    session.view.tell({.title = "WARNING",
                       .text = problem + "\r\nThe settings hold for this session only.",
                       .icon = Icon::exclamation});
  }
}

void serviceSession(Session& session) {
  if (session.file.isOpen()) {
    guardFile(session);
    showFileTrouble(session);
  }
  watchNotes(session);
  watchSaving(session);
  endWaiting(session);
  lookForPorts(session);
  watchGps(session);
  noticeSleep(session);
  if (session.timer.running) watchLink(session);
}

std::uint32_t msUntilService(const Session& session) {
  std::uint32_t wait = kServicePeriodMs;
  if (session.timer.running) {
    const auto passed = ticksSince(session.clock.tick(), session.timer.since);
    wait = std::min(wait, session.connectionTimeoutMs - std::min(passed, session.connectionTimeoutMs));
  }
  return wait;
}

}  // namespace kalmira
