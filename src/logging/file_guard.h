#pragma once

#include <string>

#include "logging/session.h"

// Keeps a session's records, whatever happens to its data file. Called on the session's thread.
namespace kalmira {

// Looks after the data file and its second copy. A file that was deleted, moved, cut or overwritten, or whose
// medium fails, is left as it is; the survey goes on in a new one, in the same folder if that can be made
// again, else in another place, and the operator is told.
void guardFile(Session& session);

// Begins the second copy, when one is wanted, of the data file just created.
void beginMirror(Session& session);

// Closes the data file and its second copy. Records that could not be written are put into a file of their own
// where there is room, and the operator is told where.
void closeDataFile(Session& session);

// The survey is not whole, or not where it should be: said once more when the session ends.
void noteShortfall(Session& session, std::string text);

}  // namespace kalmira
