#pragma once

#include "logging/session.h"

// What a session does with a reading, one handler a family. Called on the session's thread with a record in
// the link state, whose reader waits meanwhile; the record's first byte is NUL afterwards: it is consumed.
namespace kalmira {

void OnMainReading(Session& session);   // ORLA, TESKB, TESKDD, TESK, VARDO, MIRKA
void OnIceReading(Session& session);    // GLACO
void OnTesk2Reading(Session& session);  // TESK2
// The one of the session's kind.
void OnReading(Session& session);

}  // namespace kalmira
