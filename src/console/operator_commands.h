#pragma once

#include <string>
#include <string_view>

#include "logging/session.h"

namespace kalmira {

struct CommandAnswer {
  std::string error{};   // empty: done
  std::string status{};  // a line to print before "ok"
  std::string kept{};    // what the file holds in place of what was given; printed behind "ok"
  bool newLine = false;  // a new line was begun
};

// Carries out one line of standard input, `text`, on a session that has its data file.
CommandAnswer runOperatorCommand(Session& session, std::string_view text);

// Pauses if need be and leaves.
void leaveCleanly(Session& session);

// Whether the record just handled carried the marker key that "mark" asked for; the key is then released.
void releaseMarkAfterRecord(Session& session);

// "state=... line=... station=... readings=..."
std::string statusText(const Session& session);
// "summary readings=N gps=N events=N bytes=N"
std::string summaryText(const Session& session);

}  // namespace kalmira
