#include "logging/commands.h"

#include <fmt/format.h>

#include "logging/calibration.h"
#include "logging/file_guard.h"
#include "logging/gps_watch.h"
#include "logging/notes.h"
#include "logging/panel.h"

namespace kalmira {
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
    case Command::fit: return true;
    default: return state == kStandBy;
  }
}

DataPlace dataPlaceOf(const Session& session) {
  return {.kind = session.instrument.kind,
          .storageClass = session.setup.storageClass,
          .root = session.setup.root,
          .mirror = session.setup.mirror};
}

CreateOutcome beginDataFile(Session& session, const ChooseDataFile& choose) {
  const auto warnExists = [&session] {
    session.view.tell({.title = "WARNING", .text = std::string(kFileExistsText), .icon = Icon::exclamation});
  };
  const auto place = dataPlaceOf(session);
  auto outcome = CreateDataFile(place, session.writer(), session.disk, choose, warnExists);
  if (outcome.how == CreateOutcome::How::failed) {
    session.view.tell({.title = "CRITICAL WARNING",
                       .text = std::string(kFileNotCreatedText) + "\r\n" + outcome.cause,
                       .icon = Icon::stop});
  } else if (outcome.how == CreateOutcome::How::created) {
    session.loggingState = kStandBy;
    beginMirror(session);
    beginNotes(session);
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
  session.view.beep(Beep::reading);
  session.triggerLatch = 0;
  session.chartPointCount = 0;
  clearTraces(session);
  showMessage(session, "");
  writeEvent(session, "$STARTED");
  ++session.link.recording;  // what was read before is none of this recording's
  session.view.loggingStateChanged();
}

namespace {

// A station or a mean that was begun and is not complete.
void tellUnfinished(Session& session) {
  if (session.averaging.sampleCount > 0) {
    showMessage(session, fmt::format("{} of {} samples of this reading", session.averaging.sampleCount,
                                     session.samplesPerAverage));
  } else if (session.stationReadingCount > 0) {
    showMessage(session, fmt::format("{} of {} readings at this station", session.stationReadingCount,
                                     session.readingsPerStation));
  }
}

}  // namespace

void pauseRecording(Session& session) {
  writeEvent(session, "$PAUSED");
  session.file.closeAndReopen();
  session.link.recordsPerReading = 1;
  session.link.recordCount = 0;
  session.loggingState = kStandBy;
  showState(session);
  tellUnfinished(session);
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
  tellUnfinished(session);
  session.view.clearProfile();
}

void newStation(Session& session, double station) {
  session.station = stationInFile(station);
  clearTraces(session);
  session.lineStarted = false;
  session.view.show(PanelField::station, stationText(session.station));
  WriteStationRecord(session.writer(), session.station);
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
    if (session.gpsEnabled()) noteGpsAtEnd(session);
    if (session.ports->markerGone()) noteShortfall(session, "The marker port was not there at the end.");
    closeDataFile(session);
    finishNotes(session);
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
