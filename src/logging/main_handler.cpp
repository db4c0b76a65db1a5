#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "logging/handlers.h"
#include "logging/profile_point.h"
#include "logging/reading_steps.h"
#include "logging/value_texts.h"
#include "platform/text.h"

namespace kalmira {
namespace {

// A record of the wire: 'T', mode byte, two fields of sign and four digits.
//   T@+0123-0456
constexpr std::size_t kModeByte = 1;
constexpr std::size_t kFirstField = 2;
constexpr std::size_t kSecondField = 7;
constexpr std::size_t kFieldLength = 5;
constexpr int kPaddedLength = 13;
constexpr std::size_t kRecordedLength = 12;  // of these, in the file

bool triggerPressed(const LinkState& link) {
  const auto mode = static_cast<unsigned char>(link.recordText[kModeByte]);
  return (mode >= 128 ? mode - 128 : mode) >= 64;
}

bool hasSecondField(const Session& session) {
  return session.link.recordLength >= 8 && session.instrument.kind != Kind::tesk;
}

float fieldValue(const LinkState& link, std::size_t start) {
  const auto value = static_cast<float>(parseReal({link.recordText.data() + start, kFieldLength}));
  return std::isfinite(value) ? value : 0.0F;  // noise may spell "nan"
}

// One sample of an average. True when the average is complete and stands in `reading`.
bool takeSample(Session& session, AsciiReading& reading) {
  const bool last = countSample(session);
  auto& sums = session.averaging;
  sums.firstFieldSum += fieldValue(session.link, kFirstField);
  if (hasSecondField(session)) sums.secondFieldSum += fieldValue(session.link, kSecondField);
  sums.conductivitySum += reading.conductivity;
  sums.secondValueSum += reading.inphase;
  if (!last) return false;
  const auto count = static_cast<float>(session.samplesPerAverage);
  reading.conductivity = sums.conductivitySum / count;
  reading.inphase = sums.secondValueSum / count;
  sums.firstField = sums.firstFieldSum / count;
  sums.secondField = sums.secondFieldSum / count;
  sums.firstFieldSum = sums.secondFieldSum = sums.conductivitySum = sums.secondValueSum = 0.0F;
  return true;
}

// The averaged field in the record's own form, sign and four digits.
void overwriteField(LinkState& link, std::size_t start, float value) {
  const int whole = static_cast<int>(std::clamp(value, -9999.0F, 9999.0F));
  const auto text = fmt::format("{:+05}", whole);
  std::copy(text.begin(), text.end(), link.recordText.begin() + static_cast<std::ptrdiff_t>(start));
}

void recordReading(Session& session) {
  auto& link = session.link;
  std::fill(link.recordText.begin() + link.recordLength, link.recordText.begin() + kPaddedLength, ' ');
  if (session.averageOnTrigger) {
    overwriteField(link, kFirstField, session.averaging.firstField);
    if (hasSecondField(session)) overwriteField(link, kSecondField, session.averaging.secondField);
  }
  link.recordText[0] = countAtStation(session, link.recordText[0]);
  const bool firstAtStation = session.stationReadingCount == 1;
  writeHeldSentences(session);
  WriteReadingRecord(session.writer(), {link.recordText.data(), kPaddedLength}, link.lastRecordTick);
  ++session.counts.readings;
  beepWithReading(session);
  advanceStation(session);
  showStation(session);
  addPoint(session, firstAtStation, {link.recordText.data(), kRecordedLength});
}

}  // namespace

void OnMainReading(Session& session) {
  ShownReading shown;
  Channels channels;
  DecodeAsciiRecord(session.link.record(), session.instrument.kind, asciiOptions(session), shown.reading, channels);
  shown.thickness = iceThicknessOf(session, shown.reading, channels);
  session.view.show(PanelField::mode, modeText(session));

  const bool pressed = triggerPressed(session.link);
  latchTrigger(session, pressed);
  bool recordable = isRecordable(session);
  if (isSample(session)) recordable = takeSample(session, shown.reading);
  if (recordable) recordReading(session);

  for (const auto& [field, text] : valueTexts(session, shown)) session.view.show(field, text);
  showMarker(session, pressed);
  showBatteryWhenDue(session);
  session.link.recordText[0] = '\0';
}

void OnReading(Session& session) {
  switch (session.instrument.framing) {
    case Framing::ascii:
      return OnMainReading(session);
    case Framing::ice:
      return OnIceReading(session);
    case Framing::tesk2:
      return OnTesk2Reading(session);
  }
}

}  // namespace kalmira
