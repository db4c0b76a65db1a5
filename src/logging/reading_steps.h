#pragma once

#include "logging/session.h"

// The steps of a reading's way into the file that the handlers share.
namespace kalmira {

// In Manual mode one press of the trigger lets one reading through, however long it is held; in the other
// modes every reading may be recorded. Sets triggerLatch.
void latchTrigger(Session& session, bool pressed);

// Whether this reading is one sample of an average, rather than a reading to record by itself.
bool isSample(const Session& session);
// Counts and shows a sample. Until the average is complete the samples need no trigger. True when this was
// the last; the caller then forms the average.
bool countSample(Session& session);

// Whether a reading that is no sample goes into the file.
bool isRecordable(const Session& session);

// Counts the reading at its station; the 2nd to 6th at one station get a digit in place of their start
// letter.
char countAtStation(Session& session, char startLetter);

// Manual mode, first reading after the start of recording: writes the position sentences that are held.
void writeHeldSentences(Session& session);
// A held GGA sentence, and the GSA with it, if ready.
void writeReadySentences(Session& session);

// After the reading was written: beep, station, profile point.
void beepWithReading(Session& session);
void advanceStation(Session& session);
void showStation(Session& session);
// `firstAtStation`: the profile moves on before the point, but not before its very first. `text` as it went
// into the file.
void addPoint(Session& session, bool firstAtStation, std::string_view text);

// "M" while the trigger is pressed, but not where a press records.
void showMarker(Session& session, bool pressed);

}  // namespace kalmira
