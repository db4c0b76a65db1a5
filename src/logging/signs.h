#pragma once

#include <cstdint>
#include <string>

#include "logging/session.h"

// What the screen owes the operator besides the readings, as plain data for whoever shows it. Nothing here changes the
// session; all of it is looked at about once a second. Called on the session's thread.
namespace kalmira {

// What stands on the panel is old: how old, in words; empty as long as it is not.
struct LinkSigns {
  std::string instrument{};  // "NO DATA 4 s"
  std::string gps{};         // "NO GPS DATA 12 s"
  bool operator==(const LinkSigns&) const = default;
};
LinkSigns linkSignsOf(const Session& session);
// Milliseconds until any of these signs may say something else if nothing comes; at most a second.
std::uint32_t msUntilOtherSigns(const Session& session);

// What a calibration wants of the operator, to be read from further away than the panel's texts.
struct CalibrationSign {
  enum class Stage { none, measuring, waiting, completed, failed } stage = Stage::none;
  std::string doing{};    // "Turn to HORIZONTAL"
  std::string seconds{};  // that are left for it: "8 s"
  bool operator==(const CalibrationSign&) const = default;
};
CalibrationSign calibrationSignOf(const Session& session);

// "4 s", "12 min", "3 h": whole ones that have passed.
std::string ageText(std::uint32_t milliseconds);

}  // namespace kalmira
