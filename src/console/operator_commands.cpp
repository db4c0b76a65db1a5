#include "console/operator_commands.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <vector>

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

std::vector<std::string> words(std::string_view text) {
  std::vector<std::string> out;
  while (true) {
    const auto start = text.find_first_not_of(" \t");
    if (start == std::string_view::npos) return out;
    text.remove_prefix(start);
    const auto end = text.find_first_of(" \t");
    out.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) return out;
    text.remove_prefix(end);
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

CommandAnswer line(Session& session, std::string_view text) {
  const auto given = words(text);
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
  newLine(session, entry);
  return {.newLine = true};
}

CommandAnswer station(Session& session, std::string_view text) {
  const auto given = words(text);
  if (given.size() != 1 || !wholeNumber<double>(given[0])) return failed("station takes one number");
  const auto number = stationNumber(given[0]);
  if (!number) return failed("no station is that far away: it would not fit into the file");
  newStation(session, *number);
  return {};
}

CommandAnswer comment(Session& session, std::string_view text) {
  if (text.empty()) return failed("comment takes a text");
  addComment(session, text);
  return {};
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

CommandAnswer leave(Session& session, std::string_view) {
  leaveCleanly(session);
  return {};
}

struct OperatorCommand {
  std::string_view name;
  std::optional<Command> command;  // what the window must offer; nothing: always
  bool takesText;
  CommandAnswer (*run)(Session&, std::string_view);
};

constexpr std::array kCommands{
    OperatorCommand{"go", Command::start, false, go},
    OperatorCommand{"pause", Command::pause, false, pauseNow},
    OperatorCommand{"line", Command::newLine, true, line},
    OperatorCommand{"station", Command::newStation, true, station},
    OperatorCommand{"comment", Command::comment, true, comment},
    OperatorCommand{"calibrate", Command::calibrate, false, calibrate},
    OperatorCommand{"delete-calibration", Command::deleteCalibration, false, removeCalibration},
    OperatorCommand{"mark", std::nullopt, false, mark},
    OperatorCommand{"status", std::nullopt, false, status},
    OperatorCommand{"exit", std::nullopt, false, leave},
};

std::string whyForbidden(const Session& session, Command command) {
  const bool calibration = command == Command::calibrate || command == Command::deleteCalibration;
  if (calibration && !session.instrument.calibrated) return "only the TESK2 is calibrated";
  if (calibration && session.calibration.calibrationPhase != 0) return "a calibration is running";
  return session.loggingState == kLogging ? "not while logging: pause first" : "not logging";
}

}  // namespace

CommandAnswer runOperatorCommand(Session& session, std::string_view text) {
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
