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

// "%-8.2f" and its kind, as the value fields are written: "C:12.34   mS/m" when `wide`, "C:12.34   " else.
std::string valueText(std::string_view label, float value, std::string_view unit, bool wide);

// "Mode:V", "Mode:H", "Mode:B" by the dipole-mode setting.
std::string dipoleModeText(const Settings& settings);

}  // namespace kalmira
