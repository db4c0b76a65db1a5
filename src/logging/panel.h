#pragma once

#include "logging/session.h"

// The status panel's texts, one field a function; paintPanel shows them all.
namespace kalmira {

void showFile(Session& session);
void showState(Session& session);
void showLineAndStation(Session& session);
// The trigger mode's word and the station's label, which names it, too.
void showTriggerMode(Session& session);
// Everything but the values of the last reading: when the panel appears, and when it must be drawn anew.
void paintPanel(Session& session);

// The mode field, where the kind has one.
void showMode(Session& session);
// Values and range. `measuring`: a calibration takes this reading.
void showValues(Session& session, const Reading& reading, bool measuring);

}  // namespace kalmira
