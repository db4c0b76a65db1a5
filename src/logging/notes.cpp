#include "logging/notes.h"

#include <fmt/format.h>

#include <chrono>
#include <cmath>
#include <utility>

#include "platform/command_line.h"
#include "positions/sentences.h"
#include "settings/settings_file.h"

namespace kalmira {
namespace {

constexpr std::int64_t kDayMs = 86'400'000;
// So long a fix without a date waits for a sentence with one.
constexpr std::uint32_t kDateWaitMs = 5000;
constexpr std::chrono::seconds kLongestEnd{3};

std::string createdText(const LocalTime& time) {
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", time.year, time.month, time.day, time.hour, time.minute,
                     time.second);
}

void write(Session& session) {
  auto& notes = session.notes;
  notes.writer->write(notesPathBeside(session.file.path()), formatNotes(notes.survey));
}

// What a receiver says of the time, while it has a fix.
struct FixTime {
  std::int64_t ms = 0;  // of the day or, with a date, since 1970; UTC
  bool dated = false;
};

std::int64_t msOf(double seconds) { return std::llround(seconds * 1000); }

// `hasFix`: others have said so, for a ZDA does not.
std::optional<FixTime> fixTimeOf(std::string_view sentence, bool hasFix) {
  constexpr int kBestMeasured = 5;  // fixes beyond are estimated, entered or simulated
  if (isPositionSentence(sentence)) {
    PositionSentence position;
    const bool fix = parsePosition(sentence, position) == PositionFault::none && position.quality <= kBestMeasured;
    return fix ? std::optional(FixTime{.ms = msOf(position.timeOfDay_s)}) : std::nullopt;
  }
  const auto time = parseDatedTime(sentence);
  if (!time || (!time->whileFixed && !hasFix)) return std::nullopt;
  return FixTime{.ms = time->day * kDayMs + msOf(time->timeOfDay_s), .dated = true};
}

void takeDifference(Session& session, std::int64_t ms) {
  auto& notes = session.notes;
  notes.undated.reset();
  notes.survey.clockDifference = static_cast<double>(ms) / 1000;
  write(session);
}

}  // namespace

void beginNotes(Session& session) {
  const auto& setup = session.setup;
  auto& notes = session.notes;
  const auto last = lastNotesPath(
      {.kind = setup.kind, .iceOption = setup.iceChosen, .storageClass = setup.storageClass, .root = setup.root});
  notes.survey = askedNotes(readNotes(last, notes.problem).value_or(SurveyNotes{}));
  for (const auto& ofRun : setup.notes) (void)setNote(notes.survey, ofRun);  // whoever took them has looked at them
  auto& survey = notes.survey;
  survey.version = programVersion();
  survey.kind = session.instrument.name;
  survey.created = createdText(session.clock.localTime());
  survey.utcOffset = session.clock.utcOffset();
  if (session.instrument.rangeTimes10) survey.teskRangeTimes10 = setup.teskRangeTimes10;
  Settings settings = session.settings;
  settings.calibrationFactors = session.factorsThatHold();
  survey.settings = settingsForNotes(settings, setup.kind, setup.iceChosen);
  notes.writer = std::make_unique<FileWriter>("notes");
  write(session);
}

void noteFixTime(Session& session, const GpsLine& line) {
  auto& notes = session.notes;
  if (!notes.writer || notes.survey.clockDifference) return;
  const auto fix = fixTimeOf(line.text, notes.undated.has_value());
  if (!fix) return;
  const auto& clock = session.clock;
  const auto now = msSince1970(clock.localTime()) - std::int64_t{1000} * clock.utcOffset();
  const auto difference = now - ticksSince(clock.tick(), line.tick) - fix->ms;
  if (fix->dated) return takeDifference(session, difference);
  if (notes.undated) return;
  // Without a date, of the day that is nearest.
  const auto ofDay = ((difference % kDayMs) + kDayMs) % kDayMs;
  notes.undated = {.difference_ms = ofDay > kDayMs / 2 ? ofDay - kDayMs : ofDay, .tick = clock.tick()};
}

void watchNotes(Session& session) {
  auto& notes = session.notes;
  if (!notes.writer) return;
  if (notes.undated && ticksSince(session.clock.tick(), notes.undated->tick) > kDateWaitMs) {
    takeDifference(session, notes.undated->difference_ms);
  }
  auto problem = std::exchange(notes.problem, {});
  if (problem.empty()) {
    problem = notes.writer->takeProblem();
    if (problem.empty() || std::exchange(notes.writingTold, true)) return;
  }
  showMessage(session, problem);
}

void moveNotes(Session& session, bool mediumFails) {
  auto& notes = session.notes;
  if (!notes.writer) return;
  // What waits for a medium that does not answer is left behind with it.
  if (mediumFails && !notes.writer->finishWithin(std::chrono::milliseconds(0))) {
    notes.writer = std::make_unique<FileWriter>("notes");
  }
  notes.writingTold = false;
  write(session);
}

void finishNotes(Session& session) {
  auto& notes = session.notes;
  if (!notes.writer) return;
  if (notes.undated) takeDifference(session, notes.undated->difference_ms);
  std::string problem;
  if (notes.writer->finishWithin(kLongestEnd)) {
    problem = notes.writer->takeProblem();
  } else {
    problem = "The medium does not take the notes of the survey.";
  }
  if (!notes.problem.empty()) session.remarks.push_back(std::exchange(notes.problem, {}));
  if (!problem.empty() && !notes.writingTold) session.remarks.push_back(std::move(problem));
  notes.writer.reset();
}

}  // namespace kalmira
