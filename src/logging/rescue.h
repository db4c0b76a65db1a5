#pragma once

#include "logging/session.h"

namespace kalmira {

// Closes the session's data file. Records that could not be written into it, because the disk is full or the
// card failed, are put into a file of their own where there is room, and the operator is told where.
void closeDataFile(Session& session);

}  // namespace kalmira
