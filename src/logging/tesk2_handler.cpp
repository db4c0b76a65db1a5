#include <algorithm>
#include <array>
#include <string>

#include "logging/calibration.h"
#include "logging/handlers.h"
#include "logging/panel.h"
#include "logging/reading_steps.h"

namespace kalmira {
namespace {

constexpr std::size_t kRecordLength = 14;
constexpr std::size_t kFirstWord = 2;  // six words, most significant byte first

using Words = std::array<std::uint16_t, 6>;

void putWords(LinkState& link, const Words& words) {
  for (std::size_t i = 0; i < words.size(); ++i) {
    link.recordText[kFirstWord + 2 * i] = static_cast<char>(words[i] >> 8U);
    link.recordText[kFirstWord + 2 * i + 1] = static_cast<char>(words[i] & 0xFFU);
  }
}

// One sample of an average. True when it is complete: then it stands in `reading` and in the record.
bool takeSample(Session& session, Tesk2Reading& reading) {
  const bool last = countSample(session);
  auto& sums = session.averaging;
  const std::array<float*, 4> values{&reading.conductivity1, &reading.inphase1, &reading.conductivity2,
                                     &reading.inphase2};
  for (std::size_t i = 0; i < values.size(); ++i) sums.channelSums[i] += *values[i];
  for (std::size_t i = 0; i < sums.wordSums.size(); ++i) sums.wordSums[i] += reading.words[i];
  if (!last) return false;
  const auto count = static_cast<unsigned>(session.samplesPerAverage);
  for (std::size_t i = 0; i < values.size(); ++i)
    *values[i] = sums.channelSums[i] / static_cast<float>(count);
  Words averages{};
  for (std::size_t i = 0; i < averages.size(); ++i) {
    averages[i] = static_cast<std::uint16_t>(sums.wordSums[i] / count);
  }
  putWords(session.link, averages);
  sums.channelSums.fill(0.0F);
  sums.wordSums.fill(0);
  return true;
}

void recordReading(Session& session) {
  auto& link = session.link;
  link.recordText[0] = countAtStation(session, link.recordText[0]);
  const bool firstAtStation = session.stationReadingCount == 1;
  writeHeldSentences(session);
  const std::string_view text(link.recordText.data(), kRecordLength);
  WriteTesk2ReadingRecord(session.writer(), text, link.lastRecordTick);
  ++session.counts.readings;
  beepWithReading(session);
  advanceStation(session);
  showStation(session);
  addPoint(session, firstAtStation, text);
}

void showValues(Session& session, const Tesk2Reading& reading) {
  const bool wide = session.setup.wideLayout;
  auto& view = session.view;
  view.show(PanelField::value1, valueText("C", reading.conductivity1, "mS/m", wide));
  view.show(PanelField::value2, valueText("I", reading.inphase1, "ppt", wide));
  view.show(PanelField::value3, valueText("c", reading.conductivity2, "mS/m", wide));
  view.show(PanelField::value4, valueText("i", reading.inphase2, "ppt", wide));
  view.show(PanelField::value5, valueText("T", reading.auxiliary1, "", wide));
  view.show(PanelField::value6, valueText("t", reading.auxiliary2, "", wide));
}

void handleReading(Session& session, Tesk2Reading& reading) {
  session.view.show(PanelField::mode, dipoleModeText(session.settings));
  const bool pressed = reading.secondMode == 'M';
  latchTrigger(session, pressed);
  bool recordable = isRecordable(session);
  if (isSample(session)) recordable = takeSample(session, reading);
  if (recordable) recordReading(session);
  showValues(session, reading);
  showMarker(session, pressed);
}

}  // namespace

void OnTesk2Reading(Session& session) {
  Tesk2Reading reading;
  Channels channels;
  DecodeTesk2Live(session.link.record(), tesk2Offsets(session.settings.calibrationFactors),
                  session.settings.surveyListA == 1, reading, channels);
  if (session.calibration.calibrationPhase == -1) {
    calibrateWith(session, reading);
  } else {
    handleReading(session, reading);
  }
  showBatteryWhenDue(session);
  session.link.recordText[0] = '\0';
}

}  // namespace kalmira
