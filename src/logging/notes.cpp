#include "logging/notes.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <cmath>
#include <utility>

#include "platform/command_line.h"
#include "settings/settings_file.h"

namespace kalmira {
namespace {

constexpr std::int64_t kDayMs = 86'400'000;
// So long a fix without a date waits for a sentence with one.
constexpr std::uint32_t kDateWaitMs = 5000;
constexpr std::chrono::seconds kLongestEnd{3};
// Two digits of a year are of 1980, when GPS time began, or later.
constexpr int kFirstYear = 80;

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

std::string fieldOf(std::string_view sentence, int n) {
  std::string text;
  GetNmeaField(sentence.substr(0, sentence.find('*')), n, ',', text);
  return text;
}

// Two digits from `at` on; nothing where there are none.
std::optional<int> twoDigits(std::string_view text, std::size_t at) {
  return at + 2 <= text.size() && text[at] != '-' ? wholeNumber<int>(text.substr(at, 2)) : std::nullopt;
}

// "093000.250"
std::optional<std::int64_t> msOfDay(std::string_view text) {
  const auto hour = twoDigits(text, 0), minute = twoDigits(text, 2);
  const auto second = text.size() < 6 ? std::nullopt : wholeNumber<double>(text.substr(4));
  if (!hour || !minute || !second) return std::nullopt;
  if (*hour > 23 || *minute > 59 || !(*second >= 0 && *second < 61)) return std::nullopt;
  return (*hour * 60 + *minute) * 60'000 + std::llround(*second * 1000);
}

std::optional<FixTime> dated(std::optional<std::int64_t> time, std::optional<int> day, std::optional<int> month,
                             std::optional<int> year) {
  if (!time || !day || !month || !year) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day))};
  if (!date.ok()) return std::nullopt;
  return FixTime{.ms = msSince1970({.year = *year, .month = *month, .day = *day}) + *time, .dated = true};
}

// `hasFix`: others have said so, for a ZDA does not.
std::optional<FixTime> fixTimeOf(std::string_view sentence, bool hasFix) {
  const auto address = fieldOf(sentence, 1);
  if (address.size() != 6) return std::nullopt;
  const auto kind = address.substr(3);
  const auto time = msOfDay(fieldOf(sentence, 2));
  if (kind == "GGA" && time) {
    const auto quality = fieldOf(sentence, 7);
    if (quality.size() == 1 && quality[0] >= '1' && quality[0] <= '5') return FixTime{.ms = *time};
  } else if (kind == "RMC" && fieldOf(sentence, 3) == "A") {
    const auto date = fieldOf(sentence, 10);
    auto year = twoDigits(date, 4);
    if (year) *year += *year < kFirstYear ? 2000 : 1900;
    return dated(time, twoDigits(date, 0), twoDigits(date, 2), year);
  } else if (kind == "ZDA" && hasFix) {
    return dated(time, twoDigits(fieldOf(sentence, 3), 0), twoDigits(fieldOf(sentence, 4), 0),
                 wholeNumber<int>(fieldOf(sentence, 5)));
  }
  return std::nullopt;
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
