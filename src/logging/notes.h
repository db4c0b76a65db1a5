#pragma once

#include "logging/session.h"

// The notes beside the data file: what the operator's last ones say, those of this run, and what the program knows.
// They are written on a thread of their own, and what goes wrong with them never holds up the survey: it is told once.
// Called on the session's thread.
namespace kalmira {

// The data file has just been created.
void beginNotes(Session& session);
// A sentence with a right checksum: from the first with a fix comes the difference of the clocks, and with it the notes
// are written again.
void noteFixTime(Session& session, const GpsLine& line);
// At every service.
void watchNotes(Session& session);
// The survey goes on in another file. `mediumFails`: that of the file before may hold up whoever writes to it.
void moveNotes(Session& session, bool mediumFails);
// The data file is closed.
void finishNotes(Session& session);

}  // namespace kalmira
