#include <fmt/format.h>

#include <algorithm>

#include "logging/handlers.h"
#include "logging/panel.h"
#include "logging/reading_steps.h"

namespace kalmira {
namespace {

constexpr int kPaddedLength = 13;
constexpr std::size_t kRecordedLength = 12;  // of these, in the file

void recordReading(Session& session) {
  auto& link = session.link;
  std::fill(link.recordText.begin() + link.recordLength, link.recordText.begin() + kPaddedLength, ' ');
  writeHeldSentences(session);
  WriteReadingRecord(session.writer(), {link.recordText.data(), kPaddedLength}, link.lastRecordTick);
  ++session.counts.readings;
  // Every reading beeps: a GLACO is read while standing, not at a walking pace.
  if (indexOr(session.settings.audio, 2, 1) == 1) session.view.beep(Beep::hand);
  // No repeated readings here: every reading moves on, but for the first of a line.
  if (session.lineStarted) session.station += static_cast<double>(session.settings.stationIncrement);
  session.lineStarted = true;
  showStation(session);
  addPoint(session, true, {link.recordText.data(), kRecordedLength});
}

}  // namespace

void OnIceReading(Session& session) {
  AsciiReading reading;
  Channels channels;
  DecodeAsciiRecord(session.link.record(), session.instrument.kind, asciiOptions(session), reading, channels);
  if (session.loggingState == kLogging) recordReading(session);
  session.view.show(PanelField::value1, valueText("Th", reading.conductivity, "", false));
  session.view.show(PanelField::value2, valueText("IP", reading.inphase, "", false));
  showBatteryWhenDue(session);
  session.link.recordText[0] = '\0';
}

}  // namespace kalmira
