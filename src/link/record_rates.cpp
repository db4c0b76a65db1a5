#include <algorithm>
#include <cmath>
#include <limits>

#include "link/link_state.h"

namespace kalmira {
namespace {

// Truncated to 1 or more; what is no number gives 1.
int atLeastOne(double value) {
  if (!(value >= 1.0)) return 1;
  return value >= std::numeric_limits<int>::max() ? std::numeric_limits<int>::max() : static_cast<int>(value);
}

}  // namespace

RecordRates recordRates(float intervalSeconds, float recordPeriodMs) {
  RecordRates rates;
  rates.recordsPerInterval = atLeastOne(static_cast<double>(intervalSeconds) * 1000.0 / recordPeriodMs + 0.5);
  // In single precision, where 1 / 0.1 is 10 and not 9.99.
  const double perSecond = std::trunc(1.0F / intervalSeconds) + (intervalSeconds <= 1.0F ? 0.0 : 1.0);
  rates.ratePerSecond = std::min(atLeastOne(perSecond), atLeastOne(std::round(1000.0 / recordPeriodMs)));
  return rates;
}

}  // namespace kalmira
