#include "logging/commands.h"

#include <fmt/format.h>

#include <array>
#include <cstdlib>
#include <system_error>

#include "logging/calibration.h"
#include "logging/panel.h"
#include "platform/files.h"

namespace kalmira {
namespace {

// Folders that may lie on another disk than the data.
std::vector<std::filesystem::path> otherFolders(const std::filesystem::path& root) {
  std::vector<std::filesystem::path> folders{root};
  // Read once, on the session's thread; nothing in this program changes the environment.
  if (const char* home = std::getenv("HOME")) folders.emplace_back(home);  // NOLINT(concurrency-mt-unsafe)
  std::error_code error;
  auto temporary = std::filesystem::temp_directory_path(error);
  if (!error) folders.push_back(std::move(temporary));
  return folders;
}

// Where the records went, or an empty path.
std::filesystem::path writeElsewhere(const Session& session, const std::string& records) {
  const auto name = session.file.path().filename().string() + ".REST";
  for (const auto& folder : otherFolders(session.setup.root)) {
    auto path = folder / name;
    std::error_code error;
    if (!std::filesystem::exists(path, error) && replaceFile(path, records).empty()) return path;
  }
  return {};
}

// Records that could not be written, because the disk is full or the card failed, are put into a file of their own
// where there is room, and the operator is told where.
void closeDataFile(Session& session) {
  const auto rest = session.file.finish();
  if (!rest) return;
  const auto count = rest->records.size() / session.file.recordLength();
  const auto path = writeElsewhere(session, rest->records);
  const auto what =
      fmt::format("{}. The last {} records are not safely in {}.", rest->cause, count, session.file.path().string());
  const auto where = path.empty() ? std::string("There was no room for them elsewhere: they are lost.")
                                  : fmt::format("They were saved as {}.", path.string());
  session.view.tell({.title = "CRITICAL WARNING", .text = what + "\r\n" + where, .icon = Icon::stop});
}

}  // namespace

bool commandAllowed(const Session& session, Command command) {
  const int state = session.loggingState;
  const bool calibrated = session.instrument.calibrated;
  switch (command) {
    case Command::createFile: return state == kNoFile;
    case Command::pause: return state == kLogging;
    case Command::leave: return state != kLogging;
    case Command::calibrate:
    case Command::deleteCalibration:
      return calibrated && state != kLogging && session.calibration.calibrationPhase == 0;
    case Command::newStation:
    case Command::comment: return state != kLogging;
    default: return state == kStandBy;
  }
}

CreateOutcome beginDataFile(Session& session, const ChooseDataFile& choose) {
  const auto warnExists = [&session] {
    session.view.tell({.title = "WARNING", .text = std::string(kFileExistsText), .icon = Icon::exclamation});
  };
  const DataPlace place{
      .kind = session.instrument.kind, .storageClass = session.setup.storageClass, .root = session.setup.root};
  auto outcome = CreateDataFile(place, session.writer(), session.disk, choose, warnExists);
  if (outcome.how == CreateOutcome::How::failed) {
    session.view.tell({.title = "CRITICAL WARNING",
                       .text = std::string(kFileNotCreatedText) + "\r\n" + outcome.cause,
                       .icon = Icon::stop});
  } else if (outcome.how == CreateOutcome::How::created) {
    session.loggingState = kStandBy;
    showFile(session);
    showState(session);
    showLineAndStation(session);
    session.view.loggingStateChanged();
  }
  return outcome;
}

void startRecording(Session& session) {
  session.linkActive = true;
  session.gpsHeldWritten = false;
  session.readingLogged = false;  // a position that comes now belongs to no reading yet
  session.link.recordsPerReading = session.triggerMode == kModeAuto ? session.recordInterval : 1;
  session.link.recordCount = 0;
  session.beepCounter = 0;
  session.loggingState = kLogging;
  showState(session);
  session.view.beep(Beep::hand);
  session.triggerLatch = 0;
  session.chartPointCount = 0;
  clearTraces(session);
  showMessage(session, "");
  writeEvent(session, "$STARTED");
  session.view.loggingStateChanged();
}

void pauseRecording(Session& session) {
  writeEvent(session, "$PAUSED");
  session.file.closeAndReopen();
  session.link.recordsPerReading = 1;
  session.link.recordCount = 0;
  session.loggingState = kStandBy;
  showState(session);
  session.view.loggingStateChanged();
}

void newLine(Session& session, const LineEntry& entry) {
  takeLine(entry, session.settings);
  session.station = session.settings.startStation;
  clearTraces(session);
  saveSettingsOrTell(session);
  showLineAndStation(session);
  session.lineStarted = false;
  WriteLineBlock(session.writer());
  WriteTimeMark(session.writer());
  session.view.clearProfile();
}

void newStation(Session& session, double station) {
  session.station = station;
  clearTraces(session);
  session.lineStarted = false;
  session.view.show(PanelField::station, stationText(station));
  WriteStationRecord(session.writer(), station);
  WriteTimeMark(session.writer());
  session.view.redrawProfile();
}

void addComment(Session& session, std::string_view text) {
  WriteNoteRecord(session.writer(), text, tag::kComment);
  session.view.redrawProfile();
}

Message exitQuestion() { return {.title = "Confirm Exit", .text = "Exit Logging?", .icon = Icon::question}; }

bool LeaveLogging(Session& session, bool forced) {
  if (session.file.isOpen()) {
    if (!forced && !session.view.ask(Question::exitLogging, exitQuestion())) {
      session.view.redrawProfile();
      return false;
    }
    closeDataFile(session);
  }
  session.inputEnabled = false;
  abandonCalibration(session);
  if (session.gpsEnabled()) session.ports->closeGpsPort();
  session.ports->closeMarkerPort();
  session.timer.running = false;
  session.ports->closeInstrumentPort();
  session.loggingState = kNoFile;
  session.stationReadingCount = 0;
  session.gpsRecordCount = 0;
  session.sessionActive = false;
  session.linkActive = false;
  session.view.loggingLeft();
  return true;
}

}  // namespace kalmira
