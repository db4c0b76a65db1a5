#pragma once

#include <string>

#include "logging/session.h"

namespace kalmira {

// The device clock of the handheld goes wrong after 20 days; so does a tick that is taken for a signed number
// soon after.
inline constexpr std::uint32_t kLongestUptimeMs = 1728000000;

bool uptimeExceeded(const Clock& clock);
Message uptimeMessage();

enum class StartOutcome {
  started,
  uptimeExceeded,  // the operator was told; the program is to end
  refused,         // the operator was told why; nothing was left open
};

// Begins a logging session: checks the ports against each other, opens them, finds out a TESK's record
// length, starts the readers and the watch timer, paints the panel. A GPS or marker port that cannot be
// opened is told and the session goes on without it. Called on the session's thread with session.ports set.
StartOutcome startSession(Session& session);

}  // namespace kalmira
