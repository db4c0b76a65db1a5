#pragma once

#include <string_view>

#include "logging/session.h"

// The instrument's link from the start of a session on: opened, watched, and opened again.
namespace kalmira {

// The device clock of the handheld goes wrong after 20 days; so does a tick that is taken for a signed number soon
// after.
inline constexpr std::uint32_t kLongestUptimeMs = 1728000000;

// Shown while the instrument is silent, at every period of the watch again.
inline constexpr std::string_view kPleaseWaitText = "Please Wait...";

bool uptimeExceeded(const Clock& clock);
Message uptimeMessage();

enum class StartOutcome {
  started,
  uptimeExceeded,  // the operator was told; the program is to end
  refused,         // the operator was told why; nothing was left open
};

// Begins a logging session: checks the ports against each other, opens them, finds out a TESK's record length, starts
// the readers and the watch timer, paints the panel. A GPS or marker port that cannot be opened is told and the session
// goes on without it. Called on the session's thread with session.ports set.
StartOutcome startSession(Session& session);

// The watch period is over: looks whether a record came within it, and does what a silent instrument calls for. May ask
// a question, and leave the session on its answer.
void onTimer(Session& session);

}  // namespace kalmira
