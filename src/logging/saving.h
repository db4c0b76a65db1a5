#pragma once

#include <string>
#include <vector>

#include "logging/session.h"

// Proof that the survey is being saved, and how long it still can be. Called on the session's thread.
namespace kalmira {

// Below these hours of room at the present rate, or of battery where the system tells them.
inline constexpr double kWarnHours = 2.0;
inline constexpr double kAlarmHours = 0.5;
// A battery of fewer percent is worth a warning, whatever the system tells of hours.
inline constexpr int kWarnPercent = 10;

enum class Urgency { fine, warning, alarm };

struct SavingSigns {
  struct Part {
    std::string text;
    Urgency urgency = Urgency::fine;
    bool operator==(const Part&) const = default;
  };
  std::vector<Part> parts;  // "1234 readings", "GPS 310", "written 1 s ago", "disk 11 h left", "battery 87 %"
  Urgency worst() const;
  std::string text() const;       // all of it
  std::string shortText() const;  // where there is little room: the worst, or what proves that all is well
  bool operator==(const SavingSigns&) const = default;
};
SavingSigns savingSignsOf(const Session& session);
// The last of them: disk and battery, where they are known.
SavingSigns supplySignsOf(const Session& session);

// At every service: whether the file grows, how fast, and every ten seconds what room and battery are left.
void watchSaving(Session& session);

}  // namespace kalmira
