#include "logging/handlers.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "logging/calibration.h"
#include "logging/gps_watch.h"
#include "logging/notes.h"
#include "logging/panel.h"

namespace kalmira {
namespace {

bool recording(const Session& session) { return session.loggingState == kLogging && session.linkActive; }

void writeSentence(Session& session, const GpsLine& line, bool checksumOk = true) {
  WriteGpsSentence(session.writer(), line.text, line.tick, checksumOk ? tag::kGpsFirst : tag::kTextFirst,
                   checksumOk ? tag::kGpsMore : tag::kTextMore);
  ++session.counts.gpsSentences;
}

// A held GGA sentence, and the GSA with it, if ready.
void writeReadySentences(Session& session) {
  auto& held = session.held;
  if (held.heldGgaReady) {
    writeSentence(session, held.heldGga);
    ++session.gpsRecordCount;
  }
  if (held.heldGsaReady) writeSentence(session, held.heldGsa);
  held.heldGgaReady = false;
  held.heldGsaReady = false;
}

// Manual mode, first reading after the start of recording: writes the position sentences that are held.
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

void OnGpsSentence(Session& session, const GpsLine& line, bool checksumOk) {
  const auto texts = fixTextsOf(line.text, checksumOk);
  if (texts.fix) session.gps.fix = *texts.fix;
  if (session.calibration.calibrationActive != 0) return;  // the calibration has the panel to itself
  auto& view = session.view;
  if (texts.activity) {
    session.gpsSpin = !session.gpsSpin;
    view.show(PanelField::gpsActivity, session.gpsSpin ? "/" : "\\");
    if (session.loggingState == kLogging) {
      view.show(PanelField::gpsCount, fmt::format("{:<5}", session.gpsRecordCount));
    }
  }
  if (texts.satellites) view.show(PanelField::satellites, *texts.satellites);
  if (texts.fix) view.show(PanelField::fix, *texts.fix);
  if (texts.pdop) view.show(PanelField::pdop, *texts.pdop);
}

// In Manual mode one press of the trigger lets one reading through, however long it is held; in the other modes every
// reading may be recorded.
void latchTrigger(Session& session, bool pressed) {
  const bool manual = session.triggerMode == kModeManual;
  if (!pressed) {
    session.triggerLatch = manual ? 0 : 1;
  } else {
    session.triggerLatch = manual && session.triggerLatch != 0 ? -1 : 1;
  }
}

// Counts and shows a sample. Until the average is complete the samples need no trigger. True when this was the last.
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

// One sample of an average. True when it is complete: then it stands in `reading` and in the record.
bool takeSample(Session& session, Reading& reading) {
  const bool last = countSample(session);
  auto& sums = session.averaging;
  const std::array<float*, 4> values{&reading.conductivity, &reading.inphase, &reading.conductivity2,
                                     &reading.inphase2};
  auto fields = session.instrument.rawFields(session.link.record());
  for (std::size_t i = 0; i < values.size(); ++i) sums.valueSums[i] += *values[i];
  for (std::size_t i = 0; i < fields.count; ++i) sums.fieldSums[i] += fields.value[i];
  if (!last) return false;
  const auto count = static_cast<float>(session.samplesPerAverage);
  for (std::size_t i = 0; i < values.size(); ++i) *values[i] = sums.valueSums[i] / count;
  for (std::size_t i = 0; i < fields.count; ++i) fields.value[i] = sums.fieldSums[i] / count;
  session.instrument.putRawFields(session.link.recordText, fields);
  sums.valueSums.fill(0.0F);
  sums.fieldSums.fill(0.0F);
  return true;
}

void beepWithReading(Session& session) {
  if (indexOr(session.settings.audio, 2, 1) != 1) return;
  // Without a trigger every reading beeps: it is taken while standing, not at a walking pace.
  if (++session.beepCounter < session.beepInterval && session.instrument.hasTrigger) return;
  session.view.beep(Beep::reading);
  session.beepCounter = 0;
}

void advanceStation(Session& session) {
  if (session.stationReadingCount >= session.readingsPerStation) {
    if (session.lineStarted) session.station += static_cast<double>(session.settings.stationIncrement);
    session.stationReadingCount = 0;
  }
  session.lineStarted = true;
  session.view.show(PanelField::station, stationText(session.station));
  if (session.readingsPerStation > 1) {
    session.view.show(PanelField::repeat, fmt::format("{}", session.stationReadingCount));
  }
}

// `firstAtStation`: the profile moves on before the point, but not before its very first. `text` as it went into the
// file.
void addPoint(Session& session, bool firstAtStation, std::string_view text) {
  session.recorded.setCalibration(session.settings.calibrationFactors);
  auto point = profilePointOf(session.recorded.decode(text));
  point.newStation = session.chartPointCount == 1 && firstAtStation;
  session.chartPointCount = 1;
  session.view.addProfilePoint(point);
}

void recordReading(Session& session) {
  auto& link = session.link;
  const int length = session.instrument.recordedBytes;
  if (link.recordLength < length) {
    std::fill(link.recordText.begin() + link.recordLength, link.recordText.begin() + length, ' ');
  }
  // The 2nd to 6th at one station get a digit in place of their start letter.
  const int count = ++session.stationReadingCount;
  if (count >= 2 && count <= 6) link.recordText[0] = static_cast<char>('0' + count);
  const std::string_view text(link.recordText.data(), static_cast<std::size_t>(length));
  writeHeldSentences(session);
  WriteReadingRecord(session.writer(), text, link.lastRecordTick);
  ++session.counts.readings;
  beepWithReading(session);
  advanceStation(session);
  addPoint(session, count == 1, text);
}

// An instrument without a trigger has every reading recorded.
bool isWanted(Session& session, bool pressed, Reading& reading) {
  if (session.link.recordOf != session.link.recording) return false;  // read before recording began
  const bool logging = session.loggingState == kLogging;
  if (!session.instrument.hasTrigger) return logging;
  latchTrigger(session, pressed);
  if (!logging || session.triggerLatch != 1) return false;
  return !session.averageOnTrigger || takeSample(session, reading);
}

// "M" while the trigger is pressed, but not where a press records.
void showMarker(Session& session, bool pressed) {
  const bool records = session.triggerMode == kModeManual && session.loggingState == kLogging;
  session.view.show(PanelField::marker, pressed && !records ? "M" : " ");
}

void handleReading(Session& session, Reading& reading) {
  const auto& instrument = session.instrument;
  showMode(session);
  const bool pressed = instrument.hasTrigger && instrument.triggerPressed(session.link.record());
  // ORLA with the ice display: of a reading with horizontal dipoles.
  if (session.iceOption && reading.orientation == 'H') {
    reading.thickness = IceThickness(static_cast<double>(reading.conductivity), session.iceModel, nullptr);
  }
  if (isWanted(session, pressed, reading)) recordReading(session);
  showValues(session, reading, false);
  if (instrument.hasTrigger) showMarker(session, pressed);
}

}  // namespace

void OnReading(Session& session) {
  if (session.link.recordPeriodMs != session.periodOfRates) {  // a TESK came back with its other record length
    takeRecordRates(session);
    const bool spaced = session.loggingState == kLogging && session.triggerMode == kModeAuto;
    if (spaced) session.link.recordsPerReading = session.recordInterval;
  }
  Reading reading = session.instrument.decode(session.link.record(), decodeOptionsOf(session));
  if (session.calibration.calibrationPhase == -1) {
    calibrateWith(session, reading);
  } else {
    handleReading(session, reading);
  }
  showBatteryWhenDue(session);
  session.link.recordText[0] = '\0';
}

void OnGpsLine(Session& session, const GpsLine& line) {
  const bool checksumOk = nmeaChecksumOk(line.text);
  noteGpsLine(session, checksumOk);
  if (checksumOk) noteFixTime(session, line);
  if (session.surveyMode() == kModeManual) {
    if (!checksumOk) return OnGpsSentence(session, line, false);
    if (session.held.hold(line)) OnGpsSentence(session, line, true);
    if (session.readingLogged && session.held.heldGgaReady && session.file.isOpen()) {
      writeReadySentences(session);
      session.readingLogged = false;
    }
    return;
  }
  const bool position = checksumOk && line.text.find("GGA") != std::string::npos;
  if (recording(session) && position) ++session.gpsRecordCount;
  OnGpsSentence(session, line, checksumOk);
  if (recording(session) && (checksumOk || takesNoise(session, line.text.size()))) {
    writeSentence(session, line, checksumOk);
  }
}

}  // namespace kalmira
