#include "console/operator_commands.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <vector>

#include "datafile/record_format.h"
#include "datafile/record_parse.h"
#include "logging/calibration.h"
#include "logging/commands.h"
#include "platform/text.h"
#include "settings/line_entry.h"

namespace kalmira {
namespace {

// The marker key's bit in a TESK2 record's mode byte.
constexpr unsigned kMarkerKeyBit = 8;
// What the columns of stations and increments in a data file hold.
constexpr double kLargestStation = 9999999.0;

std::optional<double> stationNumber(std::string_view text) {
  const auto number = wholeNumber<double>(text);
  return number && std::abs(*number) <= kLargestStation ? number : std::nullopt;
}

CommandAnswer failed(std::string why) { return {.error = std::move(why)}; }

// The words of a line's command. The first, a name, may have blanks when quotes stand round it. Nothing when they
// do not end.
std::optional<std::vector<std::string>> words(std::string_view text) {
  std::vector<std::string> out;
  while (true) {
    const auto start = text.find_first_not_of(" \t");
    if (start == std::string_view::npos) return out;
    text.remove_prefix(start);
    const bool quoted = out.empty() && text.front() == '"';
    if (quoted) text.remove_prefix(1);
    const auto end = quoted ? text.find('"') : text.find_first_of(" \t");
    if (quoted && end == std::string_view::npos) return std::nullopt;
    out.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) return out;
    text.remove_prefix(end + (quoted ? 1 : 0));
  }
}

CommandAnswer go(Session& session, std::string_view) {
  startRecording(session);
  return {};
}

CommandAnswer pauseNow(Session& session, std::string_view) {
  pauseRecording(session);
  return {};
}

// What the file holds where that is not what was given.
std::string keptOfLine(const Session& session, const LineEntry& entry) {
  std::string kept;
  const auto name = parseLineName(formatLineName(session.instrument.fileRecordLength, session.settings.lineName));
  if (name != trimmedEnd(entry.lineName)) kept += name;
  const auto& settings = session.settings;
  const auto add = [&kept](const std::string& text) { kept += (kept.empty() ? "" : " ") + text; };
  if (settings.startStation != entry.startStation) add(fmt::format("start {:.2f}", settings.startStation));
  if (settings.stationIncrement != entry.stationIncrement)
    add(fmt::format("increment {:.3f}", settings.stationIncrement));
  return kept;
}

CommandAnswer line(Session& session, std::string_view text) {
  const auto split = words(text);
  if (!split) return failed("the quotes round the line's name do not end");
  const auto& given = *split;
  auto entry = proposeLine(session.settings, session.station);
  if (given.size() > 4) return failed("line takes NAME START INCREMENT W|S|N|E at most");
  if (!given.empty()) entry.lineName = given[0];
  if (given.size() > 1) {
    const auto start = stationNumber(given[1]);
    if (!start) return failed(fmt::format("the start station \"{}\" is no number that fits", given[1]));
    entry.startStation = *start;
  }
  if (given.size() > 2) {
    const auto increment = stationNumber(given[2]);
    if (!increment) return failed(fmt::format("the increment \"{}\" is no number that fits", given[2]));
    entry.stationIncrement = static_cast<float>(*increment);
  }
  if (given.size() > 3) {
    const auto direction = std::string_view("WSNE").find(given[3]);
    if (given[3].size() != 1 || direction == std::string_view::npos) {
      return failed(fmt::format("the direction \"{}\" is none of W, S, N, E", given[3]));
    }
    entry.direction = static_cast<int>(direction);
  }
  if (hasControlCharacters(entry.lineName)) return failed("the line's name holds control characters");
  const bool vanishes =
      entry.stationIncrement != 0.0F && incrementInFile(static_cast<double>(entry.stationIncrement)) == 0.0;
  if (given.size() > 2 && vanishes) {
    return failed(fmt::format("the increment \"{}\" is 0 in the file, which holds three decimals", given[2]));
  }
  newLine(session, entry);
  return {.kept = keptOfLine(session, entry), .newLine = true};
}

CommandAnswer station(Session& session, std::string_view text) {
  const auto end = text.find_last_not_of(" \t");
  text = text.substr(0, end == std::string_view::npos ? 0 : end + 1);
  if (!wholeNumber<double>(text)) return failed("station takes one number");
  const auto number = stationNumber(text);
  if (!number) return failed("no station is that far away: it would not fit into the file");
  newStation(session, *number);
  return {.kept = session.station == *number ? std::string{} : fmt::format("{:.2f}", session.station)};
}

CommandAnswer comment(Session& session, std::string_view text) {
  if (hasControlCharacters(text)) return failed("the comment holds control characters");
  addComment(session, text);
  const auto kept = parseNote(formatNote(session.instrument.fileRecordLength, tag::kComment, text, 0));
  return {.kept = kept == trimmedEnd(text) ? std::string{} : kept};
}

CommandAnswer calibrate(Session& session, std::string_view) {
  startCalibration(session);
  return {};
}

CommandAnswer removeCalibration(Session& session, std::string_view) {
  deleteCalibration(session);
  return {};
}

CommandAnswer mark(Session& session, std::string_view) {
  if (!session.instrument.hasMarker) return failed("only the TESK2 has a marker key");
  session.link.markerKeyPending = 1;
  return {};
}

CommandAnswer status(Session& session, std::string_view) { return {.status = "status " + statusText(session)}; }

CommandAnswer help(Session&, std::string_view);

CommandAnswer leave(Session& session, std::string_view) {
  leaveCleanly(session);
  return {};
}

struct OperatorCommand {
  std::string_view name;
  std::string_view help;
  std::optional<Command> command;  // what the window must offer; nothing: always
  bool takesText;
  CommandAnswer (*run)(Session&, std::string_view);
};

constexpr std::array kCommands{
    OperatorCommand{"go", "record", Command::start, false, go},
    OperatorCommand{"pause", "stop recording", Command::pause, false, pauseNow},
    OperatorCommand{"line", "[NAME [START [INCREMENT [W|S|N|E]]]]: a new line; \"a name\" with blanks in quotes",
                    Command::newLine, true, line},
    OperatorCommand{"station", "X: the next reading is taken there", Command::newStation, true, station},
    OperatorCommand{"comment", "[TEXT]", Command::comment, true, comment},
    OperatorCommand{"calibrate", "TESK2: begin the calibration", Command::calibrate, false, calibrate},
    OperatorCommand{"delete-calibration", "TESK2", Command::deleteCalibration, false, removeCalibration},
    OperatorCommand{"mark", "TESK2: press the marker key for one record", std::nullopt, false, mark},
    OperatorCommand{"status", "where things stand", std::nullopt, false, status},
    OperatorCommand{"help", "this list", std::nullopt, false, help},
    OperatorCommand{"exit", "end the session", std::nullopt, false, leave},
};

CommandAnswer help(Session&, std::string_view) {
  CommandAnswer answer;
  for (const auto& item : kCommands) {
    answer.status += fmt::format("{}help {} {}", answer.status.empty() ? "" : "\n", item.name, item.help);
  }
  return answer;
}

std::string whyForbidden(const Session& session, Command command) {
  const bool calibration = command == Command::calibrate || command == Command::deleteCalibration;
  if (calibration && !session.instrument.calibrated) return "only the TESK2 is calibrated";
  if (calibration && session.calibration.calibrationPhase != 0) return "a calibration is running";
  return session.loggingState == kLogging ? "not while logging: pause first" : "not logging";
}

}  // namespace

CommandAnswer runOperatorCommand(Session& session, std::string_view text) {
  const auto start = text.find_first_not_of(" \t");
  text.remove_prefix(start == std::string_view::npos ? text.size() : start);
  const auto nameEnd = text.find_first_of(" \t");
  const auto name = text.substr(0, nameEnd);
  auto rest = nameEnd == std::string_view::npos ? std::string_view{} : text.substr(nameEnd);
  const auto restStart = rest.find_first_not_of(" \t");
  rest = restStart == std::string_view::npos ? std::string_view{} : rest.substr(restStart);
  for (const auto& item : kCommands) {
    if (item.name != name) continue;
    if (!item.takesText && !rest.empty()) return failed(fmt::format("{} takes nothing behind it", name));
    if (item.command && !commandAllowed(session, *item.command)) {
      return failed(whyForbidden(session, *item.command));
    }
    return item.run(session, rest);
  }
  return failed(fmt::format("there is no command \"{}\"", name));
}

void leaveCleanly(Session& session) {
  if (session.loggingState == kLogging) pauseRecording(session);
  LeaveLogging(session, false);
}

void releaseMarkAfterRecord(Session& session) {
  const auto mode = static_cast<unsigned char>(session.link.recordText[1]);
  if ((mode & kMarkerKeyBit) != 0) session.link.markerKeyPending = 0;
}

std::string statusText(const Session& session) {
  const std::string_view state = session.loggingState == kLogging ? "Logging" : "Stand By";
  return fmt::format(
      "state=\"{}\" line=\"{}\" station={:.2f} readings={} gps={} events={} bytes={} waiting={} missed={}", state,
      session.settings.lineName, session.station, session.counts.readings, session.counts.gpsSentences,
      session.counts.events, session.file.size(), session.file.waitingRecords(), session.link.missedTicks.load());
}

std::string summaryText(const Session& session) {
  return fmt::format("summary readings={} gps={} events={} bytes={}", session.counts.readings,
                     session.counts.gpsSentences, session.counts.events, session.file.size());
}

}  // namespace kalmira
