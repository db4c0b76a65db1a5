#pragma once

#include "logging/session.h"

namespace kalmira {

// What a session does with a reading. Called on the session's thread with a record in the link state, whose
// reader waits meanwhile; the record's first byte is NUL afterwards: it is consumed.
void OnReading(Session& session);

}  // namespace kalmira
