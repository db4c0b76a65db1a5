#pragma once

#include "logging/session.h"

// What the operator is told of the GPS receiver: that it went, fell silent, came back, or has another fix.
// Called on the session's thread.
namespace kalmira {

// A receiver that gives no sentence with a right checksum for so long has fallen silent.
inline constexpr std::uint32_t kGpsSilenceMs = 3000;

// A line has come from the receiver.
void noteGpsLine(Session& session, bool checksumOk);
// Whether a line of so many bytes that is no good sentence is to be recorded. No faster than the fastest serial line
// could bring them: a source over the network would fill the card. What is left out is counted, and told.
bool takesNoise(Session& session, std::size_t bytes);
// At every service.
void watchGps(Session& session);
// At the session's end: a receiver that was asked for and gave nothing leaves the survey without positions.
void noteGpsAtEnd(Session& session);

}  // namespace kalmira
