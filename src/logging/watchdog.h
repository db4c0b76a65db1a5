#pragma once

#include "logging/session.h"

namespace kalmira {

// Periods in a row without a record before the link is given up and the operator is asked.
inline constexpr int kMissedPeriodsToGiveUp = 6;

// The watch period is over: looks whether a record came within it, and does what a silent instrument calls
// for. May ask a question, and leave the session on its answer.
void onTimer(Session& session);

void startTimer(Session& session);
void stopTimer(Session& session);

}  // namespace kalmira
