#pragma once

#include "gps/nmea.h"
#include "logging/session.h"

// What a session does with what its ports bring. Called on the session's thread while the reader waits.
namespace kalmira {

// A record in the link state; its first byte is NUL afterwards: it is consumed.
void OnReading(Session& session);

// One line from the GPS receiver: it is shown, and written or held as the survey mode asks. A line whose checksum is
// wrong or missing is written marked as such, never held.
void OnGpsLine(Session& session, const GpsLine& line);

}  // namespace kalmira
