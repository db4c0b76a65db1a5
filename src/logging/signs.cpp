#include "logging/signs.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "logging/calibration.h"
#include "logging/gps_watch.h"

namespace kalmira {
namespace {

// Without a record for this long, or for two periods of a slower instrument, the values on the panel are old.
constexpr std::uint32_t kSilenceMs = 2000;
constexpr float kSilentPeriods = 2.0F;
constexpr std::uint32_t kSecondMs = 1000;

// How long something has been silent, and from when on that is too long; nothing where silence is no fault.
struct Silence {
  std::uint32_t passed = 0;
  std::uint32_t limit = 0;
  bool tooLong() const { return passed >= limit; }
};

// Ticks of other threads are read before the clock, or a record that comes in between would seem to lie ahead.
std::optional<Silence> instrumentSilence(const Session& session) {
  const std::uint32_t last = session.link.lastRecordTick;
  // A device that has vanished gives none, whatever asks for them.
  if (session.instrument.onDemand(session.surveyMode()) && !session.ports->instrumentGone()) return std::nullopt;
  const auto periods = static_cast<std::uint32_t>(kSilentPeriods * session.link.recordPeriodMs);
  return Silence{.passed = ticksSince(session.clock.tick(), last), .limit = std::max(kSilenceMs, periods)};
}

std::optional<Silence> gpsSilence(const Session& session) {
  if (!session.gpsEnabled()) return std::nullopt;
  return Silence{.passed = ticksSince(session.clock.tick(), session.gps.goodTick), .limit = kGpsSilenceMs};
}

std::string signOf(std::string_view words, const std::optional<Silence>& silence) {
  return silence && silence->tooLong() ? fmt::format("{} {}", words, ageText(silence->passed)) : std::string();
}

// What a step of the calibration lasts, and what it wants.
struct CalibrationAim {
  CalibrationSign::Stage stage;
  std::string_view doing;
  std::uint32_t limit;
};

CalibrationAim aimOf(const Calibration& calibration) {
  using enum CalibrationSign::Stage;
  namespace step = calibration_step;
  if (calibration.calibrationActive == 1) return {measuring, "Hold still, VERTICAL", kCalibrationStageMs};
  switch (calibration.calibrationStep) {
    case step::kWaitForHorizontal: return {waiting, "Turn to HORIZONTAL", kCalibrationRotationMs};
    case step::kPreparing: return {waiting, "Hold still, HORIZONTAL", kCalibrationPreparationMs};
    case step::kMeasuring: return {measuring, "Hold still, HORIZONTAL", kCalibrationStageMs};
    case step::kCompleted: return {completed, "Calibrated", kCalibrationClosingMs};
    case step::kVerticalFailed: return {failed, "FAILED: it was not VERTICAL", kCalibrationClosingMs};
    case step::kHorizontalFailed: return {failed, "FAILED: it was not HORIZONTAL", kCalibrationClosingMs};
    default: return {failed, "FAILED: it was not turned", kCalibrationClosingMs};
  }
}

}  // namespace

CalibrationSign calibrationSignOf(const Session& session) {
  const auto& calibration = session.calibration;
  if (!session.sessionActive || calibration.calibrationPhase == 0) return {};
  const auto [stage, doing, limit] = aimOf(calibration);
  const auto passed = ticksSince(session.clock.tick(), calibration.calibrationTick);
  const auto left = limit - std::min(passed, limit);
  return {
      .stage = stage, .doing = std::string(doing), .seconds = fmt::format("{} s", (left + kSecondMs - 1) / kSecondMs)};
}

std::string ageText(std::uint32_t milliseconds) {
  constexpr std::uint32_t kMinute = 60;
  constexpr std::uint32_t kSecondsShown = 600;  // longer ones in minutes, then in hours
  const auto seconds = milliseconds / kSecondMs;
  if (seconds < kSecondsShown) return fmt::format("{} s", seconds);
  if (seconds < kSecondsShown * kMinute) return fmt::format("{} min", seconds / kMinute);
  return fmt::format("{} h", seconds / (kMinute * kMinute));
}

LinkSigns linkSignsOf(const Session& session) {
  if (!session.sessionActive) return {};
  return {.instrument = signOf("NO DATA", instrumentSilence(session)),
          .gps = signOf("NO GPS DATA", gpsSilence(session))};
}

std::uint32_t msUntilOtherSigns(const Session& session) {
  constexpr std::uint32_t kCalibrationLookMs = 200;
  std::uint32_t wait = session.calibration.calibrationPhase != 0 ? kCalibrationLookMs : kSecondMs;
  for (const auto& silence : {instrumentSilence(session), gpsSilence(session)}) {
    if (!silence) continue;
    const auto next = silence->tooLong() ? kSecondMs - silence->passed % kSecondMs : silence->limit - silence->passed;
    wait = std::min(wait, next);
  }
  return wait;
}

}  // namespace kalmira
