#include "check/survey_report.h"

#include <algorithm>

#include "gps/nmea.h"
#include "platform/text.h"

namespace kalmira {
namespace {

// The loggers mark a silence of two seconds at the latest, on the next stroke of a timer of two seconds.
constexpr std::uint32_t kShortestSilenceMs = 4000;
constexpr double kSilentIntervals = 3;
constexpr std::uint32_t kLongestSilenceMs = 3600000;
constexpr std::uint32_t kBackwardsFrom = UINT32_MAX / 2;
constexpr int kQualityField = 7;

std::string_view nameOf(RecordType type) {
  switch (type) {
    case RecordType::startStation:
    case RecordType::station: return "a station that cannot be read";
    case RecordType::direction: return "a station increment that cannot be read";
    case RecordType::date: return "a date that cannot be read";
    case RecordType::timeMark: return "a time mark that cannot be read";
    case RecordType::calibration: return "a calibration factor that cannot be read";
    case RecordType::header1: return "the first record of another file";
    default: return "a tick that cannot be read";
  }
}

bool hasTick(RecordType type) {
  return type == RecordType::reading || type == RecordType::comment || type == RecordType::event ||
         type == RecordType::timeMark || type == RecordType::gpsTick;
}

}  // namespace

void addDamage(SurveyReport& report, FilePlace place) {
  if (!report.damage.kept.empty()) {
    auto& last = report.damage.kept.back();
    if (last.what == place.what && last.offset + last.bytes == place.offset) {
      last.bytes += place.bytes;
      return;
    }
  }
  report.damage.add(std::move(place));
}

void SurveyReporter::take(const Record& record) {
  ++report_.records;
  if (!takeContent(record)) {
    addDamage(report_, {record.offset, record.bytes.size(), std::string(nameOf(recordTypeOf(record.bytes)))});
  }
  const auto tick = hasTick(recordTypeOf(record.bytes)) ? parseTick(record.bytes) : std::nullopt;
  if (const auto moment = tick ? times_.at(*tick) : std::nullopt) {
    if (!report_.first) report_.first = moment;
    report_.last = moment;
  }
}

// False for a column that does not hold what it should.
bool SurveyReporter::takeContent(const Record& record) {
  const auto bytes = record.bytes;
  switch (recordTypeOf(bytes)) {
    case RecordType::header1: return record.offset == 0;
    case RecordType::header2:
      if (!report_.modeValue.empty()) return true;
      report_.baseName = trimmed(bytes.substr(2, 9));
      report_.modeValue = trimmed(bytes.substr(11, 7));
      return true;
    case RecordType::lineName:
      endLine();
      last_reading_.reset();
      position_.take(bytes);
      line_ = LineReport{.name = position_.lineName(), .first = {}, .last = {}};
      return true;
    case RecordType::date: {
      const auto date = parseDate(bytes);
      if (date) times_.takeDate(*date);
      return date.has_value();
    }
    case RecordType::timeMark: {
      const auto mark = parseTimeMark(bytes);
      if (mark) times_.takeMark(*mark);
      return mark.has_value();
    }
    case RecordType::calibration: return parseCalibration(bytes).has_value();
    case RecordType::reading: return takeReading(record);
    case RecordType::event: takeEvent(record); return parseTick(bytes).has_value();
    case RecordType::comment: return parseTick(bytes).has_value();
    case RecordType::gpsFirst:
    case RecordType::gpsMore:
    case RecordType::textFirst:
    case RecordType::textMore:
    case RecordType::gpsTick:
      if (const auto sentence = sentences_.feed(bytes)) takeSentence(*sentence);
      return true;
    default: return position_.take(bytes);
  }
}

bool SurveyReporter::takeReading(const Record& record) {
  const auto tick = parseTick(record.bytes);
  position_.take(record.bytes);
  ++report_.readings;
  if (!line_) line_ = LineReport{};  // readings before any line
  if (line_->readings++ == 0) line_->first = position_.station();
  line_->last = position_.station();
  if (tick && !times_.at(*tick)) ++report_.timelessReadings;

  const bool marked = pause_ || break_;
  end(pause_, tick);
  end(break_, tick);
  if (report_.automatic && tick && last_reading_ && !marked) {
    const auto ms = ticksSince(*tick, *last_reading_);
    if (ms > silenceMs() && ms < kBackwardsFrom) {
      std::optional<SurveyGap> silent;
      begin(silent, SurveyGap::Why::silent, record);
      silent->tick = last_reading_;
      silent->since = times_.at(*last_reading_);
      end(silent, tick);
    }
  }
  last_reading_ = tick;
  return tick.has_value();
}

void SurveyReporter::takeEvent(const Record& record) {
  const auto text = parseNote(record.bytes);
  if (text == "$STARTED") report_.end = SurveyReport::End::recording;
  if (text == "$PAUSED" || text == "$CONN END") report_.end = SurveyReport::End::paused;
  if (text == "$PAUSED" && last_reading_) begin(pause_, SurveyGap::Why::paused, record);
  if (text == "$CONN BREAK") begin(break_, SurveyGap::Why::broken, record);
}

void SurveyReporter::begin(std::optional<SurveyGap>& gap, SurveyGap::Why why, const Record& record) {
  if (gap) return;  // it goes on
  const auto tick = parseTick(record.bytes);
  gap = SurveyGap{.why = why,
                  .offset = record.offset,
                  .since = tick ? times_.at(*tick) : std::nullopt,
                  .tick = tick,
                  .ms = std::nullopt};
}

void SurveyReporter::end(std::optional<SurveyGap>& gap, std::optional<std::uint32_t> tick) {
  if (!gap) return;
  if (tick && gap->tick) gap->ms = ticksSince(*tick, *gap->tick);
  ++report_.gapCounts.at(static_cast<std::size_t>(gap->why));
  report_.gaps.add(*gap);
  gap.reset();
}

void SurveyReporter::takeSentence(const SentenceAssembler::Sentence& sentence) {
  const auto text = sentence.text;
  if (!sentence.checksumRight) {
    ++(text.starts_with('$') ? report_.wrongChecksums : report_.otherTexts);
    return;
  }
  if (text.size() < 6 || text.substr(3, 3) != "GGA") {
    ++report_.otherSentences;
    return;
  }
  ++report_.gga;
  std::string quality;
  GetNmeaField(text, kQualityField, ',', quality);
  if (quality.size() == 1 && quality[0] >= '0' && quality[0] <= '9') {
    ++report_.fixes.at(static_cast<std::size_t>(quality[0] - '0'));
  }
}

// Longer than this without a reading is silence that was not marked.
std::uint32_t SurveyReporter::silenceMs() const {
  const auto rate = wholeNumber<double>(report_.modeValue).value_or(0);
  const double ms = rate > 0 ? kSilentIntervals * 1000 / rate : 0;
  return static_cast<std::uint32_t>(std::clamp<double>(ms, kShortestSilenceMs, kLongestSilenceMs));
}

void SurveyReporter::endLine() {
  if (line_) report_.lines.add(*line_);
  line_.reset();
}

void SurveyReporter::finish() {
  endLine();
  end(break_, std::nullopt);
  // A pause that nothing follows is the end of the survey.
}

}  // namespace kalmira
