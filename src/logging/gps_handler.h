#pragma once

#include "gps/nmea.h"
#include "logging/session.h"

namespace kalmira {

// One line from the GPS receiver, on the session's thread while the reader waits: it is shown, and written or
// held as the survey mode asks. A line whose checksum is wrong or missing is written marked as such, never
// held.
void OnGpsLine(Session& session, const GpsLine& line);

}  // namespace kalmira
