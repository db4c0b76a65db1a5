#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "link/link_state.h"

namespace kalmira {
namespace {

TEST(RecordRates, FollowTheIntervalWithinWhatTheStreamDelivers) {
  struct Row {
    float interval, period;
    int records, perSecond;
  };
  const float infinity = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const int most = std::numeric_limits<int>::max();
  const std::vector<Row> rows{{1.0F, 72.0F, 14, 1},  // 13.89 + 0.5
                              {1.0F, 91.0F, 11, 1},  // 10.99 + 0.5
                              {0.5F, 91.0F, 5, 2},   // 5.49 + 0.5 is still 5
                              {0.5F, 72.0F, 7, 2},   // 6.94 + 0.5
                              {0.2F, 100.0F, 2, 5},   {0.1F, 100.0F, 1, 10},  {0.1F, 50.0F, 2, 10},
                              {0.3F, 50.0F, 6, 3},    {0.7F, 50.0F, 14, 1},   {2.0F, 91.0F, 22, 1},  // 0 + 1
                              {10.0F, 50.0F, 200, 1}, {0.01F, 72.0F, 1, 14},  // the four upper bounds
                              {0.01F, 91.0F, 1, 11},  {0.01F, 100.0F, 1, 10}, {0.01F, 50.0F, 1, 20},
                              {0.0F, 91.0F, 1, 11},  // what no setting should hold
                              {-1.0F, 91.0F, 1, 1},   {nan, 91.0F, 1, 1},     {infinity, 91.0F, most, 1},
                              {1.0F, 0.0F, most, 1},  {0.01F, nan, 1, 1}};
  for (const auto& [interval, period, records, perSecond] : rows) {
    SCOPED_TRACE(testing::Message() << interval << " s at " << period << " ms");
    const RecordRates rates = recordRates(interval, period);
    EXPECT_EQ(rates.recordsPerInterval, records);
    EXPECT_EQ(rates.ratePerSecond, perSecond);
  }
}

}  // namespace
}  // namespace kalmira
