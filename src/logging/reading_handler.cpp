#include "logging/reading_handler.h"

#include <algorithm>
#include <string_view>

#include "logging/calibration.h"
#include "logging/panel.h"
#include "logging/reading_steps.h"

namespace kalmira {
namespace {

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

void recordReading(Session& session) {
  auto& link = session.link;
  const int length = session.instrument.recordedBytes;
  if (link.recordLength < length) {
    std::fill(link.recordText.begin() + link.recordLength, link.recordText.begin() + length, ' ');
  }
  link.recordText[0] = countAtStation(session, link.recordText[0]);
  const bool firstAtStation = session.stationReadingCount == 1;
  const std::string_view text(link.recordText.data(), static_cast<std::size_t>(length));
  writeHeldSentences(session);
  WriteReadingRecord(session.writer(), text, link.lastRecordTick);
  ++session.counts.readings;
  beepWithReading(session);
  advanceStation(session);
  showStation(session);
  addPoint(session, firstAtStation, text);
}

// ORLA with the ice display: of a reading with horizontal dipoles.
void addThickness(const Session& session, Reading& reading) {
  if (!session.iceOption || reading.orientation != 'H') return;
  reading.thickness = IceThickness(static_cast<double>(reading.conductivity), session.iceModel, nullptr);
}

// An instrument without a trigger has every reading recorded.
bool isWanted(Session& session, bool pressed, Reading& reading) {
  if (session.link.recordOf != session.link.recording) return false;  // read before recording began
  if (!session.instrument.hasTrigger) return session.loggingState == kLogging;
  latchTrigger(session, pressed);
  return isSample(session) ? takeSample(session, reading) : isRecordable(session);
}

void handleReading(Session& session, Reading& reading) {
  const auto& instrument = session.instrument;
  showMode(session);
  const bool pressed = instrument.hasTrigger && instrument.triggerPressed(session.link.record());
  addThickness(session, reading);
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
  Reading reading = session.instrument.decode(session.link.record(), decodeOptions(session));
  if (session.calibration.calibrationPhase == -1) {
    calibrateWith(session, reading);
  } else {
    handleReading(session, reading);
  }
  showBatteryWhenDue(session);
  session.link.recordText[0] = '\0';
}

}  // namespace kalmira
