#pragma once

#include "logging/session.h"

// What the operator is told of the GPS receiver: that it went, fell silent, came back, or has another fix.
// Called on the session's thread.
namespace kalmira {

// A line has come from the receiver.
void noteGpsLine(Session& session, bool checksumOk);
// At every service.
void watchGps(Session& session);
// At the session's end: a receiver that was asked for and gave nothing leaves the survey without positions.
void noteGpsAtEnd(Session& session);

}  // namespace kalmira
