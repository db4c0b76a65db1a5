#pragma once

#include <string>
#include <string_view>

#include "datafile/creation.h"
#include "logging/session.h"
#include "settings/line_entry.h"

// What the operator can do in a session. Each command is for the states its comment names; who calls it has looked
// (commandAllowed). Called on the session's thread.
namespace kalmira {

enum class Command {
  createFile,
  leave,
  start,
  pause,
  newLine,
  newStation,
  comment,
  menu,
  scale,
  displayOptions,
  repaint,
  calibrate,
  deleteCalibration,
  fit,  // the scale of the profile, to what is shown
};

// Whether the logging window offers the command in the session's present state.
bool commandAllowed(const Session& session, Command command);

// Where the session's data files are created.
DataPlace dataPlaceOf(const Session& session);

// No file: asks for a name through `choose` and creates the data file. A failure is told to the operator; the outcome
// `failed` means that the program is to end.
CreateOutcome beginDataFile(Session& session, const ChooseDataFile& choose);

void startRecording(Session& session);  // Stand By
void pauseRecording(Session& session);  // Logging

// Stand By: the new line dialog was confirmed.
void newLine(Session& session, const LineEntry& entry);
// The new station dialog was confirmed with `station`.
void newStation(Session& session, double station);
// The comment dialog was confirmed; `text` is UTF-8.
void addComment(Session& session, std::string_view text);

// Ends the session: closes file and ports. Unless `forced`, asks first when there is a data file; the session goes on
// when the answer is no. True when the session has ended.
bool LeaveLogging(Session& session, bool forced);
Message exitQuestion();

}  // namespace kalmira
