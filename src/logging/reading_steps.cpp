#include "logging/reading_steps.h"

#include <fmt/format.h>

#include "logging/panel.h"

namespace kalmira {
namespace {

void writeHeld(Session& session, const GpsLine& line) {
  WriteGpsSentence(session.writer(), line.text, line.tick, tag::kGpsFirst, tag::kGpsMore);
  ++session.counts.gpsSentences;
}

}  // namespace

void latchTrigger(Session& session, bool pressed) {
  const bool manual = session.triggerMode == kModeManual;
  if (!pressed) {
    session.triggerLatch = manual ? 0 : 1;
  } else {
    session.triggerLatch = manual && session.triggerLatch != 0 ? -1 : 1;
  }
}

bool isSample(const Session& session) {
  return session.averageOnTrigger && session.loggingState == kLogging && session.triggerLatch == 1;
}

bool countSample(Session& session) {
  session.triggerMode = kModeAuto;
  ++session.averaging.sampleCount;
  showMessage(session, fmt::format("Sample {:<3} of {:<3}", session.averaging.sampleCount, session.samplesPerAverage));
  if (session.averaging.sampleCount < session.samplesPerAverage) return false;
  session.averaging.sampleCount = 0;
  session.triggerMode = kModeManual;
  showTriggerMode(session);  // the panel may have been painted between two samples
  return true;
}

bool isRecordable(const Session& session) { return session.loggingState == kLogging && session.triggerLatch == 1; }

char countAtStation(Session& session, char startLetter) {
  const int count = ++session.stationReadingCount;
  return count >= 2 && count <= 6 ? static_cast<char>('0' + count) : startLetter;
}

void writeReadySentences(Session& session) {
  auto& held = session.held;
  if (held.heldGgaReady) {
    writeHeld(session, held.heldGga);
    ++session.gpsRecordCount;
  }
  if (held.heldGsaReady) writeHeld(session, held.heldGsa);
  held.heldGgaReady = false;
  held.heldGsaReady = false;
}

void writeHeldSentences(Session& session) {
  const bool position = session.held.heldGgaReady;
  const bool first = session.surveyMode() == kModeManual && !session.gpsHeldWritten;
  if (first) {
    writeReadySentences(session);
    session.gpsHeldWritten = true;
  }
  // The next position to come belongs to this reading, unless it has just got one.
  session.readingLogged = !(first && position);
}

void beepWithReading(Session& session) {
  if (indexOr(session.settings.audio, 2, 1) != 1) return;
  // Without a trigger every reading beeps: it is taken while standing, not at a walking pace.
  if (++session.beepCounter < session.beepInterval && session.instrument.hasTrigger) return;
  session.view.beep(Beep::hand);
  session.beepCounter = 0;
}

void advanceStation(Session& session) {
  if (session.stationReadingCount >= session.readingsPerStation) {
    if (session.lineStarted) session.station += static_cast<double>(session.settings.stationIncrement);
    session.stationReadingCount = 0;
  }
  session.lineStarted = true;
}

void showStation(Session& session) {
  session.view.show(PanelField::station, stationText(session.station));
  if (session.readingsPerStation > 1) {
    session.view.show(PanelField::repeat, fmt::format("{}", session.stationReadingCount));
  }
}

void addPoint(Session& session, bool firstAtStation, std::string_view text) {
  session.recorded.setCalibration(session.settings.calibrationFactors);
  auto point = profilePointOf(session.recorded.decode(text));
  point.newStation = session.chartPointCount == 1 && firstAtStation;
  session.chartPointCount = 1;
  session.view.addProfilePoint(point);
}

void showMarker(Session& session, bool pressed) {
  const bool recording = session.triggerMode == kModeManual && session.loggingState == kLogging;
  session.view.show(PanelField::marker, pressed && !recording ? "M" : " ");
}

}  // namespace kalmira
