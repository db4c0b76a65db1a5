#pragma once

#include "logging/session.h"

namespace kalmira {

// The TESK2's calibration in the air: two seconds of readings with vertical dipoles, a rotation, two seconds with
// horizontal ones. They give six factors: the inphase that is left in each mode and channel, and what each conductivity
// lacks to be, with vertical dipoles, twice what it is with horizontal ones.

// At least so many readings in the right mode make a stage good.
inline constexpr int kCalibrationReadings = 30;
inline constexpr std::uint32_t kCalibrationStageMs = 2000;
// The operator is told of 60 seconds, but a rotation takes two; ten seconds tell an instrument that does not report its
// orientation from one that is being turned.
inline constexpr std::uint32_t kCalibrationRotationMs = 10000;

inline constexpr std::uint32_t kCalibrationPreparationMs = 1000;
inline constexpr std::uint32_t kCalibrationClosingMs = 3000;  // how long its outcome is shown

// calibrationStep of the horizontal stage.
namespace calibration_step {
inline constexpr int kWaitForHorizontal = 0;
inline constexpr int kPreparing = 1;
inline constexpr int kMeasuring = 2;
inline constexpr int kCompleted = 3;
inline constexpr int kVerticalFailed = 4;
inline constexpr int kHorizontalFailed = 5;
inline constexpr int kNotDetected = 6;
}  // namespace calibration_step

// Both ask first. True when the answer was yes and the calibration runs, or the factors are deleted.
bool startCalibration(Session& session);
bool deleteCalibration(Session& session);

// One reading while a calibration runs (calibrationPhase -1).
void calibrateWith(Session& session, const Reading& reading);

// Puts the factors from before back and ends a calibration that has not come to its end.
void abandonCalibration(Session& session);

}  // namespace kalmira
