#include "settings/settings.h"

#include <algorithm>
#include <cmath>

namespace kalmira {

int surveyModeOf(const Settings& settings) { return indexOr(settings.surveyMode, 3, kModeAuto); }

float readingsIntervalOf(const Settings& settings) {
  const float interval = settings.readingsInterval;
  if (!std::isfinite(interval) || interval <= 0.0F) return Settings{}.readingsInterval;
  return std::min(interval, 86400.0F);
}

int readingsCountOf(const Settings& settings) { return std::clamp(settings.readingsCount, 1, 100); }

}  // namespace kalmira
